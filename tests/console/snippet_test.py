#!/usr/bin/env python3
"""The programs that kesp snippet prints, run where they can be: snippet_test.py 64|32

Scripts of VBScript and JScript and programs in C++ ask simulated instruments over all transports. Of Python only the
syntax is checked. PowerShell, C#, MATLAB and VBA have nothing here that could run them.
Ends with 77 where the machine has no Wine of that width.
"""

import ast
import re
import subprocess
import sys
import unittest

from kesp_program import DONE, FAILED, ROOT, USAGE, KespCase
from program_tester import EXAMPLES, SKIPPED, TOOLS, start_wine

COM = 78
ADDRESSES = ("tcp:10.0.0.1:4001,eos=13+10", "com3@19200,7E1,omega=01,switch=B", "gpib:5/2,eos=13,noclear")


def compiler(bits):
    """That with which the library is built."""
    settings = (ROOT / "cmake" / f"mingw-win{bits}.cmake").read_text()
    return re.search(r"CMAKE_CXX_COMPILER (\S+)\)", settings)[1]


class SnippetCase(KespCase):
    def snippet(self, language, address):
        code, output, error = self.kesp("snippet", language, address)
        self.assertEqual((code, error), (DONE, ""))
        self.assertIn(address, output.splitlines()[0])
        return output

    def vbscript(self, address):
        return self.write(self.snippet("vbscript", address), "ask.vbs")

    def jscript(self, address):
        return self.write(self.snippet("jscript", address), "ask.js")

    def cpp(self, address):
        source = self.write(self.snippet("cpp", address), "ask.cpp")
        program = self.folder / "ask.exe"
        subprocess.run([compiler(self.bits), source, "-I", ROOT / "dist" / f"win{self.bits}" / "include", "-o", program,
                        "-static", "-lole32", "-loleaut32", "-luuid"], check=True)
        return program

    def run_program(self, program, *options):
        """Exit code and what it said."""
        ran = subprocess.run([TOOLS / "wine-run", "--bits", self.bits, *options, program], capture_output=True,
                             text=True, check=False)
        return ran.returncode, ran.stdout

    def expect_reply(self, address, reply, *options):
        for made in (self.vbscript, self.jscript, self.cpp):
            with self.subTest(language=made.__name__, address=address):
                self.assertEqual(self.run_program(made(address), *options), (DONE, reply + "\n"))

    def expect_failure(self, made, address, message, *options):
        with self.subTest(language=made.__name__, address=address):
            code, output = self.run_program(made(address), *options)
            self.assertEqual(code, FAILED)
            self.assertIn(message, output)


class RunTest(SnippetCase):
    def test_over_tcp(self):
        address = self.tcp_instrument(EXAMPLES / "torture.json")
        self.expect_reply(address, "KESP,TORTURE,SIM00666,1.0")

    def test_at_a_com_port(self):
        self.serial_instrument(COM, "--quiet", EXAMPLES / "serial-controller.json")
        self.expect_reply(f"com{COM}@9600,8N1", "KESP,SC300,SIM30118,1.4")

    def test_on_the_gpib(self):
        self.expect_reply("gpib:5", "KESP,GP488,SIM48805,1.0\n", "--driver")  # replies of the GPIB have their line end

    def test_failures(self):
        nobody = "[CKespTCP - Initialize()]: Timeout - unable to establish connection"
        self.expect_failure(self.vbscript, "tcp:127.0.0.1:9", nobody)
        self.expect_failure(self.jscript, "tcp:127.0.0.1:9", nobody)
        self.expect_failure(self.cpp, "tcp:127.0.0.1:9", nobody)
        self.expect_failure(self.vbscript, "com250", "CKespCOMPort3 - OpenPort() [commCOMControl]: Invalid port number")
        self.expect_failure(self.vbscript, "gpib:9", "[CKespIEEE - WriteLine()]: Error calling ibwrt()", "--driver")


class TextTest(SnippetCase):
    def test_the_syntax_of_python(self):
        for address in ADDRESSES:
            ast.parse(self.snippet("python", address))

    def test_mistakes(self):
        code, output, error = self.kesp("snippet", "vbscript", "com3@9601")
        self.assertEqual((code, output), (USAGE, ""))
        self.assertIn("9601", error)
        self.assertEqual(self.kesp("snippet", "cobol", "com3")[:2], (USAGE, ""))


if __name__ == "__main__":
    KespCase.bits = sys.argv.pop(1)
    ready = start_wine(KespCase.bits)
    if ready:
        sys.exit(SKIPPED if ready == SKIPPED else "there is no Wine")
    unittest.main()
