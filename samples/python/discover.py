# Not yet run. Finds the instruments on the network and asks each who it is.
"""
    python discover.py

Needs pywin32 (the package that provides win32com).
"""
import sys

import pywintypes
import win32com.client

SCK_UDP_PROTOCOL = 1


def main() -> int:
    tcp = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespTCP")
    # One broadcast to everybody, over UDP; what answers is asked over TCP.
    tcp.Protocol = SCK_UDP_PROTOCOL
    try:
        found, _ = tcp.AutoDetect("")
    except pywintypes.com_error as error:
        # An error of COM itself brings no words of the library.
        _, source, description, _, _, number = error.excepinfo or (0, None, error.strerror, None, 0, error.hresult)
        print("error:      ", number)
        print("source:     ", source)
        print("description:", description)
        return 2
    for position in range(1, tcp.Devices.Count + 1):
        instrument = tcp.Devices.Item(position)
        print(f"instrument:  {instrument.IPAddress}  model {instrument.Model}  serial {instrument.Serial}")
    if not found:
        print("nobody answered")
    return 0 if found else 1


if __name__ == "__main__":
    sys.exit(main())
