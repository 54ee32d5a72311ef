#!/usr/bin/env python3
"""Runs commands on simulated networks and looks at what they reach, what they return, and what is left afterwards.

Ends with 77 and a reason where such a network cannot be made.
"""

import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
TOOL = ROOT / "tools" / "with-network-hosts"
CLIENT = HERE / "client.py"
TWO_NETWORKS, NOBODY = HERE / "two-networks.json", HERE / "no-instruments.json"
BUILT_IN, CONTROLLER = "KESP,7100,SIM00001,1.0", "KESP,BT200,SIM20417,2.3"
SKIPPED, NOT_RUN = 77, 125
LIMIT_SECONDS = 60


def run(*command, **options):
    return subprocess.run([str(word) for word in (TOOL, *command)], text=True, capture_output=True, check=False,
                          timeout=LIMIT_SECONDS, **{"stdin": subprocess.DEVNULL, **options})


def begin(*command):
    return subprocess.Popen([str(word) for word in (TOOL, *command)], text=True, stdin=subprocess.PIPE,
                            stdout=subprocess.PIPE)


def file_of(folder, *hosts):
    path = pathlib.Path(folder) / "hosts.json"
    path.write_text(json.dumps({"hosts": hosts}), encoding="utf-8")
    return path


def answers(*actions):
    """What came of these actions of the client with two networks."""
    result = run(TWO_NETWORKS, "--", CLIENT, *actions)
    if result.returncode != 0:
        raise AssertionError(result.stderr)
    return [json.loads(line) for line in result.stdout.splitlines()]


def becomes_true(condition):
    deadline = time.monotonic() + LIMIT_SECONDS
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.02)
    return True


def users_of(namespace):
    """The processes in that network namespace, as far as they are ours to see."""
    found = []
    for process in pathlib.Path("/proc").iterdir():
        try:
            if process.name.isdigit() and os.readlink(process / "ns" / "net") == namespace:
                found.append(process.name)
        except OSError:
            pass  # it ended, or it is another user's
    return found


class NetworkHostsTest(unittest.TestCase):
    """What the command reaches."""

    def test_broadcast_reaches_the_first_network_only(self):
        everybody, second, log = answers("discover", "255.255.255.255", 52, "discover", "10.89.255.255", 1,
                                         "log", "10.89.0.11")
        fifty = [f"10.88.4.{number}" for number in range(1, 51)]
        self.assertCountEqual(everybody, ["10.88.0.11", "10.88.0.13", *fifty])
        # It does answer a broadcast, and this was its first one.
        self.assertEqual(second, ["10.89.0.11"])
        self.assertEqual(len([line for line in log if "discovery from 10.89.0.1:" in line]), 1, log)

    def test_connection_reaches_each_host_and_each_address_it_owns(self):
        addresses = ("10.88.0.11", "10.88.0.12", "10.88.4.50", "10.88.4.51", "10.89.0.11", "10.88.0.13")
        identities = answers(*(word for address in addresses for word in ("identify", address)))
        self.assertEqual(identities, [CONTROLLER, BUILT_IN, BUILT_IN, BUILT_IN, BUILT_IN, "refused"])

    def test_networks_side_by_side_do_not_see_each_other(self):
        personality = str(ROOT / "simulator" / "examples" / "bench-top-controller.json")
        with tempfile.TemporaryDirectory() as one, tempfile.TemporaryDirectory() as other:
            files = (file_of(one, {"address": "10.88.0.11"}),
                     file_of(other, {"address": "10.88.0.11", "personality": personality}))
            both = [begin(file, "sh", "-c", f'echo up; read -r _; "{CLIENT}" identify 10.88.0.11') for file in files]
            self.assertEqual([network.stdout.readline() for network in both], ["up\n", "up\n"])
            said = [network.communicate("go on\n", timeout=LIMIT_SECONDS)[0].strip() for network in both]
        self.assertEqual(said, [f'"{BUILT_IN}"', f'"{CONTROLLER}"'])

    def test_machine_itself_is_out_of_reach(self):
        connect = "import socket; socket.create_connection((\"127.0.0.1\", int(__import__(\"sys\").argv[1])), 5)"
        with subprocess.Popen([sys.executable, "-c", "import socket, sys; s = socket.create_server((\"127.0.0.1\", 0));"
                               "print(s.getsockname()[1], flush=True); sys.stdin.read()"],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as server:
            port = server.stdout.readline().strip()
            subprocess.run([sys.executable, "-c", connect, port], check=True)
            result = run(NOBODY, sys.executable, "-c", connect, port)
            server.stdin.close()
        self.assertIn("ConnectionRefusedError", result.stderr)


class CommandTest(unittest.TestCase):
    """What the command gets, and what comes back from it."""

    def test_command_that_ends_passes_its_exit_code_on(self):
        self.assertEqual(run(NOBODY, "true").returncode, 0)
        self.assertEqual(run(NOBODY, "--", "sh", "-c", "exit 3").returncode, 3)
        self.assertEqual(run(NOBODY, "sh", "-c", "kill -KILL $$").returncode, 128 + signal.SIGKILL)

    def test_command_runs_as_the_caller_in_the_same_folder_with_its_environment(self):
        with tempfile.TemporaryDirectory() as folder:
            environment = {**os.environ, "SOME_SETTING": "a b\nc", "KESP_INSTRUMENT_PORT": "1"}
            say = 'id -u; pwd; echo "$SOME_SETTING ${KESP_INSTRUMENT_PORT-none}"'
            result = run(NOBODY, "sh", "-c", say, cwd=folder, env=environment)
            self.assertEqual(result.stdout, f"{os.getuid()}\n{os.path.realpath(folder)}\na b\nc none\n")

    def test_command_that_leaves_a_process_behind_is_not_waited_for(self):
        self.assertEqual(run(NOBODY, "sh", "-c", "sleep 600 & exit 4").returncode, 4)

    def test_host_that_ends_early_is_reported(self):
        with tempfile.TemporaryDirectory() as folder:
            brief = pathlib.Path(folder) / "brief"
            brief.write_text('#!/bin/sh\necho listening on nothing\nexit 1\n', encoding="utf-8")
            brief.chmod(0o755)
            result = run(file_of(folder, {"address": "10.88.0.11"}), "sleep", "1",
                         env={**os.environ, "KESP_INSTRUMENT": str(brief)})
        self.assertEqual(result.returncode, NOT_RUN)
        self.assertIn("the host 10.88.0.11 ended before the command had", result.stderr)


class RefusalTest(unittest.TestCase):
    """What keeps the command from being run."""

    def assert_not_run(self, reason, *command, **options):
        result = run(*command, **options)
        self.assertEqual(result.returncode, NOT_RUN)
        self.assertEqual(result.stdout, "")
        self.assertIn(reason, result.stderr)

    def test_unknown_member_is_refused_by_its_name(self):
        with tempfile.TemporaryDirectory() as folder:
            file = file_of(folder, {"address": "10.88.0.11", "speed": 100})
            self.assert_not_run('hosts.json: host 1 has an unknown member "speed"', file, "echo", "run")

    def test_command_line_without_a_command_is_refused(self):
        self.assert_not_run("usage:")
        self.assert_not_run("usage:", NOBODY, "--")
        self.assert_not_run("--bits takes 64 or 32", "--bits", "16", NOBODY, "echo", "run")

    def test_host_that_does_not_become_ready_is_named(self):
        with tempfile.TemporaryDirectory() as folder:
            file = file_of(folder, {"address": "10.88.0.11"})
            self.assert_not_run("10.88.0.11 did not become ready", file, "echo", "run",
                                env={**os.environ, "KESP_INSTRUMENT": "/bin/false"})
            self.assert_not_run("is not there; tools/build native makes it", file, "echo", "run",
                                env={**os.environ, "KESP_INSTRUMENT": "/nowhere/kesp-sim"})

    @unittest.skipUnless(os.getuid() == 0, "only root can give up a right that it had")
    def test_machine_without_namespaces_is_a_reason_to_skip(self):
        without = ["setpriv", "--bounding-set", "-sys_admin", "--inh-caps", "-sys_admin", "--"]
        result = subprocess.run([*without, TOOL, NOBODY, "echo", "run"], text=True, capture_output=True, check=False)
        self.assertEqual((result.returncode, result.stdout), (SKIPPED, ""))
        self.assertRegex(result.stderr, r"\Askipped: network namespaces cannot be made here: unshare.*\n\Z")


class LeftoversTest(unittest.TestCase):
    """However it ends, the machine is as it was before."""

    def setUp(self):
        self.before = self.machine()

    @staticmethod
    def machine():
        """Of this machine's links and mounts those that are named as ours, and what lies where networks have files."""
        links = subprocess.run(["ip", "-brief", "link"], text=True, capture_output=True, check=True).stdout
        names = sorted(line.split()[0] for line in links.splitlines() if line.startswith(("network", "host")))
        mounts = pathlib.Path("/proc/self/mounts").read_text(encoding="utf-8")
        named = pathlib.Path("/run/netns")
        return (names, [line for line in mounts.splitlines() if "network-hosts" in line],
                sorted(named.iterdir()) if named.is_dir() else [], sorted((ROOT / "build" / "network-hosts").iterdir()))

    def begin_waiting(self):
        """A network with hosts whose command waits, and its namespace."""
        network = begin(TWO_NETWORKS, "sh", "-c", "readlink /proc/self/ns/net; exec sleep 600")
        self.addCleanup(network.wait)
        self.addCleanup(network.kill)
        self.addCleanup(network.stdin.close)
        self.addCleanup(network.stdout.close)
        namespace = network.stdout.readline().strip()
        self.assertTrue(users_of(namespace))
        return network, namespace

    def assert_as_before(self, namespace):
        self.assertTrue(namespace)
        self.assertEqual(users_of(namespace), [])
        self.assertEqual(self.machine(), self.before)

    def test_command_that_fails_leaves_nothing(self):
        result = run(TWO_NETWORKS, "sh", "-c", "readlink /proc/self/ns/net; sleep 600 & exit 1")
        self.assertEqual(result.returncode, 1)
        self.assert_as_before(result.stdout.strip())

    def test_script_that_is_terminated_or_killed_leaves_nothing(self):
        for end in (subprocess.Popen.terminate, subprocess.Popen.kill):
            network, namespace = self.begin_waiting()
            end(network)
            network.wait(LIMIT_SECONDS)
            self.assertTrue(becomes_true(lambda: not users_of(namespace)))
            self.assert_as_before(namespace)


def main():
    able = run(NOBODY, "true")
    if able.returncode == SKIPPED:
        print(able.stderr.strip())
        sys.exit(SKIPPED)
    unittest.main(verbosity=2)


if __name__ == "__main__":
    main()
