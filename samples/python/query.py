"""Asks an instrument on the network who it is.

    python query.py [host [port [command]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import win32com.client

CS_TCPIP = 1


def main() -> int:
    host = sys.argv[1] if len(sys.argv) > 1 else "127.0.0.1"
    port = int(sys.argv[2]) if len(sys.argv) > 2 else 10001
    command = sys.argv[3] if len(sys.argv) > 3 else "*IDN?"

    # EnsureDispatch reads the type library, so in/out arguments come back beside the result.
    comm = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespCommObj")
    comm.CommStyle = CS_TCPIP
    transport = win32com.client.CastTo(comm.CommObject, "_CKespTCP")
    transport.IPAddress = host
    transport.Port = port

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
