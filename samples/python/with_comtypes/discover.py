# Not yet run. Finds the instruments on the network and asks each who it is.
"""
    python discover.py

Needs comtypes.
"""
import sys

from comtypes import COMError
from comtypes.client import CreateObject

SCK_UDP_PROTOCOL = 1


def main() -> int:
    # Early bound: in/out arguments come back, before the result.
    tcp = CreateObject("KespCommObj.CKespTCP")
    # One broadcast to everybody, over UDP; what answers is asked over TCP.
    tcp.Protocol = SCK_UDP_PROTOCOL
    try:
        _, found = tcp.AutoDetect("")
    except COMError as error:
        description, source, *_ = error.details
        print("error:      ", error.hresult)
        print("source:     ", source)
        print("description:", description or error.text)
        return 2
    for position in range(1, tcp.Devices.Count + 1):
        instrument = tcp.Devices.Item(position)
        print(f"instrument:  {instrument.IPAddress}  model {instrument.Model}  serial {instrument.Serial}")
    if not found:
        print("nobody answered")
    return 0 if found else 1


if __name__ == "__main__":
    sys.exit(main())
