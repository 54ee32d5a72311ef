"""Asks an instrument on the GPIB (IEEE-488) who it is.

    python ieee_query.py [primary address [code of the character that ends a command [command]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import win32com.client

CS_IEEE = 2


def main() -> int:
    address = int(sys.argv[1]) if len(sys.argv) > 1 else 5
    eos = sys.argv[2] if len(sys.argv) > 2 else "10"
    command = sys.argv[3] if len(sys.argv) > 3 else "*IDN?"

    # EnsureDispatch reads the type library, so in/out arguments come back beside the result.
    comm = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespCommObj")
    comm.CommStyle = CS_IEEE
    transport = win32com.client.CastTo(comm.CommObject, "_CKespIEEE")
    transport.PrimaryAddress = address
    transport.EOSChar = eos
    # SetEOS would end a read at the first character of EOSChar, here "1". The END of the device is enough.
    transport.SetEOS = False

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
