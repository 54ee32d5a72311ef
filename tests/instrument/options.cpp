// The command line of kesp-instrument.
#include "tests/instrument/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <asio/ip/address.hpp>
#include <sstream>

namespace kesp::simulator {
namespace {

constexpr char kAbout[] =
    "Plays a laboratory instrument over TCP or on a serial line: answers text commands, with faults on "
    "demand.\n"
    "It prints \"listening on ADDRESS:PORT\" or \"serving PATH\" when it is ready, with --discovery\n"
    "\"discovery on ADDRESS:PORT\" on a second line, and runs until it is interrupted.\n";

constexpr char kMore[] =
    "Without a personality file it answers *IDN?, *VER, t and MEAS?, refuses other queries with an error\n"
    "text, and takes everything else in silence. Commands and replies end with a carriage return.\n"
    "\n"
    "Examples:\n"
    "  kesp-instrument                                      the built-in instrument on a free port\n"
    "  kesp-instrument --port 10001                         ... on a port of your choice\n"
    "  kesp-instrument --personality bench-top-controller.json --log talk.log --quiet\n"
    "  kesp-instrument --discovery --bind 0.0.0.0 --port 10001\n"
    "                                                       ... that is found by its network\n"
    "  kesp-instrument --serial ~/.wine/dosdevices/com33     on a serial line, COM33 in Wine\n"
    "  printf '*IDN?\\r' | nc -q 1 127.0.0.1 10001           talk to it by hand\n"
    "\n"
    "Exit codes: 0 ended as asked, 1 cannot listen or serve, 2 a mistake in the command line or in a file.\n"
    "The personality format is described in the README beside the shipped personalities.\n";

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

// What no single option can tell.
void CheckTogether(const Options& options) {
  if (options.discovery && !asio::ip::make_address(options.bind).is_v4())
    throw CLI::ValidationError("--discovery", "goes with an IPv4 address as --bind only");
}

void Describe(CLI::App& app, Options& options) {
  app.footer(kMore);
  app.set_help_flag("-h,--help", "Print this text and end");
  app.get_formatter()->column_width(24);
  app.add_option("--port", options.port,
                 "Port to listen on; 0 (default) picks a free one from 20000 to 32000")
      ->type_name("N");
  app.add_option("--bind", options.bind, "IP address to listen on; 127.0.0.1 (default) is this machine only")
      ->type_name("ADDRESS")
      ->check(CheckAddress);
  DescribeDiscovery(app, options);
  app.add_option("--serial", options.serial, "Serve a serial line instead, which is linked under this path")
      ->type_name("PATH")
      ->check(CheckPath)
      ->excludes("--port", "--bind", "--discovery");
  app.add_option("--personality", options.personality, "What to answer to which command (JSON)")
      ->type_name("FILE");
  app.add_option("--log", options.log, "Append a line per connection, command and reply to this file")
      ->type_name("FILE");
  app.add_flag("--quiet", options.quiet, "Do not write those lines to standard error");
  app.add_flag("--once", options.once, "End after the first client has left")->excludes("--serial");
}

}  // namespace

ParsedOptions ParseOptions(std::vector<std::string> arguments) {
  ParsedOptions parsed;
  Options options;
  CLI::App app(kAbout, "kesp-instrument");
  Describe(app, options);
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
