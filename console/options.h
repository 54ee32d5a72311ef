// The command line of kesp.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kesp::console {

// The exit codes of the program; that of "doctor" is the number of its FAILs.
inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;       // no reply, nothing found, a file that cannot be written
inline constexpr int kExitUsage = 2;        // a mistake in the command line or an address
inline constexpr int kExitNoLibrary = 3;    // the DLL is not there, or not registered
inline constexpr int kExitInterrupted = 4;  // by Ctrl-C, before it was done

// What the commands that talk have in common.
struct TalkOptions {
  std::string address;
  std::optional<int> timeout_ms;
  std::string trace;  // a file; empty: none
};

struct QueryOptions {
  TalkOptions talk;
  std::vector<std::string> commands;
  std::string binary;  // the file for the bytes; empty: a text reply
  bool hex = false;
  bool json = false;
  bool csv = false;
  bool crlf_as_is = false;
  std::optional<int> gap_ms;  // the silence that ends a reply of bytes
  std::optional<int> repeat;  // 0: until Ctrl-C; nothing: once, without the time
  int every_ms = 0;           // from one round to the next
};

struct SendOptions {
  TalkOptions talk;
  std::vector<std::string> commands;
};

struct TerminalOptions {
  TalkOptions talk;
  std::optional<int> gap_ms;  // as of a query
};

struct DetectOptions {
  TalkOptions talk;
  int level = 3;  // as EDetectLevel
  bool json = false;
};

struct DiscoverOptions {
  std::optional<int> timeout_ms;  // nobody is asked any more after that
  std::string trace;
  bool json = false;
};

struct PortsOptions {
  bool probe = false;
  bool json = false;
};

struct DownloadOptions {
  TalkOptions talk;
  std::string file;
  std::string command;  // sent first; empty: none
};

struct EditOptions {
  TalkOptions talk;
};

struct LogOptions {
  std::string file;
  std::string since;      // "14:05", "2026-11-22 14:05:09", "10min"; empty: from the beginning
  std::string as_device;  // the description to write; empty: none
  bool errors = false;
  bool follow = false;
  bool csv = false;
};

struct SnippetOptions {
  std::string language;
  std::string address;
  std::string output;  // the file to write; empty: standard output
};

struct DoctorOptions {
  bool json = false;
  bool this_width_only = false;  // how the kesp.exe of the other width is asked
};

struct CompletionOptions {
  std::string shell;  // "powershell"
};

using CommandOptions =
    std::variant<QueryOptions, SendOptions, TerminalOptions, DetectOptions, DiscoverOptions, PortsOptions,
                 DownloadOptions, EditOptions, LogOptions, SnippetOptions, DoctorOptions, CompletionOptions>;

struct Options {
  CommandOptions command;
  bool registered = false;  // the registered DLL in place of the one beside the program
};

// Either options, or what to print and the exit code (for --help and for mistakes).
struct ParsedOptions {
  std::optional<Options> options;
  int exit_code = kExitDone;
  std::string output;  // for standard output
  std::string error;   // for standard error
};

// arguments: the command line without the program's name, in UTF-8.
ParsedOptions ParseOptions(std::vector<std::string> arguments);

}  // namespace kesp::console
