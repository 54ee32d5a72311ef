# Not yet run. Asks an instrument on the network who it is.
"""
    python query_tcp.py [host [port [command]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import win32com.client

CS_TCPIP = 1


def argument(position: int, otherwise: str) -> str:
    return sys.argv[position] if len(sys.argv) > position else otherwise


def main() -> int:
    command = argument(3, "*IDN?")
    # EnsureDispatch reads the type library, so in/out arguments come back beside the result.
    comm = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespCommObj")
    comm.CommStyle = CS_TCPIP
    tcp = win32com.client.CastTo(comm.CommObject, "_CKespTCP")
    tcp.IPAddress = argument(1, "127.0.0.1")
    tcp.Port = int(argument(2, "10001"))

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
