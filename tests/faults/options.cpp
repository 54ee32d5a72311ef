// Reading and writing the command line.
#include "tests/faults/options.h"

#include <stdexcept>

namespace kesp::faults {

Options ReadOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    const auto next = [&]() -> const std::string& {
      if (i + 1 == arguments.size()) throw std::runtime_error(word + " wants a value");
      return arguments[++i];
    };
    const auto number = [&] { return static_cast<unsigned>(std::stoul(next())); };
    const auto signed_number = [&] { return std::stol(next()); };
    if (word == "--function") {
      options.function = next();
    } else if (word == "--nth") {
      options.nth = number();
    } else if (word == "--way") {
      options.way = number();
    } else if (word == "--most") {
      options.most = number();
    } else if (word == "--imports") {
      options.imports_only = true;
    } else if (word == "--replay") {
      options.replays = true;
    } else if (word == "--list") {
      options.lists = true;
    } else if (word == "--stacks") {
      options.tells_stacks = true;
    } else if (word == "--child") {
      options.child = next();
      options.after_index = signed_number();
      options.after_nth = signed_number();
      options.after_way = signed_number();
    } else if (word.starts_with("--")) {
      throw std::runtime_error("there is no option " + word);
    } else {
      options.scenarios.push_back(word);
    }
  }
  return options;
}

std::string ChildArguments(const Options& options, const std::string& scenario) {
  std::string text = " --child " + options.child + " " + std::to_string(options.after_index) + " " +
                     std::to_string(options.after_nth) + " " + std::to_string(options.after_way);
  if (options.function) text += " --function " + *options.function;
  if (options.nth) text += " --nth " + std::to_string(*options.nth);
  if (options.way) text += " --way " + std::to_string(*options.way);
  if (options.replays) text += " --replay";
  if (options.tells_stacks) text += " --stacks";
  return text + " --most " + std::to_string(options.most) + " " + scenario;
}

}  // namespace kesp::faults
