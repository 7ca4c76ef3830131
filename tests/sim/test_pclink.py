"""PC Link replies of qm730-sim against the reply table, with requests built by hand."""

import os
import random
import shutil
import subprocess
import tempfile
import time
import unittest

import serial

from simtest import SimCase, Simulator, read_exact, read_reply, request, silent_for, temp_word, to_bytes, with_sum, words

# Bytes of each live-status row in the RCV reply; rows 13, 15, 16, 18, 20, 22, 25, 26, 27 are single bytes.
RCV_SIZES = [2] * 12 + [1, 2, 1, 1, 2, 1, 2, 1, 2, 1, 2, 2, 1, 1, 1]


class Replies(SimCase):
    options = ("--machines", "1,12:2.09,7:1.80", "--seed", "0", "--speed", "0", "--no-pace")

    def ask(self, frame, length=None, timeout=3.0):
        reply = super().ask(frame, length, timeout)
        self.assertEqual(reply[-3:], b"\x03\r\n")
        return reply

    def answer(self, frame, length, header):
        """The reply's data after its header, which echoes the machine, command and arguments."""
        reply = self.ask(frame, length)
        self.assertEqual(reply[:len(header)], header)
        return reply[len(header):-3]

    def test_identity_names_the_model_and_firmware(self):
        for machine, version in [(1, "2.31"), (12, "2.09"), (7, "1.80")]:
            fields = self.answer(request(machine, "WHO"), None, b"\x02%03dWHO,OK," % machine).decode().split(" ")
            self.assertIn("QM", fields[0])
            self.assertEqual(fields[fields.index("F/W") + 1][1:], version)

    def test_live_status_packs_45_bytes_by_the_row_table(self):
        values = [0x1100 + r if size == 2 else 0x40 + r for r, size in zip(range(1, 28), RCV_SIZES)]
        self.sim.ok(*[f"set 1 rcv {r} {v}" for r, v in zip(range(1, 28), values)])
        try:
            data = self.answer(request(1, "RCV"), 59, b"\x02001RCV,OK,")
        finally:
            self.sim.ok(*[f"set 1 rcv {r} auto" for r in range(1, 28)])
        self.assertEqual(data, b"".join(v.to_bytes(size, "big") for v, size in zip(values, RCV_SIZES)))

    def test_run_parameters_whole_and_single(self):
        data = self.answer(request(1, "RRP", 0), 53, b"\x02001RRP,OK,0000,")
        self.assertEqual(words(data), [self.sim.word(f"1 rrp {r}") for r in range(1, 18)])
        self.assertEqual(words(self.answer(request(1, "RRP", 15), 21, b"\x02001RRP,OK,0015,")), [1])  # one decimal

    def test_rows_follow_the_firmware(self):
        # Display resolution and the machine's own number: rows 506 and 201 on current firmware, 80 and 175 before.
        for machine, row, value in [(1, 506, 1), (12, 80, 1), (1, 201, 1), (12, 175, 12)]:
            header = b"\x02%03dRUP,OK,%04d," % (machine, row)
            self.assertEqual(words(self.answer(request(machine, "RUP", row), 21, header)), [value])

    def test_text_rows_hold_big5_names_and_take_writes(self):
        self.assertEqual(self.answer(request(1, "RTD", 12), 48, b"\x02001RTD,OK,0012,").rstrip(b"\0").decode("big5"), "高溫高濕測試")
        name = "高溫測試".encode("big5").ljust(29, b"\0")
        self.assertEqual(self.ask(request(1, "WTD", 13, data=name), 18), b"\x02001WTD,OK,0013\x03\r\n")
        self.assertEqual(self.answer(request(1, "RTD", 13), 48, b"\x02001RTD,OK,0013,"), name)
        self.assertEqual(self.sim.command("get 1 td 13"), "高溫測試")

    def test_pattern_and_segment_reads_echo_their_numbers(self):
        self.assertEqual(words(self.answer(request(1, "RPD", 1, 0), 186, b"\x02001RPD,OK,0001,0000,"))[0], 4)  # segments
        self.assertEqual(len(self.answer(request(1, "RPD", 1, 5), 26, b"\x02001RPD,OK,0001,0005,")), 2)
        segment = words(self.answer(request(1, "RSD", 1, 1, 0), 87, b"\x02001RSD,OK,0001,0001,0000,"))
        self.assertEqual(segment[:2], [temp_word(85.0), 850])
        self.assertEqual(words(self.answer(request(1, "RSD", 1, 2, 4), 31, b"\x02001RSD,OK,0001,0002,0004,")), [0x0100])

    def test_pattern_and_segment_writes_are_read_back(self):
        block = bytes(range(162))
        self.assertEqual(self.ask(request(1, "WPD", 5, 0, data=block), 23), b"\x02001WPD,OK,0005,0000\x03\r\n")
        self.assertEqual(self.answer(request(1, "RPD", 5, 0), 186, b"\x02001RPD,OK,0005,0000,"), block)
        self.assertEqual(self.ask(request(1, "WPD", 5, 3, data=b"\x12\x34"), 23)[11:20], b"0005,0003")
        self.assertEqual(self.sim.word("1 pd 5 3"), 0x1234)
        segment = bytes(range(100, 158))
        self.assertEqual(self.ask(request(1, "WSD", 5, 7, 0, data=segment), 28), b"\x02001WSD,OK,0005,0007,0000\x03\r\n")
        self.assertEqual(self.answer(request(1, "RSD", 5, 7, 0), 87, b"\x02001RSD,OK,0005,0007,0000,"), segment)
        self.assertEqual(self.ask(request(1, "WSD", 5, 7, 29, data=b"\xAB\xCD"), 28)[11:25], b"0005,0007,0029")
        self.assertEqual(self.sim.word("1 sd 5 7 29"), 0xABCD)

    def test_parameter_writes_single_and_whole(self):
        self.assertEqual(self.ask(request(1, "WRP", 10, data=b"\x03\x0D"), 18), b"\x02001WRP,OK,0010\x03\r\n")
        self.assertEqual(self.sim.word("1 rrp 10"), 0x030D)  # data may hold ETX and CR
        block = bytearray(self.ask(request(1, "RRP", 0), 53)[16:50])
        block[20:22] = (0x0A0D).to_bytes(2, "big")  # row 11
        self.assertEqual(self.ask(request(1, "WRP", 0, data=bytes(block)), 18)[11:15], b"0000")
        self.assertEqual(self.sim.word("1 rrp 11"), 0x0A0D)
        self.assertEqual(self.ask(request(12, "WUP", 47, data=b"\x00\x09"), 18), b"\x02012WUP,OK,0047\x03\r\n")
        self.assertEqual(self.sim.word("12 up 47"), 9)

    def test_refusals_lack_ok(self):
        for frame in [request(1, "RRP", 18), request(12, "RUP", 493), request(1, "RPD", 101, 0),
                      request(1, "RSD", 1, 101, 0), request(1, "WUP", 0, data=bytes(2 * 492))]:
            reply = self.ask(frame)
            self.assertEqual(reply[:4], frame[:4])
            self.assertNotIn(b",OK,", reply)

    def test_screen_capture_is_a_332_picture(self):
        first = self.answer(request(1, "RCS"), 76814, b"\x02001RCS,OK,")
        self.assertEqual((first[0], first[320 * 120]), (0xFF, 0xFF))  # white frame around the picture
        self.sim.ok("set 1 pv 18000")
        try:
            self.assertNotEqual(self.answer(request(1, "RCS"), 76814, b"\x02001RCS,OK,"), first)  # the PV is drawn
        finally:
            self.sim.ok("set 1 pv auto")

    def test_other_machine_numbers_get_no_answer(self):
        other = lambda: int(self.sim.command("stats").split("other:")[1].split()[0])
        before = other()
        self.port.reset_input_buffer()
        self.port.write(request(2, "WHO"))
        self.assertTrue(silent_for(self.port, 0.4))
        self.assertEqual(other(), before + 1)

    def test_zero_bytes_and_garbage_between_frames_are_skipped(self):
        self.port.reset_input_buffer()
        self.port.write(b"\x00" + request(1, "RRP", 6) + b"\x00\xFF\x02\x41zz\x02001XYZ" + request(12, "RRP", 7) + b"\x00")
        self.assertEqual(read_exact(self.port, 21)[:16], b"\x02001RRP,OK,0006,")
        self.assertEqual(read_exact(self.port, 21)[:16], b"\x02012RRP,OK,0007,")

    def test_the_link_survives_the_client_closing_it(self):
        for _ in range(3):
            port = self.sim.open_port()
            port.write(request(1, "WHO"))
            self.assertIn(b"QM", read_reply(port))
            port.close()


class Blocks(SimCase):
    """Whole blocks as the backup and restore chains write and read them, kept byte-exact."""

    options = ("--machines", "1,2:2.09,3:1.81,4:1.80", "--seed", "0", "--speed", "0", "--no-pace")

    def test_whole_parameter_block_of_every_firmware_size(self):
        rng = random.Random(1)
        for machine, rows in ((1, 512), (2, 492), (3, 456), (4, 392)):
            with self.subTest(machine=machine):
                block = self.random_block(rng, machine, rows)
                ack = self.ask(request(machine, "WUP", 0, data=to_bytes(block)), 18)
                self.assertEqual(ack, b"\x02%03dWUP,OK,0000\x03\r\n" % machine)
                self.assertEqual(self.dump("up", machine), to_bytes(block))
                self.assertEqual(self.ask(request(machine, "RUP", 0), 19 + 2 * rows)[16:-3], to_bytes(block))
        # A block holding ETX CR LF just where a 392-row block would end is taken whole.
        block = self.random_block(rng, 1, 512)
        block[392], block[393] = 0x030D, 0x0A00
        self.ask(request(1, "WUP", 0, data=to_bytes(block)), 18)
        self.assertEqual(self.dump("up"), to_bytes(block))
        # A block of another size is refused and changes nothing.
        before = self.dump("up", 2)
        self.assertNotIn(b",OK,", self.ask(request(2, "WUP", 0, data=bytes(2 * 512))))
        self.assertEqual(self.dump("up", 2), before)


class GeneratedPrograms(SimCase):
    """The program memory filled by the control command, per firmware's pattern count."""

    options = ("--machines", "1,12:2.09", "--seed", "0", "--speed", "0", "--no-pace")

    def segments(self, machine, pattern):
        header = b"\x02%03dRPD,OK,%04d,0000," % (machine, pattern)
        reply = self.ask(request(machine, "RPD", pattern, 0), 186)
        self.assertEqual(reply[:len(header)], header)
        return words(reply[len(header):-3])[0]

    def test_patterns_get_segments_names_and_the_rest_is_empty(self):
        self.sim.ok("programs all 30 10")
        for machine, count in [(1, 100), (12, 300)]:
            self.assertEqual([self.segments(machine, p) for p in (1, 30, 31, count)], [10, 10, 0, 0])
            name = self.ask(request(machine, "RTD", 11 + 30), 48)[16:45]
            self.assertEqual(name.rstrip(b"\0").decode("big5"), "程式30")
            self.assertEqual(self.ask(request(machine, "RTD", 11 + 31), 48)[16:45], bytes(29))
            segment = words(self.ask(request(machine, "RSD", 30, 10, 0), 87)[26:-3])
            self.assertEqual(len(segment), 29)
            self.assertNotEqual(segment[3], 0)  # a duration
        self.assertNotIn(b",OK,", self.ask(request(1, "RPD", 101, 0)))  # 100 patterns on 2.31
        self.assertTrue(self.sim.command("programs 1 5 101").startswith("error"))
        self.assertTrue(self.sim.command("programs 9 5 5").startswith("error"))


class WithSum(SimCase):
    options = ("--protocol", "PC Link + crc", "--machines", "1", "--speed", "0", "--no-pace")

    def test_every_reply_carries_the_byte_sum(self):
        for frame, length in [(request(1, "RRP", 1, crc=True), 23), (request(1, "RCV", crc=True), 61),
                              (request(1, "WUP", 9, data=b"\x00\x01", crc=True), 20)]:
            reply = self.ask(frame, length)
            self.assertEqual(reply[-5:-2], b"\x03\r\n")
            self.assertEqual(reply, with_sum(reply[:-2]))

    def test_a_wrong_sum_gets_no_reply(self):
        good = request(1, "RRP", 1, crc=True)
        bad = good[:-1] + bytes([good[-1] ^ 1])
        self.port.reset_input_buffer()
        self.port.write(bad)
        self.assertTrue(silent_for(self.port, 0.4))
        self.assertEqual(self.ask(bad + good, 23)[:16], b"\x02001RRP,OK,0001,")


class Pacing(unittest.TestCase):
    def test_long_replies_take_their_wire_time(self):
        sim = Simulator("--baud", "9600", "--speed", "0")
        try:
            port = sim.open_port()
            start = time.monotonic()
            port.write(request(1, "RUP", 0))
            reads, data = 0, b""
            while len(data) < 1043 and time.monotonic() - start < 5:
                chunk = port.read(max(1, port.in_waiting))
                reads += 1 if chunk else 0
                data += chunk
            elapsed = time.monotonic() - start
            port.close()
        finally:
            sim.close()
        self.assertEqual(len(data), 1043)
        self.assertGreater(elapsed, 0.8)  # 1043 bytes of 10 bits at 9600 baud: about 1.1 s
        self.assertGreater(reads, 2)  # in pieces, as on a real line


@unittest.skipUnless(shutil.which("socat"), "needs socat for a pair of devices")
class ExistingDevice(unittest.TestCase):
    def test_serves_a_device_given_with_port(self):
        folder = tempfile.mkdtemp(prefix="qm730-sim-port-")
        a, b = os.path.join(folder, "a"), os.path.join(folder, "b")
        pair = subprocess.Popen(["socat", f"pty,raw,echo=0,link={a}", f"pty,raw,echo=0,link={b}"])
        sim = None
        try:
            deadline = time.monotonic() + 5
            while not (os.path.exists(a) and os.path.exists(b)) and time.monotonic() < deadline:
                time.sleep(0.02)
            sim = Simulator("--port", a, "--machines", "4", link=False)
            self.assertIn(f"ready: {a} (PC Link; machines 4)", sim.ready_line)
            with serial.Serial(b, 115200, timeout=2) as port:
                port.write(request(4, "RRP", 1))
                self.assertEqual(read_exact(port, 21)[:16], b"\x02004RRP,OK,0001,")
        finally:
            if sim:
                sim.close()
            pair.terminate()
            pair.wait(5)
            shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    unittest.main()
