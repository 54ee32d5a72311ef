# Not yet run. Asks an instrument at a COM port who it is.
"""
    python query_com.py [COM port number [bits per second [command]]]

Needs comtypes.
"""
import sys
from ctypes import byref

from comtypes.automation import VARIANT
from comtypes.client import CreateObject

CS_RS232 = 0
BR_150 = 0
BR_921600 = 13


def argument(position: int, otherwise: str) -> str:
    return sys.argv[position] if len(sys.argv) > position else otherwise


def set_baud_rate(port, baud: str) -> None:
    # The range comes first: a rate outside of it is refused. A rate is set by its number, which has it as its name.
    port.MaxBaudRate = BR_921600
    port.MinBaudRate = BR_150
    rates = {port.BaudRateName(rate): rate for rate in range(BR_150, BR_921600 + 1)}
    if baud not in rates:
        print(baud, "is not a bit rate of this library")
        sys.exit(2)
    port.BaudRate = rates[baud]


def main() -> int:
    command = argument(3, "*IDN?")
    # Late bound: comtypes cannot assign early bound properties that are put by reference, as CommStyle is.
    comm = CreateObject("KespCommObj.CKespCommObj", dynamic=True)
    comm.CommStyle = CS_RS232
    comm.CommObject.Port = int(argument(1, "1"))
    set_baud_rate(comm.CommObject, argument(2, "9600"))

    result = VARIANT()
    succeeded = comm.Query(byref(result), command)
    print("command:    ", command)
    if succeeded:
        print("reply:      ", result.value)
    else:
        print("source:     ", comm.CommErrorSource)
        print("description:", comm.CommErrorDescr)
    print("status:     ", comm.CommError)
    return 0 if succeeded else 1


if __name__ == "__main__":
    sys.exit(main())
