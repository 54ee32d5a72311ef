// What --help says below the options of the commands that converse, search and receive.
#pragma once

namespace kesp::console {

// clang-format off: one line of the text on one line
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
    "answer. What it prints is the address that works, and the answer. A command that is not answered takes "
    "up\n"
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
