"""Modbus RTU of qm730-sim, read and written with Debian's pymodbus as an independent client."""

import logging
import random
import unittest

import serial
from pymodbus.file_message import FileRecord, ReadFileRecordRequest, WriteFileRecordRequest

from simtest import ModbusCase, silent_for, temp_word, to_bytes, words

logging.getLogger("pymodbus").setLevel(logging.CRITICAL)


def crc16(data):
    crc = 0xFFFF
    for b in data:
        crc ^= b
        for _ in range(8):
            crc = (crc >> 1) ^ 0xA001 if crc & 1 else crc >> 1
    return bytes([crc & 0xFF, crc >> 8])


class Registers(ModbusCase):
    options = ("--protocol", "Modbus RTU", "--machines", "1,5:2.09", "--seed", "0", "--speed", "0", "--no-pace")

    def test_run_parameters_and_live_status(self):
        self.assertEqual(self.read(40001, 17), [self.sim.word(f"1 rrp {r}") for r in range(1, 18)])
        self.write(40012, [temp_word(55.5)])
        self.assertEqual(self.sim.word("1 rrp 12"), temp_word(55.5))
        self.sim.ok("set 1 rcv 9 17")
        try:
            status = self.read(30101, 27)
            self.assertEqual(status, [self.sim.word(f"1 rcv {r}") for r in range(1, 28)])
        finally:
            self.sim.ok("set 1 rcv 9 auto")
        self.assertEqual(status[8], 17)
        self.assertEqual(status[1], temp_word(25.0))  # no noise: the stopped chamber stands at 25.00

    def test_rows_by_their_plain_number(self):
        # Fields written as the plain row in every protocol: the same row as in the block's map.
        self.write(73, [9])
        self.assertEqual([self.sim.word("1 up 73")] + self.read(40173, 1), [9, 9])
        # Below firmware 2.2 the pages address every row by its plain number.
        self.write(87, [0], slave=5)  # system alarm enable
        self.assertEqual(self.sim.word("5 up 87"), 0)
        self.write(161, [0x0805], slave=5)  # D/I line 1: action 8, wait 5
        self.assertEqual(self.read(161, 1, slave=5) + self.read(40261, 1, slave=5), [0x0805, 0x0805])
        # Past the legacy block's 492 rows there is no plain row.
        self.assertEqual(self.client.read_holding_registers(493, 1, slave=5).exception_code, 2)
        self.assertEqual(self.client.write_registers(493, [1], slave=5).exception_code, 2)
        self.write(87, [1], slave=5)

    def test_exception_replies(self):
        self.assertEqual(self.client.read_holding_registers(50001 + 81 * 100, 81, slave=1).exception_code, 2)  # 100 patterns
        self.assertEqual(self.client.read_holding_registers(39999, 2, slave=1).exception_code, 2)
        self.assertEqual(self.client.read_holding_registers(40016, 3, slave=1).exception_code, 2)
        self.assertEqual(self.client.write_registers(30101, [1], slave=1).exception_code, 2)
        self.assertEqual(self.client.read_input_registers(30001, 2, slave=1).exception_code, 1)
        self.sim.ok("fault 1 exception on")
        try:
            self.assertEqual(self.client.read_holding_registers(40001, 17, slave=1).exception_code, 4)
        finally:
            self.sim.ok("fault 1 exception off")

    def test_only_machines_on_the_line_answer(self):
        self.client.close()
        port = serial.Serial(self.sim.link, 115200, timeout=2)
        try:
            frame = bytes([9, 3, 0x9C, 0x41, 0, 17])
            port.write(frame + crc16(frame))
            self.assertTrue(silent_for(port, 0.4))
            frame = bytes([1, 3, 0x9C, 0x41, 0, 1])
            bad = frame + bytes([crc16(frame)[0] ^ 1, crc16(frame)[1]])
            port.write(bad)
            self.assertTrue(silent_for(port, 0.4))
            # The console follows each frame with a zero byte; the next frame must still be found.
            port.write(b"\x00" + frame + crc16(frame) + b"\x00")
            reply = port.read(7)
            self.assertEqual(reply[:3], bytes([1, 3, 2]))
            self.assertEqual(reply[5:], crc16(reply[:5]))
        finally:
            port.close()
            self.client.connect()



class Blocks(ModbusCase):
    """Whole blocks as the backup and restore chains write and read them, kept byte-exact."""

    options = ("--protocol", "Modbus RTU", "--machines", "1", "--seed", "0", "--speed", "0", "--no-pace")

    def test_parameter_block_in_the_consoles_pieces_both_ways(self):
        # Written in five pieces of 120; the last one runs on to 40700, the first extra row.
        block = self.random_block(random.Random(4), 1, 512)
        padded = block + [0] * 87 + [1]
        for k in range(5):
            self.write(40101 + 120 * k, padded[120 * k : 120 * (k + 1)])
        self.assertEqual(self.dump("up"), to_bytes(block))
        self.assertEqual(self.sim.word("1 upplus 88"), 1)
        self.assertEqual(self.read(40700, 2), [1, 0])
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
        self.assertEqual(self.sim.command("get 1 td 12"), "程式組A")
        # Read back as the receive chain reads: 8 rows, 3 rows, then ten names a read.
        self.assertEqual(to_bytes(self.read(42001, 120)) + to_bytes(self.read(43001, 45)), td[: 11 * 30])
        names = b"".join(to_bytes(self.read(44001 + 120 * k, 120)) for k in range(10))
        self.assertEqual(names, b"".join(td[(row - 1) * 30 : (row - 1) * 30 + 24] for row in range(12, 112)))

    def test_patterns_by_registers_and_segments_by_file_records(self):
        self.assertEqual(self.read(50001, 81)[0], 4)  # pattern 1 has four segments
        pattern = [random.randrange(65536) for _ in range(81)]
        self.write(50001 + 81 * 99, pattern)  # pattern 100, the last
        self.assertEqual(self.dump("pd")[99 * 162 :], to_bytes(pattern))
        self.assertEqual(self.read(50001 + 81 * 99, 81), pattern)

        def record(file, number, data=None):
            r = FileRecord(reference_type=6, file_number=file, record_number=number, record_length=29, record_data=data or b"")
            return self.client.execute((WriteFileRecordRequest if data else ReadFileRecordRequest)(records=[r], unit=1))

        segment = record(1, 2).records[0].record_data
        self.assertEqual((len(segment), int.from_bytes(segment[:2], "big")), (58, temp_word(85.0)))
        data = bytes(random.randrange(256) for _ in range(58))
        self.assertFalse(record(100, 100, data).isError())
        self.assertEqual(self.dump("sd 100")[99 * 58 :], data)
        self.assertEqual(record(100, 100).records[0].record_data, data)

if __name__ == "__main__":
    unittest.main()
