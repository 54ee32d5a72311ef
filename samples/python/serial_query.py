"""Asks an instrument at a COM port who it is.

    python serial_query.py [COM port number [bits per second [command]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import win32com.client

CS_RS232 = 0
BR_150 = 0
BR_921600 = 13


def set_baud_rate(transport, baud: str) -> None:
    # The range comes first: a rate outside of it is refused.
    transport.MaxBaudRate = BR_921600
    transport.MinBaudRate = BR_150
    for rate in range(BR_150, BR_921600 + 1):
        if transport.BaudRateName(rate) == baud:
            transport.BaudRate = rate
            return
    sys.exit(f"{baud} is not a bit rate of this library")


def main() -> int:
    port = int(sys.argv[1]) if len(sys.argv) > 1 else 1
    baud = sys.argv[2] if len(sys.argv) > 2 else "9600"
    command = sys.argv[3] if len(sys.argv) > 3 else "*IDN?"

    # EnsureDispatch reads the type library, so in/out arguments come back beside the result.
    comm = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespCommObj")
    comm.CommStyle = CS_RS232
    transport = win32com.client.CastTo(comm.CommObject, "_CKespCOMPort3")
    transport.Port = port
    set_baud_rate(transport, baud)

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
