"""The whole-block reads and writes of a backup and a restore, in PC Link and in
Modbus RTU, taken byte-exact and kept by qm730-sim, seen through its `dump`
control command."""

import logging
import random
import unittest

from pymodbus.file_message import FileRecord, ReadFileRecordRequest, WriteFileRecordRequest

from simtest import ModbusCase, SimCase, request, words

logging.getLogger("pymodbus").setLevel(logging.CRITICAL)

CLOCK_ROWS = range(12, 18)  # the controller's running clock


def to_bytes(values):
    return b"".join(v.to_bytes(2, "big") for v in values)


class DumpMixin:
    def dump(self, what, machine=1):
        answer = self.sim.command(f"dump {machine} {what}")
        self.assertFalse(answer.startswith("error"), answer)
        return bytes.fromhex(answer)

    def random_block(self, rng, machine, rows):
        """Random words for a whole parameter block, the clock rows as the machine has them."""
        block = [rng.randrange(65536) for _ in range(rows)]
        for row in CLOCK_ROWS:
            block[row - 1] = self.sim.word(f"{machine} up {row}")
        return block


class PcLinkBlocks(DumpMixin, SimCase):
    options = ("--machines", "1,2:2.09,3:1.81,4:1.80", "--seed", "0", "--speed", "0", "--no-pace")

    def ask(self, frame, length=None, crc=False, timeout=3.0):
        reply = super().ask(frame, length, crc, timeout)
        self.assertIn(b",OK,", reply)
        return reply

    def test_whole_parameter_block_of_every_firmware_size(self):
        rng = random.Random(1)
        for machine, rows in ((1, 512), (2, 492), (3, 456), (4, 392)):
            with self.subTest(machine=machine):
                block = self.random_block(rng, machine, rows)
                ack = self.ask(request(machine, "WUP", 0, data=to_bytes(block)), 18)
                self.assertEqual(ack, b"\x02%03dWUP,OK,0000\x03\r\n" % machine)
                self.assertEqual(self.dump("up", machine), to_bytes(block))
                reply = self.ask(request(machine, "RUP", 0), 19 + 2 * rows)
                self.assertEqual(reply[16:-3], to_bytes(block))

    def test_block_holding_the_end_of_a_smaller_block_is_taken_whole(self):
        # ETX CR LF in the data just where a 392-row block would end.
        block = self.random_block(random.Random(2), 1, 512)
        block[392], block[393] = 0x030D, 0x0A00
        self.ask(request(1, "WUP", 0, data=to_bytes(block)), 18)
        self.assertEqual(self.dump("up"), to_bytes(block))

    def test_block_of_another_size_is_refused_and_changes_nothing(self):
        before = self.dump("up", 2)
        reply = super().ask(request(2, "WUP", 0, data=bytes(2 * 512)))
        self.assertNotIn(b",OK,", reply)
        self.assertEqual(self.dump("up", 2), before)

    def test_text_pattern_and_segment_rows_whole(self):
        rng = random.Random(3)
        name = "高溫高濕試驗".encode("big5") + b"\x01\x7f" + bytes(15)  # 29 bytes
        self.ask(request(1, "WTD", 57, data=name), 18)
        self.assertEqual(self.dump("td")[56 * 30 : 57 * 30], name + b"\0")
        pattern = [rng.randrange(65536) for _ in range(81)]
        self.ask(request(1, "WPD", 42, 0, data=to_bytes(pattern)), 23)
        self.assertEqual(self.dump("pd")[41 * 162 : 42 * 162], to_bytes(pattern))
        segment = [rng.randrange(65536) for _ in range(29)]
        self.ask(request(1, "WSD", 42, 100, 0, data=to_bytes(segment)), 28)
        self.assertEqual(self.dump("sd 42")[99 * 58 :], to_bytes(segment))
        reply = self.ask(request(1, "RSD", 42, 100, 0), 87)
        self.assertEqual(reply[26:-3], to_bytes(segment))

    def test_dump_refuses_what_it_does_not_know(self):
        for line in ("dump 9 up", "dump 1 rcv", "dump 1 sd", "dump 1 sd 101", "dump 1"):
            self.assertTrue(self.sim.command(line).startswith("error"), line)


class ModbusBlocks(DumpMixin, ModbusCase):
    options = ("--protocol", "Modbus RTU", "--machines", "1", "--seed", "0", "--speed", "0", "--no-pace")

    def test_parameter_block_in_five_pieces_both_ways(self):
        block = self.random_block(random.Random(4), 1, 512)
        padded = block + [0] * 88  # the fifth piece runs on to register 40700
        for k in range(5):
            self.write(40101 + 120 * k, padded[120 * k : 120 * (k + 1)])
        self.assertEqual(self.dump("up"), to_bytes(block))
        pieces = [self.read(40101 + 120 * k, 120) for k in range(4)] + [self.read(40581, 32)]
        self.assertEqual(sum(pieces, []), block)

    def test_text_rows_in_the_chains_blocks(self):
        rng = random.Random(5)
        rows = {3: "門開關".encode("big5").ljust(30, b"\0"), 10: bytes(rng.randrange(1, 256) for _ in range(30)),
                12: "程式組A".encode("big5").ljust(24, b"\0"), 111: bytes(rng.randrange(1, 256) for _ in range(24))}
        for row, data in rows.items():
            start = 42001 + 15 * (row - 1) if row <= 8 else 43001 + 15 * (row - 9) if row <= 11 else 44001 + 12 * (row - 12)
            self.write(start, words(data))
        td = self.dump("td")
        for row, data in rows.items():
            self.assertEqual(td[(row - 1) * 30 : row * 30], data.ljust(30, b"\0"), row)
        # Read back as the receive chain reads: 8 rows, 3 rows, then ten names a read.
        texts = to_bytes(self.read(42001, 120)) + to_bytes(self.read(43001, 45))
        self.assertEqual(texts, td[: 11 * 30])
        names = b"".join(to_bytes(self.read(44001 + 120 * k, 120)) for k in range(10))
        self.assertEqual(names, b"".join(td[(row - 1) * 30 : (row - 1) * 30 + 24] for row in range(12, 112)))

    def test_pattern_rows_and_segments_whole(self):
        rng = random.Random(6)
        pattern = [rng.randrange(65536) for _ in range(81)]
        self.write(50001 + 81 * 99, pattern)  # pattern 100, the last
        self.assertEqual(self.dump("pd")[99 * 162 :], to_bytes(pattern))
        self.assertEqual(self.read(50001 + 81 * 99, 81), pattern)
        data = bytes(rng.randrange(256) for _ in range(58))
        write = WriteFileRecordRequest(records=[FileRecord(reference_type=6, file_number=100, record_number=100,
                                                           record_data=data)], unit=1)
        self.assertFalse(self.client.execute(write).isError())
        self.assertEqual(self.dump("sd 100")[99 * 58 :], data)
        read = ReadFileRecordRequest(records=[FileRecord(reference_type=6, file_number=100, record_number=100,
                                                         record_length=29)], unit=1)
        self.assertEqual(self.client.execute(read).records[0].record_data, data)


if __name__ == "__main__":
    unittest.main()
