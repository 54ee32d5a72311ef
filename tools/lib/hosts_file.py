#!/usr/bin/env python3
"""Reads the hosts of a simulated network from a file; as a program, says what is wrong with one: hosts_file.py FILE

    {"description": "what it is for",
     "hosts": [{"address": "10.88.0.11", "personality": "../../simulator/examples/network-7100.json"}]}

Each host is a simulated instrument (simulator) at TCP port 10001, which answers discovery, too. Its members:

    address         its IPv4 address in its network; the first one is 10.88.0.0/16, the second one 10.89.0.0/16, and
                    the address .0.1 is the client's
    network         1, or 2 for the second one; 1 when it is left out
    personality     the instrument's file, as a path from this file; the built-in one when it is left out
    owns            a part of its network, such as 10.88.4.0/22, all addresses of which are this host's, too
    discovery_from  the addresses from which it answers discovery, such as 10.88.4.1-10.88.7.232
    discovery_rate  the most datagrams of an answer that it sends in a second
    tcp             "refused" when nothing is to listen at port 10001

With "name_server": "10.88.0.53" beside "hosts" names are looked up there, which takes long where no such host is;
without it every name is unknown at once.
"""

import dataclasses
import ipaddress
import json
import pathlib
import sys

# The client's addresses.
CLIENTS = {1: ipaddress.ip_interface("10.88.0.1/16"), 2: ipaddress.ip_interface("10.89.0.1/16")}
FILE_MEMBERS = {"description", "hosts", "name_server"}


class HostsFileError(Exception):
    """A mistake in the file; the text names the place."""


@dataclasses.dataclass(frozen=True)
class Host:
    """One host; what was left out is None."""

    address: ipaddress.IPv4Address
    network: int = 1
    personality: pathlib.Path | None = None
    owns: ipaddress.IPv4Network | None = None
    discovery_from: str | None = None
    discovery_rate: int | None = None
    tcp: str | None = None


def read_hosts(path):
    """The hosts of that file, in its order. Raises HostsFileError."""
    path = pathlib.Path(path)
    return _read(path, lambda content: _hosts_of(content, path.parent))


def read_name_server(path):
    """The address of its name server, or None. Raises HostsFileError."""
    return _read(pathlib.Path(path), _name_server_of)


def _read(path, part_of):
    try:
        content = json.loads(path.read_text(encoding="utf-8"))
    except (OSError, ValueError) as error:
        raise HostsFileError(f"{path}: {error}") from error
    try:
        _check_members(content, FILE_MEMBERS, "the file")
        return part_of(content)
    except HostsFileError as error:
        raise HostsFileError(f"{path}: {error}") from None


def _name_server_of(content):
    if "name_server" not in content:
        return None
    return _parsed(ipaddress.IPv4Address, content["name_server"], "name_server")


def _hosts_of(content, folder):
    described = content.get("hosts")
    if not isinstance(described, list):
        raise HostsFileError("hosts must be a list")
    hosts = [_host(members, f"host {number}", folder) for number, members in enumerate(described, 1)]
    addresses = [host.address for host in hosts]
    for host in hosts:
        if addresses.count(host.address) > 1:
            raise HostsFileError(f"two hosts have the address {host.address}")
        for other in hosts:
            if other is not host and host.owns and (other.address in host.owns or _overlap(host, other)):
                raise HostsFileError(f"{host.address} owns an address of {other.address}")
    return hosts


def _overlap(host, other):
    return other.owns is not None and host.owns.overlaps(other.owns)


def _host(members, place, folder):
    _check_members(members, {field.name for field in dataclasses.fields(Host)}, place)
    if "address" not in members:
        raise HostsFileError(f"{place} has no address")
    address = _parsed(ipaddress.IPv4Address, members["address"], f"{place}: address")
    network = members.get("network", 1)
    if type(network) is not int or network not in CLIENTS:
        raise HostsFileError(f"{place}: network must be 1 or 2")
    subnet = CLIENTS[network].network
    # The client's, and those that mean all of the network.
    taken = (CLIENTS[network].ip, subnet.network_address, subnet.broadcast_address)
    if address not in subnet or address in taken:
        raise HostsFileError(f"{place}: {address} is not for a host of {subnet}")
    owns = discovery_from = personality = None
    if "owns" in members:
        owns = _parsed(ipaddress.IPv4Network, members["owns"], f"{place}: owns")
        if not owns.subnet_of(subnet) or any(address in owns for address in taken):
            raise HostsFileError(f"{place}: {owns} is not for a host of {subnet}")
    if "discovery_from" in members:
        discovery_from = members["discovery_from"]
        _check_range(discovery_from, address, owns, f"{place}: discovery_from")
    if "personality" in members:
        personality = folder / _text(members["personality"], f"{place}: personality")
        if not personality.is_file():
            raise HostsFileError(f"{place}: there is no {personality}")
    rate = members.get("discovery_rate", 1)
    if type(rate) is not int or rate < 1:
        raise HostsFileError(f"{place}: discovery_rate must be a whole number from 1 up")
    if members.get("tcp", "refused") != "refused":
        raise HostsFileError(f'{place}: tcp may only be "refused"')
    return Host(address, network, personality, owns, discovery_from, members.get("discovery_rate"), members.get("tcp"))


def _check_members(members, known, place):
    if not isinstance(members, dict):
        raise HostsFileError(f"{place} must be an object")
    for name in members:
        if name not in known:
            raise HostsFileError(f'{place} has an unknown member "{name}"; known are {", ".join(sorted(known))}')


def _check_range(text, address, owns, place):
    """All addresses of a range must be the host's own."""
    first, dash, last = _text(text, place).partition("-")
    if not dash:
        raise HostsFileError(f"{place} must be a range, such as 10.88.4.1-10.88.4.50")
    ends = [_parsed(ipaddress.IPv4Address, end, place) for end in (first, last)]
    if ends[0] > ends[1]:
        raise HostsFileError(f"{place} ends before it begins")
    if ends != [address, address] and not (owns and all(end in owns for end in ends)):
        raise HostsFileError(f"{place} has addresses that the host does not own")


def _parsed(kind, value, place):
    try:
        return kind(_text(value, place))
    except ValueError as error:
        raise HostsFileError(f"{place}: {error}") from None


def _text(value, place):
    if not isinstance(value, str):
        raise HostsFileError(f"{place} must be a text")
    return value


def main():
    try:
        read_hosts(sys.argv[1])
        read_name_server(sys.argv[1])
    except HostsFileError as error:
        sys.exit(f"with-network-hosts: {error}")


if __name__ == "__main__":
    main()
