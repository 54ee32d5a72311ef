# Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
"""
    python detect.py [host [port [commands]]]

Needs pywin32 (the package that provides win32com).
"""
import sys

import pywintypes
import win32com.client


def argument(position: int, otherwise: str) -> str:
    return sys.argv[position] if len(sys.argv) > position else otherwise


class Watcher:
    allowed = int(argument(3, "2"))
    tried = 0

    # What it returns goes into the argument that is by reference, Abort.
    def OnAutoDetectUpdate(self, cmd, IPAddress, Port, Abort):
        if self.tried == self.allowed:
            print("stopped:     before", cmd)
            return True
        self.tried += 1
        print(f"trying:      {cmd} at {IPAddress}:{Port}")
        return False

    def OnAutoDetectEnd(self):
        print(f"ended:       after {self.tried} commands")


def main() -> int:
    tcp = win32com.client.gencache.EnsureDispatch("KespCommObj.CKespTCP")
    tcp.IPAddress = argument(1, "127.0.0.1")
    tcp.Port = int(argument(2, "10001"))
    watcher = win32com.client.WithEvents(tcp, Watcher)
    try:
        found, result = tcp.AutoDetect("")
    except pywintypes.com_error as error:
        # An error of COM itself brings no words of the library.
        _, _, description, _, _, number = error.excepinfo or (0, None, error.strerror, None, 0, error.hresult)
        print("error:      ", number)
        print("description:", description)
        return 2
    watcher.close()
    tcp.Uninitialize()
    print(f"reply:       {result}" if found else "nothing found")
    return 0 if found else 1


if __name__ == "__main__":
    sys.exit(main())
