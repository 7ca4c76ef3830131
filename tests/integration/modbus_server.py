#!/usr/bin/python3
"""An independent Modbus RTU server (pymodbus) on a serial device, for the
console's Modbus master. Every register n holds register_value(n); slave 1
answers; the identity word at 30002 reads as firmware 2.31.

usage: modbus_server.py DEVICE
Prints "ready" once it listens."""
import logging
import sys

from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.server import StartSerialServer
from pymodbus.transaction import ModbusRtuFramer


def register_value(n):
    if n == 30002:
        return 0x021F
    return (n * 7 + 3) % 65536


def main():
    logging.basicConfig(level=logging.ERROR)
    values = [register_value(n) for n in range(65536)]
    block = ModbusSequentialDataBlock(0, values)
    # zero_mode: the register number on the wire is the index into the block.
    store = ModbusSlaveContext(hr=block, ir=block, zero_mode=True)
    context = ModbusServerContext(slaves={1: store}, single=False)
    print("ready", flush=True)
    StartSerialServer(context=context, framer=ModbusRtuFramer, port=sys.argv[1], baudrate=115200,
                      timeout=0.005)


if __name__ == "__main__":
    main()
