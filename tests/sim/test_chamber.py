"""The chambers behind qm730-sim: runs, signals, alarms and the deterministic mode.
Time is stepped with the control command "tick" (--speed 0), so the values are exact."""

import datetime
import time
import unittest

from simtest import Simulator, temp_word


class Chamber(unittest.TestCase):
    options = ("--seed", "0", "--speed", "0")

    def setUp(self):
        self.sim = Simulator(*self.options)

    def tearDown(self):
        self.sim.close()

    def rcv(self, row):
        return self.sim.word(f"1 rcv {row}")

    def rrp(self, row):
        return self.sim.word(f"1 rrp {row}")

    def start_pattern(self, pattern):
        self.sim.ok(f"set 1 rrp 8 {pattern}", "set 1 rrp 9 1", "set 1 rrp 1 1")
        self.assertEqual(self.rrp(1), 1)

    def test_program_run_ramps_through_its_segments(self):
        self.start_pattern(3)  # 25.0 / 60 % -> 30.0 / 50 % in 1 min, then 35.0 / 55 % in 1 min
        self.assertEqual([self.rcv(21), self.rcv(22), self.rcv(19), self.rcv(20)], [3, 1, 0, 1])
        self.sim.ok("tick 30")
        self.assertEqual(self.rcv(1), temp_word(27.5))
        self.assertEqual(self.rcv(4), 550)
        self.assertEqual(self.rcv(8) & 1, 1)  # time signal 1 is on for the whole segment
        self.assertEqual(self.rcv(27), 0x80 | 0x02)  # temperature rising, humidity falling
        self.assertEqual(self.rcv(16), 30)
        self.sim.ok("tick 30")
        self.assertEqual([self.rcv(22), self.rcv(8) & 1], [2, 0])
        self.sim.ok("tick 60")
        self.assertEqual([self.rrp(1), self.rcv(21), self.rcv(22)], [0, 0, 0])

    def test_hold_freezes_and_step_jumps(self):
        self.start_pattern(1)  # first segment: 25 -> 85 degrees in 30 min
        self.sim.ok("tick 60")
        self.assertEqual(self.rcv(1), temp_word(27.0))
        self.sim.ok("set 1 rrp 3 1", "tick 60")
        self.assertEqual([self.rcv(1), self.rcv(17), self.rcv(18)], [temp_word(27.0), 0, 1])
        self.sim.ok("set 1 rrp 3 0", "set 1 rrp 2 1")
        self.assertEqual([self.rcv(22), self.rrp(2)], [2, 1])
        self.sim.ok("tick 1")
        self.assertEqual(self.rrp(2), 0)

    def test_timed_signal_follows_delay_and_on_time(self):
        self.start_pattern(1)
        self.sim.ok("set 1 rrp 2 1")  # segment 2: T/S 2 on after 10 min, for 20 min
        states = []
        for seconds in (599, 2, 1198, 2):
            self.sim.ok(f"tick {seconds}")
            states.append(self.rcv(8) & 2)
        self.assertEqual(states, [0, 2, 2, 0])

    def test_wait_at_the_end_of_a_segment(self):
        self.sim.ok("set 1 sd 3 1 3 256", f"set 1 pv {temp_word(0.0)}", "set 1 hpv 500")
        self.start_pattern(3)
        self.sim.ok("tick 90")
        self.assertEqual(self.rcv(22), 1)
        self.assertEqual(self.rcv(27), 0x10)  # waiting for the temperature
        self.sim.ok(f"set 1 pv {temp_word(29.5)}", "tick 1")
        self.assertEqual(self.rcv(22), 2)

    def test_partial_repeats_and_pattern_runs(self):
        # Pattern 2: segments 2 and 3 repeated twice more, the whole pattern run twice.
        self.start_pattern(2)
        seen = []
        while self.rrp(1) == 1 and len(seen) < 40:
            seen.append((self.rcv(22), self.rcv(25), self.rcv(26), self.rcv(23), self.rcv(24)))
            self.sim.ok("set 1 rrp 2 1")
        run = [(1, 0, 0), (2, 0, 2), (3, 0, 2), (2, 1, 2), (3, 1, 2), (2, 2, 2), (3, 2, 2), (4, 0, 0)]
        self.assertEqual(seen, [s + (0, 2) for s in run] + [s + (1, 2) for s in run])

    def test_linked_pattern_follows(self):
        self.sim.ok("set 1 pd 3 6 1")
        self.start_pattern(3)
        self.sim.ok("set 1 rrp 2 1", "set 1 rrp 2 1")
        self.assertEqual([self.rrp(1), self.rcv(21), self.rcv(22)], [1, 1, 1])

    def test_fixed_run_with_a_time_limit(self):
        self.sim.ok("set 1 up 1 1", "set 1 up 2 0", "set 1 up 3 2", "set 1 up 4 0", "set 1 up 5 0",
                    f"set 1 rrp 12 {temp_word(30.0)}", "set 1 rrp 13 500", "set 1 rrp 1 1")
        self.assertEqual([self.rcv(13), self.rcv(1), self.rcv(4)], [1, temp_word(30.0), 500])
        self.sim.ok("tick 60")
        self.assertTrue(temp_word(26.0) < self.rcv(2) < temp_word(30.0))
        self.assertGreater(self.rcv(3), 0)
        self.assertTrue(self.rcv(7) & 0x100)  # T.ON 1: heating
        self.assertEqual([self.rcv(17), self.rcv(18), self.rcv(19), self.rcv(20)], [0, 1, 0, 2])
        self.sim.ok(f"set 1 pv {temp_word(30.5)}", "tick 1")
        self.assertEqual(self.rcv(7) & 1, 1)  # inner signal 1: PV within 2 degrees of SV
        self.sim.ok(f"set 1 pv {temp_word(33.0)}", "tick 1")
        self.assertEqual(self.rcv(7) & 1, 0)
        self.sim.ok("set 1 pv auto", "tick 60")
        self.assertEqual(self.rrp(1), 0)

    def test_fixed_run_ramps_its_sv(self):
        self.sim.ok("set 1 up 1 1", "set 1 up 4 30", f"set 1 rrp 12 {temp_word(40.0)}", "set 1 rrp 1 1", "tick 60")
        self.assertEqual(self.rcv(1), temp_word(28.0))  # 3.0 degrees a minute from the PV
        self.assertEqual(self.rcv(27) & 0xF0, 0x80)

    def test_auto_tuning_runs_for_a_while(self):
        self.sim.ok("set 1 rrp 4 1")
        self.assertEqual(self.rrp(4), 0)  # refused while stopped
        self.start_pattern(1)
        self.sim.ok("set 1 rrp 4 1", "tick 100")
        self.assertEqual(self.rrp(4), 1)
        self.sim.ok("tick 30")
        self.assertEqual(self.rrp(4), 0)

    def reserve_in_two_minutes(self):
        """Sets a reserved start two minutes ahead of the controller's clock; the clock."""
        clock = datetime.datetime(*[self.sim.word(f"1 up {r}") for r in range(12, 18)])
        at = (clock + datetime.timedelta(minutes=2)).replace(second=0)
        self.sim.ok(*[f"set 1 up {r} {v}" for r, v in zip(range(18, 24), (at.year, at.month, at.day, at.hour, at.minute, 1))])
        return clock, at

    def test_clock_and_reserved_start(self):
        self.reserve_in_two_minutes()
        self.assertEqual([self.rrp(14), self.rrp(1)], [1, 0])
        self.sim.ok("set 1 up 23 0")  # the enable row cleared: no reservation
        self.assertEqual(self.rrp(14), 0)
        self.sim.ok("set 1 up 23 1", "tick 200")
        self.assertEqual([self.rrp(1), self.rrp(14), self.sim.word("1 up 23")], [1, 0, 0])

        self.sim.ok(*[f"set 1 up {r} {v}" for r, v in zip(range(12, 18), (2031, 2, 3, 4, 5, 6))], "tick 10")
        self.assertEqual([self.sim.word(f"1 up {r}") for r in range(12, 18)], [2031, 2, 3, 4, 5, 16])

    def test_a_reserved_start_waits_for_its_enable_row_and_lapses_while_running(self):
        clock, soon = self.reserve_in_two_minutes()
        # Rows being rewritten one by one: a past time half written starts nothing.
        self.sim.ok(f"set 1 up 18 {clock.year - 1}", "tick 5")
        self.assertEqual([self.rrp(1), self.rrp(14)], [0, 0])
        self.sim.ok(f"set 1 up 18 {soon.year}", "set 1 up 23 1", "tick 5")
        self.assertEqual([self.rrp(1), self.rrp(14)], [0, 1])
        # Running when the time comes: the reservation lapses, the run goes on, its end starts nothing.
        self.sim.ok("set 1 up 1 1", "set 1 up 2 0", "set 1 up 3 0", "set 1 rrp 1 1")  # an endless fixed run
        self.sim.ok("tick 200")
        self.assertEqual([self.rrp(1), self.sim.word("1 up 23")], [1, 0])
        self.sim.ok("set 1 rrp 1 0", "tick 5")
        self.assertEqual(self.rrp(1), 0)

    def test_the_screen_shows_the_clock_and_a_waiting_reservation(self):
        path = f"{self.sim.dir}/screen.ppm"
        shot = lambda: (self.sim.ok(f"screen 1 {path}"), open(path, "rb").read())[1]
        plain = shot()
        self.sim.ok(*[f"set 1 up {r} {v}" for r, v in zip(range(12, 18), (2031, 2, 3, 4, 5, 6))])
        with_clock = shot()
        self.assertNotEqual(plain, with_clock)
        self.sim.ok(*[f"set 1 up {r} {v}" for r, v in zip(range(18, 24), (2031, 2, 4, 8, 0, 1))])
        self.assertEqual(self.rrp(14), 1)
        reserved = shot()
        self.assertNotEqual(with_clock, reserved)
        # Only the title bar (lines 3 to 24 from the top) changed.
        rows = lambda picture: [picture[-320 * 240 * 3:][y * 960:(y + 1) * 960] for y in range(240)]
        changed = [y for y, (a, b) in enumerate(zip(rows(with_clock), rows(reserved))) if a != b]
        self.assertTrue(changed and min(changed) >= 3 and max(changed) < 25, changed)

    def test_system_alarm_with_hysteresis_drives_its_relay(self):
        self.sim.ok(f"set 1 pv {temp_word(160.0)}", "tick 1")
        self.assertEqual(self.rcv(9) & 0x10, 0x10)  # system alarm 1: above 150 degrees
        self.assertEqual(self.rcv(10) & 0x08, 0x08)  # wired to relay 4
        self.sim.ok(f"set 1 pv {temp_word(149.5)}", "tick 1")
        self.assertEqual(self.rcv(9) & 0x10, 0x10)
        self.sim.ok(f"set 1 pv {temp_word(148.0)}", "tick 1")
        self.assertEqual([self.rcv(9) & 0x10, self.rcv(10) & 0x08], [0, 0])

    def test_resolution_and_setpoint_limits(self):
        self.sim.ok("set 1 up 506 2")
        self.assertEqual(self.rrp(15), 2)
        self.sim.ok("set 1 rrp 15 5")
        self.assertEqual([self.rrp(15), self.sim.word("1 up 506")], [2, 2])
        self.sim.ok(f"set 1 rrp 12 {temp_word(190.0)}")
        self.assertEqual(self.rrp(12), temp_word(180.0))  # settable range high


class LegacyFirmware(Chamber):
    options = ("--seed", "0", "--speed", "0", "--machines", "1:1.80")

    def test_block_size_and_rows(self):
        self.assertFalse(self.sim.command("get 1 up 392").startswith("error"))
        self.assertTrue(self.sim.command("get 1 up 393").startswith("error"))
        self.assertEqual(self.sim.word("1 up 80"), 1)  # display resolution on the legacy row
        self.assertEqual(self.sim.word("1 pd 300 5"), 1)  # 300 patterns

    # The resolution row of the current layout does not exist here.
    test_resolution_and_setpoint_limits = None


class Deterministic(unittest.TestCase):
    def sample(self, seed):
        sim = Simulator("--seed", str(seed), "--speed", "0")
        try:
            sim.ok("set 1 rrp 1 1")
            values = []
            for _ in range(5):
                sim.ok("tick 7")
                values.append([sim.word(f"1 rcv {r}") for r in range(1, 28)])
            return values
        finally:
            sim.close()

    def test_the_same_seed_gives_the_same_values(self):
        first = self.sample(7)
        self.assertEqual(first, self.sample(7))
        other = self.sample(8)
        self.assertNotEqual([v[1] for v in first] + [v[4] for v in first], [v[1] for v in other] + [v[4] for v in other])

    def test_speed_runs_the_chamber_clock(self):
        sim = Simulator("--seed", "0", "--speed", "600")
        try:
            sim.ok("set 1 rrp 8 3", "set 1 rrp 1 1")
            deadline = time.monotonic() + 10
            while sim.word("1 rcv 22") != 2 and time.monotonic() < deadline:
                time.sleep(0.02)
            self.assertEqual(sim.word("1 rcv 22"), 2)  # a one-minute segment passed in a tenth of a second
            sim.ok("speed 0")
            frozen = sim.word("1 rcv 16")
            time.sleep(0.3)
            self.assertEqual(sim.word("1 rcv 16"), frozen)
        finally:
            sim.close()


if __name__ == "__main__":
    unittest.main()
