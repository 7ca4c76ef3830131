"""Helpers of the simulator tests: start qm730-sim on a pseudo-terminal, talk to
its control socket, and build PC Link requests by hand."""

import os
import select
import shutil
import socket
import subprocess
import tempfile
import time
import unittest

import serial

SIM = os.path.join(os.environ.get("QM730_BIN", ""), "qm730-sim")
ETX_CR_LF = b"\x03\r\n"


class Simulator:
    """One qm730-sim process with its link and control socket in a temporary folder.
    "{dir}" in an option stands for that folder."""

    def __init__(self, *options, script=None, link=True):
        self.dir = tempfile.mkdtemp(prefix="qm730-sim-")
        self.link = os.path.join(self.dir, "sim0")
        self.control_path = os.path.join(self.dir, "control")
        args = [SIM, "--control", self.control_path] + (["--link", self.link] if link else [])
        args += [o.replace("{dir}", self.dir) for o in options]
        if script is not None:
            path = os.path.join(self.dir, "start.txt")
            with open(path, "w", encoding="utf-8") as f:
                f.write(script)
            args += ["--script", path]
        self.proc = subprocess.Popen(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self._control = None
        ready, _, _ = select.select([self.proc.stdout], [], [], 10)
        self.ready_line = self.proc.stdout.readline().decode().strip() if ready else ""
        if not self.ready_line.startswith("qm730-sim ready: "):
            self.close()
            raise RuntimeError("simulator did not start: " + self.ready_line)

    def command(self, line):
        """Sends one control command and returns its one-line answer."""
        if self._control is None:
            sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            sock.settimeout(10)
            sock.connect(self.control_path)
            self._control = (sock, sock.makefile("rwb"))
        f = self._control[1]
        f.write(line.encode() + b"\n")
        f.flush()
        return f.readline().decode().rstrip("\n")

    def ok(self, *lines):
        for line in lines:
            answer = self.command(line)
            if answer != "ok":
                raise AssertionError(f"{line!r} answered {answer!r}")

    def word(self, query):
        """The value of `get <query>` as a number."""
        return int(self.command("get " + query))

    def open_port(self, timeout=2.0):
        port = serial.Serial(self.link, 115200, timeout=timeout)
        port.reset_input_buffer()
        return port

    def close(self):
        if self._control is not None:
            self._control[1].close()
            self._control[0].close()
        if self.proc.poll() is None:
            self.proc.terminate()
            try:
                self.proc.wait(5)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait()
        self.proc.stdout.close()
        self.proc.stderr.close()
        shutil.rmtree(self.dir, ignore_errors=True)


class SimCase(unittest.TestCase):
    """Test classes sharing one simulator started with `options` (and `script`)
    and, unless `serial` is off, a port on its link."""

    options = ()
    script = None
    serial = True

    @classmethod
    def setUpClass(cls):
        cls.sim = Simulator(*cls.options, script=cls.script)
        cls.port = cls.sim.open_port() if cls.serial else None

    @classmethod
    def tearDownClass(cls):
        if cls.port:
            cls.port.close()
        cls.sim.close()

    def dump(self, what, machine=1):
        """A memory of the simulator as its `dump` command gives it, as bytes."""
        answer = self.sim.command(f"dump {machine} {what}")
        self.assertFalse(answer.startswith("error"), answer)
        return bytes.fromhex(answer)

    def random_block(self, rng, machine, rows):
        """Random words for a whole parameter block, the running clock (rows 12 to 17) as the machine has it."""
        block = [rng.randrange(65536) for _ in range(rows)]
        for row in range(12, 18):
            block[row - 1] = self.sim.word(f"{machine} up {row}")
        return block

    def ask(self, frame, length=None, timeout=3.0):
        """Sends a frame on a clean line; the reply, `length` bytes or up to its ETX CR LF."""
        self.port.reset_input_buffer()
        self.port.write(frame)
        if length is None:
            return read_reply(self.port, timeout=timeout)
        reply = read_exact(self.port, length, timeout=timeout)
        self.assertEqual(len(reply), length, reply[:40])
        return reply


class ModbusCase(SimCase):
    """A SimCase whose link is talked to by Debian's pymodbus, an independent
    Modbus RTU client, as slave 1 unless told otherwise."""

    serial = False

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        from pymodbus.client import ModbusSerialClient

        cls.client = ModbusSerialClient(method="rtu", port=cls.sim.link, baudrate=115200, timeout=1, retries=0)
        cls.client.connect()

    @classmethod
    def tearDownClass(cls):
        cls.client.close()
        super().tearDownClass()

    def read(self, start, count, slave=1):
        r = self.client.read_holding_registers(start, count, slave=slave)
        self.assertFalse(r.isError(), r)
        return r.registers

    def write(self, start, values, slave=1):
        r = self.client.write_registers(start, values, slave=slave)
        self.assertFalse(r.isError(), r)


def request(machine, command, *args, data=None, crc=False):
    """A PC Link request: STX, machine, command, arguments, data, ETX CR LF [, sum]."""
    frame = b"\x02" + b"%03d" % machine + command.encode()
    for a in args:
        frame += b",%04d" % a
    if data is not None:
        frame += b"," + data
    frame += ETX_CR_LF
    if crc:
        frame += with_sum(frame)[-2:]
    return frame


def with_sum(frame):
    s = sum(frame) % 65536
    return frame + bytes([s >> 8, s & 0xFF])


def read_exact(port, n, timeout=3.0):
    data = b""
    deadline = time.monotonic() + timeout
    while len(data) < n and time.monotonic() < deadline:
        data += port.read(n - len(data))
    return data


def read_reply(port, timeout=3.0):
    """Bytes up to and including the first ETX CR LF."""
    data = b""
    deadline = time.monotonic() + timeout
    while not data.endswith(ETX_CR_LF) and time.monotonic() < deadline:
        data += port.read(1)
    return data


def read_burst(port, timeout=3.0, quiet=0.1):
    """Everything that arrives from the first byte until the line stays quiet."""
    port.timeout = timeout
    data = port.read(1)
    port.timeout = quiet
    while data:
        more = port.read(4096)
        if not more:
            break
        data += more
    port.timeout = 2.0
    return data


def silent_for(port, seconds):
    """True when nothing arrives within the given time."""
    port.timeout = seconds
    try:
        return port.read(1) == b""
    finally:
        port.timeout = 2.0


def words(data):
    return [int.from_bytes(data[i : i + 2], "big") for i in range(0, len(data), 2)]


def to_bytes(values):
    return b"".join(v.to_bytes(2, "big") for v in values)


def temp_word(degrees):
    return round((degrees + 100) * 100)
