"""Modbus RTU of qm730-sim, read and written with Debian's pymodbus as an independent client."""

import logging
import unittest

import serial
from pymodbus.file_message import FileRecord, ReadFileRecordRequest, WriteFileRecordRequest

from simtest import ModbusCase, SimCase, silent_for, temp_word

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

    def test_identity_gives_the_firmware(self):
        self.assertEqual(self.read(30001, 2)[1], 0x021F)
        self.assertEqual(self.read(30001, 2, slave=5)[1], 0x0209)

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

    def test_clock_and_reserved_start_as_one_block_each(self):
        self.write(40112, [2030, 12, 31, 23, 59, 58])
        self.assertEqual(self.read(40112, 6), [2030, 12, 31, 23, 59, 58])
        self.write(40118, [2031, 1, 1, 0, 5, 1])
        self.assertEqual(self.sim.word("1 rrp 14"), 1)  # a reserved start waits
        self.write(40123, [0])
        self.assertEqual(self.sim.word("1 rrp 14"), 0)

    def test_parameter_block_in_the_consoles_pieces(self):
        block = []
        for start in (40101, 40221, 40341, 40461):
            block += self.read(start, 120)
        block += self.read(40581, 32)
        self.assertEqual(len(block), 512)
        for row in (1, 46, 201, 506, 508):
            self.assertEqual(block[row - 1], self.sim.word(f"1 up {row}"))

        # Written back in five pieces of 120; the last one runs to 40700, the first extra row.
        block[47 - 1] = 7
        block[500 - 1] = 1
        padded = block + [0] * (600 - 512)
        padded[599] = 1  # register 40700
        for k in range(5):
            self.write(40101 + 120 * k, padded[120 * k : 120 * (k + 1)])
        self.assertEqual(self.sim.word("1 up 47"), 7)
        self.assertEqual(self.sim.word("1 up 500"), 1)
        self.assertEqual(self.sim.word("1 upplus 88"), 1)
        self.assertEqual(self.read(40700, 2), [1, 0])

    def test_curve_blocks_and_plain_row_registers(self):
        # The current layout's curve block: 14 rows from 40132 (offsets and points).
        curve = [10000, 10000] + [2000 + 10 * v for v in (-100, -40, 20, 80, 140, 200)] * 2
        self.write(40132, curve)
        self.assertEqual([self.sim.word(f"1 up {row}") for row in range(32, 46)], curve)
        # Fields written as the plain row in every protocol.
        self.write(73, [9])
        self.assertEqual(self.sim.word("1 up 73"), 9)
        self.assertEqual(self.read(40173, 1), [9])
        # The legacy layout: rows by their plain number, a block as a curve write sends it.
        points = [2000 + 10 * v for v in (0, 20, 40, 60, 80, 100)] * 2
        self.write(469, points, slave=5)
        self.assertEqual([self.sim.word(f"5 up {row}") for row in range(469, 481)], points)
        self.write(47, [10150], slave=5)
        self.assertEqual(self.read(47, 1, slave=5), [10150])
        self.assertEqual(self.read(40147, 1, slave=5), [10150])
        # Past the legacy block's 492 rows there is no plain row.
        self.assertEqual(self.client.write_registers(493, [1], slave=5).exception_code, 2)

    def test_text_rows(self):
        names = self.read(42001, 120)
        self.assertEqual(len(names), 8 * 15)
        row12 = b"".join(w.to_bytes(2, "big") for w in self.read(44001, 12))
        self.assertEqual(row12.rstrip(b"\0").decode("big5"), "高溫高濕測試")
        name = "低溫".encode("big5").ljust(24, b"\0")
        self.write(44001 + 12 * 3, [int.from_bytes(name[i : i + 2], "big") for i in range(0, 24, 2)])  # row 15
        self.assertEqual(self.sim.command("get 1 td 15"), "低溫")

    def test_the_rows_the_parameter_pages_write(self):
        # A password is four rows of digit codes written as one block.
        self.write(40390, [ord(c) for c in "0417"])
        self.assertEqual([self.sim.word(f"1 up {r}") for r in range(290, 294)], [48, 52, 49, 55])
        self.assertEqual(self.read(40390, 4), [48, 52, 49, 55])
        # The maker's text lines are rows 9 to 11, 15 registers each.
        line = "ACME 恆溫".encode("big5").ljust(30, b"\0")
        self.write(43001 + 15, [int.from_bytes(line[i : i + 2], "big") for i in range(0, 30, 2)])  # row 10
        self.assertEqual(self.sim.command("get 1 td 10"), "ACME 恆溫")
        self.assertEqual(b"".join(w.to_bytes(2, "big") for w in self.read(43001, 45))[30:60], line)
        # The start and program locks behind the block.
        self.write(40701, [1])
        self.assertEqual(self.sim.word("1 upplus 89"), 1)
        self.write(40701, [0])

    def test_a_legacy_controller_takes_its_rows_by_number(self):
        # Below firmware 2.2 the pages address a row by its plain number in every protocol.
        self.write(87, [0], slave=5)  # system alarm enable
        self.assertEqual(self.sim.word("5 up 87"), 0)
        self.write(161, [0x0805], slave=5)  # D/I line 1: action 8, wait 5
        self.assertEqual(self.read(161, 1, slave=5), [0x0805])
        self.assertEqual(self.read(40261, 1, slave=5), [0x0805])  # the same row in the block's map
        self.assertEqual(self.client.read_holding_registers(493, 1, slave=5).exception_code, 2)  # past its 492 rows
        self.write(87, [1], slave=5)

    def test_patterns_by_registers_and_segments_by_file_records(self):
        pattern1 = self.read(50001, 81)
        self.assertEqual(pattern1[0], 4)
        values = list(range(1000, 1081))
        self.write(50001 + 81 * 3, values)  # pattern 4
        self.assertEqual(self.read(50001 + 81 * 3, 81), values)
        self.assertEqual(self.sim.word("1 pd 4 81"), 1080)

        read = ReadFileRecordRequest(records=[FileRecord(reference_type=6, file_number=1, record_number=2,
                                                         record_length=29)], unit=1)
        segment = self.client.execute(read).records[0].record_data
        self.assertEqual(len(segment), 58)
        self.assertEqual(int.from_bytes(segment[:2], "big"), temp_word(85.0))

        data = bytes(range(58))
        write = WriteFileRecordRequest(records=[FileRecord(reference_type=6, file_number=4, record_number=3,
                                                           record_data=data)], unit=1)
        self.assertFalse(self.client.execute(write).isError())
        self.assertEqual(self.sim.word("1 sd 4 3 29"), int.from_bytes(data[56:], "big"))
        read.records[0].file_number, read.records[0].record_number = 4, 3
        self.assertEqual(self.client.execute(read).records[0].record_data, data)

    def test_generated_programs_follow_the_firmwares_pattern_count(self):
        self.sim.ok("programs 5 300 1")
        # Register numbers are 16 bits: pattern 191 is the last one whose 81 registers fit.
        p191 = 50001 + 81 * 190
        self.assertEqual(self.read(p191, 81, slave=5)[0], 1)
        name = b"".join(w.to_bytes(2, "big") for w in self.read(44001 + 12 * 299, 12, slave=5))
        self.assertEqual(name.rstrip(b"\0").decode("big5"), "程式300")
        self.assertEqual(self.client.read_holding_registers(50001 + 81 * 100, 81, slave=1).exception_code, 2)  # 100 patterns
        self.assertEqual(self.sim.word("5 pd 300 1"), 1)

    def test_exception_replies(self):
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


if __name__ == "__main__":
    unittest.main()
