#!/usr/bin/env python3
"""A client on a simulated network, for tests of the network itself: client.py ACTION...

    discover ADDRESS COUNT   sends a discovery datagram there and waits for so many answers, or ten seconds
    identify ADDRESS         asks the instrument there who it is
    log ADDRESS              reads the log of that host

Prints what came of each action as a line of JSON: the senders in order, the identity (or "refused"), the lines.
"""

import json
import os
import pathlib
import socket
import sys
import time

REQUEST = bytes([0x00, 0x01, 0x00, 0xF6])
DISCOVERY_PORT, INSTRUMENT_PORT = 30718, 10001
LIMIT_SECONDS = 10


def discover(address, count):
    deadline = time.monotonic() + LIMIT_SECONDS
    senders = []
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as udp:
        udp.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
        udp.sendto(REQUEST, (address, DISCOVERY_PORT))
        while len(senders) < int(count) and time.monotonic() < deadline:
            udp.settimeout(max(0.01, deadline - time.monotonic()))
            try:
                senders.append(udp.recvfrom(65536)[1][0])
            except TimeoutError:
                break
    return senders


def identify(address):
    try:
        with socket.create_connection((address, INSTRUMENT_PORT), LIMIT_SECONDS) as tcp:
            tcp.sendall(b"*IDN?\r")
            reply = b""
            while not reply.endswith(b"\r"):
                part = tcp.recv(4096)
                if not part:
                    break
                reply += part
            return reply.decode().strip()
    except ConnectionRefusedError:
        return "refused"


def log(address):
    return (pathlib.Path(os.environ["KESP_HOSTS_LOG"]) / f"{address}.log").read_text(encoding="utf-8").splitlines()


def main():
    actions = {"discover": (discover, 2), "identify": (identify, 1), "log": (log, 1)}
    words = sys.argv[1:]
    while words:
        action, count = actions[words[0]]
        print(json.dumps(action(*words[1:1 + count])), flush=True)
        words = words[1 + count:]


if __name__ == "__main__":
    main()
