# Not yet run. Asks an instrument on the network who it is.
"""
    python query_tcp.py [host [port [command]]]

Needs comtypes.
"""
import sys
from ctypes import byref

from comtypes.automation import VARIANT
from comtypes.client import CreateObject

CS_TCPIP = 1


def argument(position: int, otherwise: str) -> str:
    return sys.argv[position] if len(sys.argv) > position else otherwise


def main() -> int:
    command = argument(3, "*IDN?")
    # Late bound: comtypes cannot assign early bound properties that are put by reference, as CommStyle is.
    comm = CreateObject("KespCommObj.CKespCommObj", dynamic=True)
    comm.CommStyle = CS_TCPIP
    tcp = comm.CommObject
    tcp.IPAddress = argument(1, "127.0.0.1")
    tcp.Port = int(argument(2, "10001"))

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
