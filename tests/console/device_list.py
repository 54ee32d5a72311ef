"""Entries in the registry of our Windows, such as devices: written for a test, and taken away after it."""

import subprocess

from kesp_program import ROOT

ENUM = r"HKEY_LOCAL_MACHINE\System\CurrentControlSet\Enum"
WORKING = r"HKEY_LOCAL_MACHINE\Hardware\DeviceMap\SerialComm"
WORKING_NAME = r"\Device\Test"
PORTS = "{4d36e978-e325-11ce-bfc1-08002be10318}"
USB = "{36fc9e60-c465-11cf-8056-444553540000}"
CP2105 = "{0a1b2c3d-0000-0000-0000-000000000001}"
COMPUTER = "{00000000-0000-0000-ffff-ffffffffffff}"


def escaped(text):
    return text.replace("\\", "\\\\")


def value(content):
    return f"dword:{content:08x}" if isinstance(content, int) else f'"{escaped(content)}"'


def key(path, **values):
    return f"[{path}]\n" + "".join(f'"{name}"={value(content)}\n' for name, content in values.items()) + "\n"


def port(instance, name, friendly, container=None, latency=None):
    path = ENUM + "\\" + instance
    more = {"ContainerID": container} if container else {}
    parameters = {"LatencyTimer": latency} if latency else {}
    return (key(path, ClassGUID=PORTS, Class="Ports", FriendlyName=f"{friendly} ({name})", **more) +
            key(path + r"\Device Parameters", PortName=name, **parameters))


# FTDI, Prolific, CH340, a function of a CP2105 (in one housing with a hub), Bluetooth, a port that is built in as a
# camera is, a printer's port, and an adapter that is only remembered.
DEVICES = (
    port(r"FTDIBUS\VID_0403+PID_6001+A50285BIA\0000", "COM210", "USB Serial Port", latency=16) +
    port(r"FTDIBUS\VID_0403+PID_6001+FTGHOSTA\0000", "COM207", "USB Serial Port", latency=16) +
    port(r"USB\VID_067B&PID_2303\5&1A2B3C&0&2", "COM202", "Prolific USB-to-Serial Comm Port") +
    port(r"USB\VID_1A86&PID_7523\5&1A2B3C&0&4", "COM209", "USB-SERIAL CH340") +
    key(ENUM + r"\USB\VID_0424&PID_2514\HUB01", ClassGUID=USB, Class="USB", ContainerID=CP2105) +
    key(ENUM + r"\USB\VID_0BDA&PID_5411\CAMERA01", ClassGUID=USB, Class="USB", ContainerID=COMPUTER) +
    key(ENUM + r"\USB\VID_10C4&PID_EA70\0123AB", ClassGUID=USB, Class="USB", ContainerID=CP2105) +
    port(r"USB\VID_10C4&PID_EA70&MI_00\6&3A2B3C&0&0000", "COM211", "Silicon Labs Dual CP2105", container=CP2105) +
    port(r"BTHENUM\{00001101-0000-1000-8000-00805F9B34FB}_LOCALMFG&0002\7&1A&0&001122334455_C00000000", "COM212",
         "Standard Serial over Bluetooth link") +
    port(r"ACPI\PNP0501\1", "COM213", "Communications Port", container=COMPUTER) +
    port(r"ACPI\PNP0401\1", "LPT1", "Printer Port"))
PRESENT = ("COM202", "COM209", "COM210", "COM211", "COM212", "COM213")
BUSES = ("FTDIBUS", "USB", "BTHENUM", "ACPI")


def write(bits, folder, text):
    """regedit's own format."""
    file = folder / "entries.reg"
    file.write_text("REGEDIT4\n\n" + text)
    path = "Z:" + str(file).replace("/", "\\")
    result = subprocess.run([ROOT / "tools" / "wine-test", "--bits", str(bits), "regedit", path], capture_output=True,
                            text=True, check=False)
    if result.returncode != 0:
        raise AssertionError(f"regedit ended with {result.returncode} and said {result.stdout + result.stderr!r}")


def plug_in(bits, folder):
    write(bits, folder, DEVICES + f"[{WORKING}]\n" +
          "".join(f'"{escaped(WORKING_NAME + name)}"="{name}"\n' for name in PRESENT))


def take_away(bits, folder):
    write(bits, folder, "".join(f"[-{ENUM}\\{bus}]\n\n" for bus in BUSES) + f"[{WORKING}]\n" +
          "".join(f'"{escaped(WORKING_NAME + name)}"=-\n' for name in PRESENT))
