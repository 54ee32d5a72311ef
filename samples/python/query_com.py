# Not yet run. Asks an instrument at a COM port who it is.
"""
    python query_com.py [COM port number [bits per second [command]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import win32com.client

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
    # EnsureDispatch reads the type library, so in/out arguments come back beside the result.
    comm = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespCommObj")
    comm.CommStyle = CS_RS232
    port = win32com.client.CastTo(comm.CommObject, "_CKespCOMPort3")
    port.Port = int(argument(1, "1"))
    set_baud_rate(port, argument(2, "9600"))

    succeeded, result = comm.Query("", command)
    print("command:    ", command)
    if succeeded:
        print("reply:      ", result)
    else:
        print("source:     ", comm.CommErrorSource)
        print("description:", comm.CommErrorDescr)
    print("status:     ", comm.CommError)
    return 0 if succeeded else 1


if __name__ == "__main__":
    sys.exit(main())
