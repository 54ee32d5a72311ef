# Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
"""
    python detect.py [host [port [commands]]]

Needs comtypes.
"""
import sys

from comtypes import COMError
from comtypes.client import CreateObject, GetEvents


def argument(position: int, otherwise: str) -> str:
    return sys.argv[position] if len(sys.argv) > position else otherwise


class Watcher:
    allowed = int(argument(3, "2"))
    tried = 0

    # With "this" as its second argument, a handler gets Abort as the reference that it is.
    def AutoDetectUpdate(self, this, cmd, IPAddress, Port, Abort):
        if self.tried == self.allowed:
            print("stopped:     before", cmd)
            Abort[0] = True
        else:
            self.tried += 1
            print(f"trying:      {cmd} at {IPAddress}:{Port}")

    def AutoDetectEnd(self):
        print(f"ended:       after {self.tried} commands")


def main() -> int:
    tcp = CreateObject("KespCommObj.CKespTCP")
    tcp.IPAddress = argument(1, "127.0.0.1")
    tcp.Port = int(argument(2, "10001"))
    connection = GetEvents(tcp, Watcher())
    try:
        result, found = tcp.AutoDetect("")
    except COMError as error:
        print("error:      ", error.hresult)
        print("description:", error.details[0] or error.text)
        return 2
    del connection
    tcp.Uninitialize()
    print(f"reply:       {result}" if found else "nothing found")
    return 0 if found else 1


if __name__ == "__main__":
    sys.exit(main())
