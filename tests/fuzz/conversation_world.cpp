// What the seams around a conversation check.
#include "tests/fuzz/conversation_world.h"

namespace kesp {

namespace {

constexpr std::string_view kDate = "17/05/2024 12:34:56\t";

// The message of a line of a log: date, TAB, tick count, TAB, message, CR, LF.
std::string_view MessageIn(std::string_view line) {
  Require(line.starts_with(kDate), "a line of a log begins with date and time");
  Require(line.ends_with("\r\n"), "a line of a log ends with CR and LF");
  line.remove_prefix(kDate.size());
  line.remove_suffix(2);
  const std::size_t end = line.find('\t');
  Require(end != std::string_view::npos && end > 0, "a line of a log has a tick count");
  const std::string_view tick = line.substr(0, end);
  Require(tick.find_first_not_of("0123456789", tick.front() == '-' ? 1 : 0) == std::string_view::npos,
          "the tick count of a log is a number");
  return line.substr(end + 1);
}

}  // namespace

bool ConversationFiles::Append(const std::wstring&, std::string_view bytes) {
  const std::string_view message = MessageIn(bytes);
  ++lines_;
  if (on_line) on_line(message);
  return appends;
}

int ConversationUser::ShowMessageBox(const MessageBoxRequest& request) {
  ++boxes;
  Require(request.title == L"Kesp Communications Error", "the title of the error box");
  Require(request.text.starts_with(L"An error occurred while attempting to "),
          "the beginning of the error box");
  Require(request.text.find(L".\r\nError: ") != std::wstring::npos, "the error box tells the error");
  return kOkAnswer;
}

}  // namespace kesp
