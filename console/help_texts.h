// What --help says above and below the options.
#pragma once

namespace kesp::console {

// One line of the text stands on one line.
// clang-format off
inline constexpr char kAbout[] =
    "Talks to instruments over TCP/IP, at COM ports and on a GPIB, with the Kesp Communication Object Library.\n";

inline constexpr char kMore[] =
    "Addresses:\n"
    "  tcp:192.168.0.10:10001     over the network; the port is 10001 where none is given\n"
    "  tcp:192.168.0.10,eos=10    where a line feed ends a reply (13, a carriage return, if not said)\n"
    "  tcp:192.168.0.10,eos=13+10 where both together end it\n"
    "  tcp:192.168.0.10,any       where whatever comes is the reply\n"
    "  com3                       at COM3, as the library is set at first (57600 baud)\n"
    "  com3@9600,8N1              with this rate, data bits, parity and stop bits\n"
    "  com3@19200,7E1,omega=01    an Omega controller with the address 01\n"
    "  com3,cr                    behind a COM port redirector: a lone CR ends a reply\n"
    "  com3,switch=B/4            at port B of a port switch with 4 ports (6 if not said)\n"
    "  com3,modem=5               instrument 5 behind a radio modem\n"
    "  com3,ir                    with an infrared adapter\n"
    "  usb:A50285BI@9600          the COM port of the adapter with this serial number\n"
    "  gpib:5                     the device with the primary address 5 on the GPIB\n"
    "  gpib:5/2,noclear           with a secondary address; the device is not cleared at first\n"
    "  gpib:5,eos=13              where a carriage return ends a command (10, a line feed, if not said)\n"
    "\n"
    "Examples:\n"
    "  kesp query tcp:192.168.0.10 \"*IDN?\"\n"
    "  kesp discover\n"
    "  kesp ports\n"
    "  kesp detect com3\n"
    "  kesp query com3@9600 \"MEAS?\" --repeat 60 --every 1s --csv > measured.csv\n"
    "  kesp terminal gpib:5\n"
    "  kesp log commobjout.log --errors\n"
    "  kesp doctor\n"
    "\n"
    "\"kesp query --help\" and so on list the options of a command. Times are milliseconds, or have a unit:\n"
    "500ms, 2s, 1min, 1h.\n"
    "Exit codes: 0 done, 1 the instrument or the library failed, 2 a mistake in the command line or an address,\n"
    "3 the library cannot be loaded, 4 ended by Ctrl-C; of \"doctor\" the number of FAILs.\n";

inline constexpr char kMoreOfQuery[] =
    "Standard output holds the reply alone. A reply over TCP/IP or from a COM port comes without its line ends.\n"
    "\n"
    "Examples:\n"
    "  kesp query tcp:192.168.0.10 \"*IDN?\"\n"
    "  kesp query com3@9600 \"MEAS?\" --repeat 60 --every 1s --csv > measured.csv\n";

inline constexpr char kMoreOfSend[] =
    "Examples:\n"
    "  kesp send tcp:192.168.0.10 \"SETP 25\"\n"
    "  kesp send gpib:5 *RST \"SETP 25\"\n";

inline constexpr char kMoreOfPorts[] =
    "The list is the system's own, and no port is opened for it: only --probe tells whether one is in use.\n"
    "\n"
    "Examples:\n"
    "  kesp ports\n"
    "  kesp ports --probe --json\n";

inline constexpr char kMoreOfLog[] =
    "The trace is the file that DebugFilename names while Debugging is True, or that --trace wrote.\n"
    "--as-device writes a description from which kesp-sim plays the instrument, with the delays that it had.\n"
    "\n"
    "Examples:\n"
    "  kesp log trace.log --errors --since 10min\n"
    "  kesp log trace.log --as-device mine.json     and then: kesp-sim mine.json --port 10001\n";

inline constexpr char kMoreOfSnippet[] =
    "The program asks *IDN? and prints the reply; it uses the registered library. Windows PowerShell writes\n"
    "what \">\" redirects as UTF-16, which not every language reads; --output writes UTF-8.\n"
    "\n"
    "Examples:\n"
    "  kesp snippet python tcp:192.168.0.10\n"
    "  kesp snippet vbscript com3@9600 --output ask.vbs\n";

inline constexpr char kMoreOfDoctor[] =
    "Each line is OK, WARN or FAIL; the exit code is the number of FAILs.\n"
    "\n"
    "Examples:\n"
    "  kesp doctor\n"
    "  kesp doctor --json > doctor.json\n";

inline constexpr char kMoreOfCompletion[] =
    "The script completes commands, options, languages and COM ports with the tab key.\n"
    "\n"
    "Examples:\n"
    "  kesp completion powershell | Out-String | Invoke-Expression\n"
    "  kesp completion powershell >> $PROFILE\n";

inline constexpr char kMoreOfTerminal[] =
    "What you type is sent; what is answered is shown with the time and the duration. A line that begins "
    "with a\n"
    "colon is for the terminal: \":help\" lists these. Ctrl-C ends it, also while a reply is awaited. "
    "Commands may\n"
    "come from a file; the exit code is 1 then when one of them failed.\n"
    "\n"
    "Examples:\n"
    "  kesp terminal com3@9600\n"
    "  kesp terminal tcp:192.168.0.10 < commands.txt > replies.txt\n";

inline constexpr char kMoreOfDetect[] =
    "At a COM port it looks for the bit rate, on the GPIB (\"gpib:\") for the first device, over TCP/IP for "
    "an\n"
    "answer. What it prints is the address that works, and the answer. It tries the rates from 115200 bit/s "
    "down to\n"
    "300, unless the address has a faster one. A command that is not answered takes up\n"
    "to 2 s; Ctrl-C ends the search before the next one, and at once when it is pressed again.\n"
    "\n"
    "Examples:\n"
    "  kesp detect com3\n"
    "  kesp detect gpib: --level scpi\n";

inline constexpr char kMoreOfDiscover[] =
    "Sends one broadcast and asks everyone who answers who it is.\n"
    "\n"
    "Examples:\n"
    "  kesp discover\n"
    "  kesp discover --json --timeout 10s\n";

inline constexpr char kMoreOfDownload[] =
    "The transfer ends when the line has been silent for the timeout (3 s if not said). The file is written\n"
    "when all has come. After Ctrl-C or a failure, what came until then is in FILE.part.\n"
    "\n"
    "Examples:\n"
    "  kesp download com3@57600 log.bin --command DUMP?\n"
    "  kesp download com3 log.bin --timeout 10s\n";

inline constexpr char kMoreOfEdit[] =
    "What it prints is the address with the settings that were confirmed.\n"
    "\n"
    "Examples:\n"
    "  kesp edit com3\n"
    "  kesp edit tcp:192.168.0.10\n";

// clang-format on

}  // namespace kesp::console
