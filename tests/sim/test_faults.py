"""Faults switched on and off while qm730-sim runs, from a start script and the control socket."""

import os
import time
import unittest

from simtest import SimCase, read_burst, read_exact, request, silent_for, temp_word, words

START_SCRIPT = """# machine 2 starts silent
fault 2 silent on
set 1 rrp 10 77
"""


class Scenario(SimCase):
    options = ("--machines", "1,2", "--seed", "0", "--speed", "0", "--no-pace", "--trace", "{dir}/trace.txt")
    script = START_SCRIPT

    def who(self, machine):
        return self.ask(request(machine, "WHO"), timeout=1.0)

    def rrp1(self):
        return self.ask(request(1, "RRP", 1), 21, timeout=2.0)

    def test_a_start_script_ran(self):  # first: machine 2 answers from here on
        self.assertEqual(self.sim.word("1 rrp 10"), 77)
        self.port.write(request(2, "WHO"))
        self.assertTrue(silent_for(self.port, 0.4))
        self.assertIn(b"QM", self.who(1))  # the other machine answers
        self.sim.ok("fault 2 silent off")
        self.assertIn(b"QM", self.who(2))

    def test_sensor_burn_out_on_and_off(self):
        self.sim.ok("set 1 pv 65535")
        self.assertEqual(self.ask(request(1, "RCV"), 59)[13:15], b"\xFF\xFF")
        self.assertTrue(self.sim.word("1 rcv 10") & (1 << 7))  # relay 8 is wired to the burn-out
        self.sim.ok("set 1 pv auto")
        self.assertEqual(words(self.ask(request(1, "RCV"), 59)[13:15]), [temp_word(25.0)])
        self.assertFalse(self.sim.word("1 rcv 10") & (1 << 7))

    def test_reply_shape_faults(self):
        clean = self.rrp1()
        cases = {
            "noise": lambda r: r.endswith(clean) and len(r) > len(clean) and b"\x02" not in r[: r.index(b"\x02001")],
            "badetx": lambda r: r[18] != 3 and r[:18] == clean[:18],
            "exception": lambda r: b",OK," not in r,
            "wrongmachine": lambda r: r[:4] == b"\x02002" and r[4:] == clean[4:],
            "short": lambda r: r == clean[:-1],
            "cut": lambda r: r == clean[: len(clean) // 2],
        }
        for name, check in cases.items():
            with self.subTest(fault=name):
                self.sim.ok(f"fault 1 {name} on")
                try:
                    self.port.reset_input_buffer()
                    self.port.write(request(1, "RRP", 1))
                    reply = read_burst(self.port)
                finally:
                    self.sim.ok(f"fault 1 {name} off")
                self.assertTrue(check(reply), reply)
        self.assertEqual(self.rrp1(), clean)

    def test_identity_without_model(self):
        self.sim.ok("fault 1 noqm on")
        try:
            reply = self.who(1)
        finally:
            self.sim.ok("fault 1 noqm off")
        self.assertTrue(reply.startswith(b"\x02001WHO,OK,") and b"F/W" in reply)
        self.assertNotIn(b"QM", reply)

    def test_timing_faults(self):
        self.sim.ok("fault 1 delay on 400")
        try:
            start = time.monotonic()
            self.rrp1()
            self.assertGreater(time.monotonic() - start, 0.35)
        finally:
            self.sim.ok("fault 1 delay off")

        self.sim.ok("fault 1 split on 600")
        try:
            self.port.reset_input_buffer()
            self.port.write(request(1, "RRP", 1))
            first = read_exact(self.port, 10, timeout=1.0)
            self.assertTrue(silent_for(self.port, 0.15))  # the pause between the pieces
            rest = read_exact(self.port, 11, timeout=1.0)
        finally:
            self.sim.ok("fault 1 split off")
        self.assertEqual(first + rest, self.rrp1())

    def test_control_errors(self):
        for line in ["fault 9 silent on", "fault 1 sulky on", "fault 1 silent maybe", "set 1 rrp 18 1",
                     "set 1 up 600 1", "get 1 rcv 28", "set 1 rrp 1 70000", "frobnicate", "screen 9 /tmp/x.ppm",
                     "screen 1", "screen 1 /nonexistent-folder/x.ppm",
                     "dump 9 up", "dump 1 rcv", "dump 1 sd", "dump 1 sd 101", "dump 1"]:
            with self.subTest(line=line):
                self.assertTrue(self.sim.command(line).startswith("error: "))

    def test_statistics_log_and_trace(self):
        self.sim.ok("stats clear", "log clear")
        frames = [request(1, "RRP", 3), request(2, "RRP", 3), request(1, "RUP", 9)]
        for frame in frames:
            self.port.write(frame)
            read_exact(self.port, 21)
        self.assertEqual(self.sim.command("stats 1"), "2 2")
        self.assertEqual(self.sim.command("stats 2"), "1 1")
        self.assertEqual(self.sim.command("log").split(), [f.hex().upper() for f in frames])
        with open(os.path.join(self.sim.dir, "trace.txt")) as f:
            lines = f.read().splitlines()
        self.assertIn("rx " + frames[2].hex().upper(), lines)
        self.assertIn("tx " + (b"\x02001RUP,OK,0009,\x00\x01\x03\r\n").hex().upper(), lines)


class Unplugging(SimCase):
    """The line taken away and brought back under the same link, as a pulled USB adapter
    (the answers before and after: tests/integration, the pulled line)."""

    options = ("--machines", "1", "--seed", "0", "--speed", "0", "--no-pace")
    serial = False

    def test_unplug_and_plug(self):
        self.sim.ok("unplug")
        self.assertFalse(os.path.exists(self.sim.link))
        self.assertTrue(self.sim.command("unplug").startswith("error: "))
        self.sim.ok("plug")
        self.assertTrue(os.path.exists(self.sim.link))
        self.assertTrue(self.sim.command("plug").startswith("error: "))


if __name__ == "__main__":
    unittest.main()
