#!/usr/bin/env python3
"""Reads files of network hosts, those of this folder among them, and sees each mistake in one refused by name."""

import ipaddress
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the tree stays as it is
HERE = pathlib.Path(__file__).resolve().parent
LIB = HERE.parents[1] / "tools" / "lib"
sys.path.insert(0, str(LIB))
from hosts_file import Host, HostsFileError, read_hosts, read_name_server  # noqa: E402


class HostsFileTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "hosts.json"

    def read(self, content):
        self.file.write_text(content if isinstance(content, str) else json.dumps(content), encoding="utf-8")
        return read_hosts(self.file)

    def read_host(self, **members):
        return self.read({"hosts": [{"address": "10.88.0.11", **members}]})[0]

    def assert_refused(self, content, reason):
        with self.assertRaises(HostsFileError) as refusal:
            self.read(content)
        self.assertIn(str(self.file), str(refusal.exception))
        self.assertIn(reason, str(refusal.exception))

    def assert_host_refused(self, reason, **members):
        self.assert_refused({"hosts": [{"address": "10.88.0.11", **members}]}, reason)

    def test_read_address_alone_leaves_the_rest_out(self):
        self.assertEqual(self.read_host(), Host(ipaddress.IPv4Address("10.88.0.11")))

    def test_read_all_members_takes_them(self):
        (self.folder / "slow.json").touch()
        host = self.read_host(personality="slow.json", owns="10.88.4.0/22", discovery_from="10.88.4.1-10.88.7.232",
                              discovery_rate=2000, tcp="refused")
        self.assertEqual(host, Host(ipaddress.IPv4Address("10.88.0.11"), 1, self.folder / "slow.json",
                                    ipaddress.IPv4Network("10.88.4.0/22"), "10.88.4.1-10.88.7.232", 2000,
                                    "refused"))

    def test_read_second_network_takes_its_addresses(self):
        self.assertEqual(self.read_host(address="10.89.0.11", network=2).network, 2)

    def test_read_no_hosts_is_allowed(self):
        self.assertEqual(self.read({"description": "nobody", "hosts": []}), [])

    def test_read_name_server_is_an_address_or_left_out(self):
        self.read({"hosts": []})
        self.assertIsNone(read_name_server(self.file))
        self.read({"hosts": [], "name_server": "10.88.0.53"})
        self.assertEqual(read_name_server(self.file), ipaddress.IPv4Address("10.88.0.53"))
        self.read({"hosts": [], "name_server": "there"})
        with self.assertRaisesRegex(HostsFileError, "name_server"):
            read_name_server(self.file)

    def test_read_what_is_no_description_of_hosts_is_refused(self):
        self.assert_refused("{", "line 1")
        self.assert_refused([], "the file must be an object")
        self.assert_refused({}, "hosts must be a list")
        self.assert_refused({"hosts": ["10.88.0.11"]}, "host 1 must be an object")
        with self.assertRaises(HostsFileError):
            read_hosts(self.folder / "missing.json")

    def test_read_unknown_member_is_refused_by_its_name(self):
        self.assert_refused({"hosts": [], "host": []}, 'the file has an unknown member "host"')
        self.assert_refused({"hosts": [{"address": "10.88.0.11"}, {"address": "10.88.0.12", "adress": ""}]},
                            'host 2 has an unknown member "adress"')

    def test_read_address_that_is_none_for_a_host_is_refused(self):
        self.assert_refused({"hosts": [{}]}, "host 1 has no address")
        self.assert_host_refused("host 1: address: ", address="10.88.0")
        self.assert_host_refused("host 1: address must be a text", address=10)
        self.assert_host_refused("10.89.0.11 is not for a host of 10.88.0.0/16", address="10.89.0.11")
        self.assert_host_refused("10.88.0.11 is not for a host of 10.89.0.0/16", network=2)
        self.assert_host_refused("10.88.0.1 is not for a host", address="10.88.0.1")
        self.assert_host_refused("10.88.255.255 is not for a host", address="10.88.255.255")

    def test_read_network_other_than_two_is_refused(self):
        for network in (0, 3, "1", True):
            self.assert_host_refused("network must be 1 or 2", network=network)

    def test_read_address_of_two_hosts_is_refused(self):
        host = {"address": "10.88.0.11"}
        owner = {"address": "10.88.0.12", "owns": "10.88.4.0/22"}
        self.assert_refused({"hosts": [host, host]}, "two hosts have the address 10.88.0.11")
        self.assert_refused({"hosts": [owner, {"address": "10.88.5.1"}]}, "10.88.0.12 owns an address of 10.88.5.1")
        self.assert_refused({"hosts": [owner, {**host, "owns": "10.88.7.0/24"}]}, "owns an address of 10.88.0.11")

    def test_read_part_outside_the_network_is_refused(self):
        self.assert_host_refused("10.89.4.0/22 is not for a host", owns="10.89.4.0/22")
        self.assert_host_refused("10.88.0.0/24 is not for a host", owns="10.88.0.0/24")  # the client's, too
        self.assert_host_refused("host 1: owns: ", owns="10.88.4.1/22")

    def test_read_range_that_the_host_does_not_own_is_refused(self):
        for text in ("10.88.4.1-10.88.8.1", "10.88.3.255-10.88.4.9"):
            self.assert_host_refused("addresses that the host does not own", owns="10.88.4.0/22", discovery_from=text)
        self.assert_host_refused("addresses that the host does not own", discovery_from="10.88.4.1-10.88.4.2")
        self.assert_host_refused("must be a range", discovery_from="10.88.4.1")
        self.assert_host_refused("ends before it begins", owns="10.88.4.0/22", discovery_from="10.88.4.2-10.88.4.1")

    def test_read_personality_that_is_not_there_is_refused(self):
        self.assert_host_refused("there is no", personality="missing.json")

    def test_read_rate_that_is_none_is_refused(self):
        for rate in (0, "10", 1.5):
            self.assert_host_refused("discovery_rate must be a whole number", discovery_rate=rate)

    def test_read_tcp_other_than_refused_is_refused(self):
        for tcp in (False, "open"):
            self.assert_host_refused('tcp may only be "refused"', tcp=tcp)

    def test_read_files_of_this_folder_succeeds(self):
        files = sorted(HERE.glob("*.json"))
        self.assertTrue(files)
        for file in files:
            with self.subTest(file.name):
                read_hosts(file)

    def test_program_with_a_mistake_names_it_and_fails(self):
        self.file.write_text("{}", encoding="utf-8")
        result = subprocess.run([LIB / "hosts_file.py", self.file], capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"{self.file}: hosts must be a list", result.stderr)


if __name__ == "__main__":
    unittest.main()
