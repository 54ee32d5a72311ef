// The user who answers as the test has written down.
#include "support/user_surface_fake.h"

#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <stdexcept>
#include <tuple>

namespace kesp {

bool operator==(const MessageBoxRequest& left, const MessageBoxRequest& right) {
  return std::tie(left.text, left.title, left.style, left.help_file, left.help_context) ==
         std::tie(right.text, right.title, right.style, right.help_file, right.help_context);
}

std::ostream& operator<<(std::ostream& out, const MessageBoxRequest& box) {
  return out << testing::PrintToString(box.title) << " " << testing::PrintToString(box.text) << " style "
             << box.style << " help " << testing::PrintToString(box.help_file) << " " << box.help_context;
}

MessageBoxRequest Remark(const std::wstring& title, const std::wstring& text) {
  return {text, title, 64, L"", 0};
}

MessageBoxRequest ErrorBox(const std::wstring& action, const std::wstring& failure) {
  return {L"An error occurred while attempting to " + action + L".\r\nError: " + failure,
          L"Kesp Communications Error", 16, L"", 0};
}

UserSurfaceFake::UserSurfaceFake() = default;

UserSurfaceFake::~UserSurfaceFake() = default;

int UserSurfaceFake::ShowMessageBox(const MessageBoxRequest& request) {
  CountCall();
  boxes_.push_back(request);
  pointer_under_boxes_.push_back(pointer_);
  if (on_box) on_box();
  if (answers_.empty()) return 1;
  const int answer = answers_.front();
  answers_.pop_front();
  return answer;
}

void UserSurfaceFake::SetHelpFile(const std::wstring& path) {
  CountCall();
  help_file_ = path;
}

bool UserSurfaceFake::CallHelp(std::uint32_t command, std::uint32_t data) {
  CountCall();
  if (help_failure) throw std::runtime_error("the help viewer fails");
  help_calls_.push_back({help_file_, command, data, pointer_});
  return help_answer;
}

std::optional<bool> UserSurfaceFake::CallOwnHelp(std::uint32_t topic) {
  CountCall();
  if (!help_file_.empty() || own_help_file.empty()) return std::nullopt;
  if (help_failure) throw std::runtime_error("the help viewer fails");
  help_calls_.push_back({own_help_file, 1, topic, pointer_});
  return help_answer;
}

wchar_t UserSurfaceFake::DecimalSeparator() {
  CountCall();
  ++separator_questions;
  return separator;
}

Boxes UserSurfaceFake::TakeBoxes() {
  Boxes since(boxes_.begin() + static_cast<std::ptrdiff_t>(taken_), boxes_.end());
  taken_ = boxes_.size();
  return since;
}

void UserSurfaceFake::CountCall() {
  if (faults.IsFailing()) throw std::bad_alloc();
}

void UserSurfaceFake::Answer(int button) {
  answers_.push_back(button);
}

}  // namespace kesp
