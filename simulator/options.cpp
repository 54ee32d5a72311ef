// The command line of kesp-sim.
#include "simulator/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <asio/ip/address.hpp>
#include <sstream>

#include "simulator/examples.h"

namespace kesp::simulator {
namespace {

constexpr char kAbout[] =
    "Simulates laboratory instruments: over TCP/IP, at a serial line, found by discovery, with faults on "
    "demand.\n"
    "Without a command it does what \"serve\" does.\n";

constexpr char kMore[] =
    "Examples:\n"
    "  kesp-sim                                   the built-in instrument on a free port of this machine\n"
    "  kesp-sim --port 10001                      ... on a port of your choice\n"
    "  kesp-sim bench-top-controller.json --log talk.log --quiet\n"
    "  kesp-sim --discovery --bind 0.0.0.0 --port 10001\n"
    "                                             ... found by discovery, from the whole network\n"
    "  kesp-sim --serial COM7                     at one end of a null modem (Windows)\n"
    "  kesp-sim --serial ~/.wine/dosdevices/com33 at a serial line of its own, COM33 in Wine (Linux)\n"
    "  kesp-sim example device meter.json         writes a commented description to start from\n"
    "  kesp-sim check meter.json                  tells every mistake in it\n"
    "\n"
    "kesp-sim serve --help lists the options of \"serve\".\n"
    "Exit codes: 0 ended as asked, 1 cannot listen or open the line, 2 a mistake in the command line or in a "
    "file.\n"
    "README.md tells how to describe an instrument.\n";

constexpr char kMoreOfServe[] =
    "When it is ready it prints \"listening on ADDRESS:PORT\", with all addresses of a network (and, with\n"
    "--discovery, \"discovery on ADDRESS:PORT\"), or \"serving LINE\". The built-in instrument answers "
    "*IDN?, *VER, t\n"
    "and MEAS?; its commands and replies end with a carriage return.\n";

constexpr char kMoreOfWire[] =
    "It prints \"listening on ADDRESS:PORT\". For each client it makes a serial line, linked under the path, "
    "sends\n"
    "\"ready\" and a line feed, and carries bytes both ways until the client leaves.\n";

std::string CheckAddress(const std::string& text) {
  asio::error_code error;
  asio::ip::make_address(text, error);
  return error ? "\"" + text + "\" is not an IP address" : std::string();
}

std::string CheckAddresses(const std::string& text) {
  return ReadAddressRange(text)
             ? std::string()
             : "\"" + text + "\" is not a range of IPv4 addresses such as 10.0.0.1-10.0.0.9";
}

std::string CheckPath(const std::string& text) {
  return text.empty() ? "the path is empty" : std::string();
}

void DescribeDiscovery(CLI::App& app, Options& options) {
  app.add_flag("--discovery", options.discovery, "Answer discovery datagrams (UDP, IPv4), too");
  app.add_option("--discovery-port", options.discovery_port,
                 "Port on which they come and from which the answers go; 30718 is the default, 0 picks one")
      ->type_name("N")
      ->needs("--discovery");
  app.add_option_function<std::string>(
         "--discovery-from",
         [&options](const std::string& text) { options.discovery_from = ReadAddressRange(text); },
         "Send each answer from every one of these addresses of this machine, as if each had an instrument")
      ->type_name("FIRST-LAST")
      ->check(CheckAddresses)
      ->needs("--discovery");
  app.add_option("--discovery-rate", options.discovery_rate,
                 "Send at most so many datagrams of an answer in a second; 0 (default) sets no limit")
      ->type_name("N")
      ->check(CLI::Range(0U, 1'000'000U))
      ->needs("--discovery");
}

void DescribeListening(CLI::App& app, Options& options) {
  app.add_option("--port", options.port,
                 "Port to listen on; 0 (default) picks a free one from 20000 to 32000")
      ->type_name("N");
  app.add_option("--bind", options.bind, "IP address to listen on; 127.0.0.1 (default) is this machine only")
      ->type_name("ADDRESS")
      ->check(CheckAddress);
}

void DescribeServe(CLI::App& app, Options& options) {
  app.add_option("FILE", options.file, "The description of the device or network (JSON)")
      ->type_name("")
      ->check(CheckPath);
  DescribeListening(app, options);
  DescribeDiscovery(app, options);
  app.add_option(
         "--serial", options.serial,
         "Serve a serial line instead: a COM port (Windows), or a new line that is linked under this path")
      ->type_name("COM7|PATH")
      ->check(CheckPath)
      ->excludes("--port", "--bind", "--discovery");
  app.add_option("--log", options.log, "Append a line per connection, command and reply to this file")
      ->type_name("FILE");
  app.add_flag("--quiet", options.quiet, "Do not write those lines to standard error");
  app.add_flag("--once", options.once, "End after the first client has left")->excludes("--serial");
}

void DescribeWire(CLI::App& app, Options& options) {
  app.add_option("--serial", options.serial, "Where the serial line is linked")
      ->type_name("PATH")
      ->check(CheckPath)
      ->required();
  DescribeListening(app, options);
}

void DescribeCheck(CLI::App& app, Options& options) {
  app.add_option("FILE", options.file, "The description (JSON)")->type_name("")->check(CheckPath)->required();
}

void DescribeExample(CLI::App& app, Options& options) {
  std::vector<std::string> kinds;
  for (const Example& example : Examples()) kinds.emplace_back(example.kind);
  app.add_option("KIND", options.kind, "What it describes")
      ->type_name("")
      ->check(CLI::IsMember(kinds))
      ->required();
  app.add_option("FILE", options.file,
                 "Where to write it; it must not be there yet. Left out: standard output")
      ->type_name("")
      ->check(CheckPath);
}

// What no single option can tell.
void CheckTogether(const Options& options) {
  if (options.discovery && !asio::ip::make_address(options.bind).is_v4())
    throw CLI::ValidationError("--discovery", "goes with an IPv4 address as --bind only");
}

CLI::App& AddCommand(CLI::App& app, Options& options, Command command, const char* name, const char* about,
                     const char* more = "") {
  CLI::App& added = *app.add_subcommand(name, about);
  added.set_help_flag("-h,--help", "Print this text and end");
  added.footer(more);
  added.callback([&options, command] { options.command = command; });
  return added;
}

void Describe(CLI::App& app, Options& options) {
  // The same on every system: "/file.json" is a path.
  app.allow_windows_style_options(false);
  app.footer(kMore);
  app.set_help_flag("-h,--help", "Print this text and end");
  app.set_version_flag("--version", "kesp-sim " KESP_VERSION, "Print the version and end");
  app.get_formatter()->column_width(24);
  app.require_subcommand(0, 1);
  DescribeServe(
      AddCommand(app, options, Command::kServe, "serve",
                 "Plays the described device, or the built-in instrument, until Ctrl-C", kMoreOfServe),
      options);
  DescribeCheck(AddCommand(app, options, Command::kCheck, "check",
                           "Tells every mistake of a description as \"FILE:LINE: MEMBER: what is wrong\""),
                options);
  DescribeExample(
      AddCommand(app, options, Command::kExample, "example", "Writes a commented description to start from"),
      options);
  DescribeWire(AddCommand(app, options, Command::kWire, "wire",
                          "Lets a TCP client play the instrument at a serial line (Linux only)", kMoreOfWire),
               options);
}

// Whether the first argument asks for something else than serving.
bool NamesACommand(const CLI::App& app, const std::string& first) {
  if (first == "-h" || first == "--help" || first == "--version") return true;
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  return std::any_of(commands.begin(), commands.end(),
                     [&first](const CLI::App* command) { return command->get_name() == first; });
}

}  // namespace

ParsedOptions ParseOptions(std::vector<std::string> arguments) {
  ParsedOptions parsed;
  Options options;
  CLI::App app(kAbout, "kesp-sim");
  Describe(app, options);
  if (arguments.empty() || !NamesACommand(app, arguments.front()))
    arguments.insert(arguments.begin(), "serve");
  // The parser takes its arguments from the back.
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
    CheckTogether(options);
    parsed.options = options;
  } catch (const CLI::ParseError& stop) {
    std::ostringstream output;
    std::ostringstream error;
    parsed.exit_code = app.exit(stop, output, error) == 0 ? kExitDone : kExitBadInput;
    parsed.output = output.str();
    parsed.error = error.str();
  }
  return parsed;
}

}  // namespace kesp::simulator
