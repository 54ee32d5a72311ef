// The command line of kesp.
#include "console/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <utility>

#include "console/command_words.h"
#include "console/duration.h"
#include "console/help_texts.h"
#include "console/snippet_languages.h"

namespace kesp::console {
namespace {

constexpr char kPowerShell[] = "powershell";

// CLI11 names the option in front.
CLI::Option* AddDuration(CLI::App& app, const char* name, const char* about, std::function<void(int)> store) {
  return app
      .add_option_function<std::string>(
          name, [store = std::move(store)](const std::string& text) { store(*ReadDuration(text)); }, about)
      ->type_name("TIME")
      ->check([](const std::string& text) {
        return ReadDuration(text) ? std::string()
                                  : "\"" + text + "\" is not a time such as 500ms, 2s or 1min";
      });
}

constexpr char kOfAReply[] = "How long to wait for the connection and for a reply";

void DescribeTalk(CLI::App& app, TalkOptions& talk, const char* timeout = kOfAReply) {
  app.add_option("ADDRESS", talk.address, "Where the instrument is")->type_name("")->required();
  AddDuration(app, "--timeout", timeout, [&talk](int milliseconds) { talk.timeout_ms = milliseconds; });
  app.add_option("--trace", talk.trace, "Write each step into this file, for \"kesp log\"")
      ->type_name("FILE");
}

void DescribeGap(CLI::App& app, std::optional<int>& gap_ms) {
  AddDuration(app, "--gap", "The silence that ends a reply of bytes, 100 ms if not said",
              [&gap_ms](int milliseconds) { gap_ms = milliseconds; });
}

void DescribeCommands(CLI::App& app, std::vector<std::string>& commands) {
  app.add_option("CMD", commands, "What is sent, one after the other")->type_name("")->required();
}

void DescribeQuery(CLI::App& app, QueryOptions& options) {
  app.footer(kMoreOfQuery);
  DescribeTalk(app, options.talk);
  DescribeCommands(app, options.commands);
  auto* binary =
      app.add_option("--binary", options.binary, "Read bytes in place of text, and write them into this file")
          ->type_name("FILE");
  auto* hex = app.add_flag("--hex", options.hex, "Read bytes in place of text, and show them in hexadecimal");
  DescribeGap(app, options.gap_ms);
  auto* json = app.add_flag("--json", options.json, "One JSON object for each reply");
  auto* csv = app.add_flag("--csv", options.csv, "Comma-separated values, a line for each round");
  binary->excludes(hex)->excludes(csv);
  json->excludes(csv);
  auto* repeat = app.add_option("--repeat", options.repeat,
                                "Do it so many times, with the time in front; 0: until Ctrl-C")
                     ->type_name("N")
                     ->check(CLI::Range(0, 1'000'000'000));
  repeat->excludes(binary);
  AddDuration(app, "--every", "The time from the beginning of one round to that of the next",
              [&options](int milliseconds) { options.every_ms = milliseconds; })
      ->needs(repeat);
  app.add_flag("--crlf-as-is", options.crlf_as_is, "Leave the line ends in the reply")
      ->excludes(hex)
      ->excludes(binary);
}

void DescribeLevel(CLI::App& app, DetectOptions& options) {
  const std::vector<std::pair<std::string, int>> levels = {{"scpi", 1}, {"common", 2}, {"all", 3}};
  app.add_option("--level", options.level, "Which commands are tried: *IDN?, also *VER, also t (all)")
      ->type_name("scpi|common|all")
      ->transform(CLI::CheckedTransformer(levels, CLI::ignore_case));
}

void Describe(CLI::App& app, DetectOptions& options) {
  app.footer(kMoreOfDetect);
  DescribeTalk(app, options.talk, "Try nothing any more after this time");
  DescribeLevel(app, options);
  app.add_flag("--json", options.json, "As JSON");
}

void Describe(CLI::App& app, DiscoverOptions& options) {
  app.footer(kMoreOfDiscover);
  AddDuration(app, "--timeout", "Ask nobody any more after this time",
              [&options](int milliseconds) { options.timeout_ms = milliseconds; });
  app.add_option("--trace", options.trace, "Write each step into this file")->type_name("FILE");
  app.add_flag("--json", options.json, "As JSON");
}

void Describe(CLI::App& app, QueryOptions& options) {
  DescribeQuery(app, options);
}

void Describe(CLI::App& app, SendOptions& options) {
  app.footer(kMoreOfSend);
  DescribeTalk(app, options.talk);
  DescribeCommands(app, options.commands);
}

void Describe(CLI::App& app, TerminalOptions& options) {
  app.footer(kMoreOfTerminal);
  DescribeTalk(app, options.talk);
  DescribeGap(app, options.gap_ms);
}

void Describe(CLI::App& app, PortsOptions& options) {
  app.footer(kMoreOfPorts);
  app.add_flag("--probe", options.probe, "Open each port, to see whether it is in use");
  app.add_flag("--json", options.json, "As JSON");
}

void Describe(CLI::App& app, DownloadOptions& options) {
  app.footer(kMoreOfDownload);
  DescribeTalk(app, options.talk, "How long the line is silent at the end of the transfer");
  app.add_option("FILE", options.file, "Where to write it")->type_name("")->required();
  app.add_option("--command", options.command, "Send this first")->type_name("CMD");
}

void Describe(CLI::App& app, EditOptions& options) {
  app.footer(kMoreOfEdit);
  DescribeTalk(app, options.talk);
}

void Describe(CLI::App& app, LogOptions& options) {
  app.footer(kMoreOfLog);
  app.add_option("FILE", options.file, "The trace")->type_name("")->required();
  app.add_flag("--errors", options.errors, "Only what failed");
  app.add_option("--since", options.since,
                 "Only what began then or later: 14:05, \"2026-11-22 14:05:09\", or 10min ago")
      ->type_name("WHEN");
  auto* follow = app.add_flag("--follow", options.follow, "Go on with what is appended, until Ctrl-C");
  app.add_flag("--csv", options.csv, "Comma-separated values");
  app.add_option("--as-device", options.as_device,
                 "Write a description for kesp-sim; the file must not be there yet")
      ->type_name("OUT.json")
      ->excludes(follow);
}

void Describe(CLI::App& app, SnippetOptions& options) {
  app.footer(kMoreOfSnippet);
  app.add_option("LANGUAGE", options.language, "What it is written in")
      ->type_name("")
      ->required()
      ->transform(CLI::IsMember(SnippetLanguages(), CLI::ignore_case));
  app.add_option("ADDRESS", options.address, "Where the instrument is")->type_name("")->required();
  app.add_option("--output", options.output, "Write it into this file, which must not be there yet")
      ->type_name("FILE");
}

void Describe(CLI::App& app, DoctorOptions& options) {
  app.footer(kMoreOfDoctor);
  app.add_flag("--json", options.json, "As JSON");
  app.add_flag("--this-width-only", options.this_width_only, "Do not ask the kesp.exe of the other width");
}

void Describe(CLI::App& app, CompletionOptions& options) {
  app.footer(kMoreOfCompletion);
  app.add_option("SHELL", options.shell, "For which shell: powershell")
      ->type_name("")
      ->required()
      ->transform(CLI::IsMember({kPowerShell}, CLI::ignore_case));
}

// The parser would take "[A,B]" for a list of A and B. With this behind it, it is a word like any other.
constexpr char kNoList = '\x1E';

void MarkWordsInBrackets(std::vector<std::string>& arguments) {
  for (std::string& each : arguments)
    if (each.starts_with('[') && each.ends_with(']')) each += kNoList;
}

void TakeMarksAway(CLI::App& app) {
  const auto take_away = [](std::string& value) {
    if (value.ends_with(kNoList)) value.pop_back();
    return std::string();
  };
  for (CLI::Option* option : app.get_options({})) option->transform(CLI::Validator(take_away, ""));
}

template <class Command>
void Add(CLI::App& app, Options& options, const char* name, const char* about) {
  CLI::App& added = *app.add_subcommand(name, about);
  added.set_help_flag("-h,--help", "Print this text and end");
  added.fallthrough();
  // Where the parser stores them, until this command is the one.
  auto own = std::make_shared<Command>();
  Describe(added, *own);
  TakeMarksAway(added);
  added.callback([&options, own] { options.command = *own; });
}

void DescribeAll(CLI::App& app, Options& options) {
  app.allow_windows_style_options(false);
  app.footer(kMore);
  app.set_help_flag("-h,--help", "Print this text and end");
  app.set_version_flag("--version", "kesp " KESP_VERSION, "Print the version and end");
  app.get_formatter()->column_width(24);
  app.require_subcommand(1);
  app.add_flag("--registered", options.registered,
               "Use the registered library, not the one beside this program");
  Add<QueryOptions>(app, options, "query", "Sends commands and prints the replies");
  Add<SendOptions>(app, options, "send", "Sends commands and reads nothing");
  Add<TerminalOptions>(app, options, "terminal", "A conversation, line by line");
  Add<DetectOptions>(app, options, "detect", "Looks for the instrument at a port, an address or the GPIB");
  Add<DiscoverOptions>(app, options, "discover", "Lists the instruments on the local network");
  Add<PortsOptions>(app, options, "ports", "Lists the COM ports with their adapters");
  Add<DownloadOptions>(app, options, "download", "Receives a long transfer at a COM port");
  Add<EditOptions>(app, options, "edit", "Shows the settings dialog and prints the settings as an address");
  Add<LogOptions>(app, options, "log", "Makes a trace readable, or makes a simulated device of it");
  Add<SnippetOptions>(app, options, "snippet", "Prints a program that talks to an address");
  Add<DoctorOptions>(app, options, "doctor", "Looks for all that keeps the library from working here");
  Add<CompletionOptions>(app, options, "completion", "Prints a script that completes what you type");
}

std::vector<std::string> ValuesOf(const std::string& command) {
  if (command == "snippet") return SnippetLanguages();
  if (command == "completion") return {kPowerShell};
  return {};
}

// The word that stands where the command should, and is none; otherwise null.
const std::string* NoCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
  const auto word = std::find_if(arguments.begin(), arguments.end(),
                                 [](const std::string& each) { return !each.starts_with("-"); });
  if (word == arguments.end()) return nullptr;
  const auto named = app.get_subcommands([&word](const CLI::App* each) { return each->get_name() == *word; });
  return named.empty() ? &*word : nullptr;
}

ParsedOptions Refused(std::string message) {
  ParsedOptions parsed;
  parsed.exit_code = kExitUsage;
  parsed.error = std::move(message);
  return parsed;
}

}  // namespace

std::vector<CommandWord> CommandWords() {
  Options options;
  CLI::App app(kAbout, "kesp");
  DescribeAll(app, options);
  std::vector<CommandWord> words;
  for (const CLI::App* command : app.get_subcommands({})) {
    CommandWord word{command->get_name(), command->get_description(), {}, ValuesOf(command->get_name())};
    for (const CLI::Option* option : command->get_options())
      if (!option->get_lnames().empty()) word.options.push_back("--" + option->get_lnames().front());
    words.push_back(std::move(word));
  }
  return words;
}

ParsedOptions ParseOptions(std::vector<std::string> arguments) {
  ParsedOptions parsed;
  Options options;
  CLI::App app(kAbout, "kesp");
  DescribeAll(app, options);
  if (arguments.empty()) return Refused(app.help());
  if (const std::string* word = NoCommand(app, arguments))
    return Refused("\"" + *word + "\" is not a command; \"kesp --help\" lists them\n");
  MarkWordsInBrackets(arguments);
  // The parser takes its arguments from the back.
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
    parsed.options = options;
  } catch (const CLI::ParseError& stop) {
    std::ostringstream output;
    std::ostringstream error;
    parsed.exit_code = app.exit(stop, output, error) == 0 ? kExitDone : kExitUsage;
    parsed.output = output.str();
    parsed.error = error.str();
  }
  return parsed;
}

}  // namespace kesp::console
