# Not yet run. Asks an instrument on the GPIB (IEEE-488) who it is.
"""
    python query_gpib.py [primary address [code of the character that ends a command [command]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import win32com.client

CS_IEEE = 2


def argument(position: int, otherwise: str) -> str:
    return sys.argv[position] if len(sys.argv) > position else otherwise


def main() -> int:
    command = argument(3, "*IDN?")
    # EnsureDispatch reads the type library, so in/out arguments come back beside the result.
    comm = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespCommObj")
    comm.CommStyle = CS_IEEE
    ieee = win32com.client.CastTo(comm.CommObject, "_CKespIEEE")
    ieee.PrimaryAddress = int(argument(1, "5"))
    ieee.EOSChar = argument(2, "10")
    # SetEOS would end a read at the first character of EOSChar, here "1". The END of the device is enough.
    ieee.SetEOS = False

    succeeded, result = comm.Query("", command)
    print("command:    ", command)
    if succeeded:
        # A reply from the GPIB is handed out as it came.
        print("reply:      ", result.rstrip("\r\n"))
    else:
        print("source:     ", comm.CommErrorSource)
        print("description:", comm.CommErrorDescr)
    print("status:     ", comm.CommError)
    return 0 if succeeded else 1


if __name__ == "__main__":
    sys.exit(main())
