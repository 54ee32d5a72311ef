// A user who answers as the test has written down, and whose screen can be read.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "support/failing_call_fake.h"
#include "support/user_surface.h"

namespace kesp {

bool operator==(const MessageBoxRequest& left, const MessageBoxRequest& right);
std::ostream& operator<<(std::ostream& out, const MessageBoxRequest& box);

using Boxes = std::vector<MessageBoxRequest>;

// What a user is told when an entry cannot be accepted.
MessageBoxRequest Remark(const std::wstring& title, const std::wstring& text);
// What a user is told when an operation that is named as in "attempting to <action>" fails; failure is what
// follows "Error: ".
MessageBoxRequest ErrorBox(const std::wstring& action, const std::wstring& failure);

class UserSurfaceFake final : public UserSurface {
 public:
  UserSurfaceFake();
  ~UserSurfaceFake() override;

  // Records the request; the next scripted answer, or 1 (OK) when there is none left.
  int ShowMessageBox(const MessageBoxRequest& request) override;

  void SetPointer(MousePointer pointer) noexcept override { pointer_ = pointer; }

  void SetHelpFile(const std::wstring& path) override;
  bool CallHelp(std::uint32_t command, std::uint32_t data) override;
  std::optional<bool> CallOwnHelp(std::uint32_t topic) override;
  wchar_t DecimalSeparator() override;

  // A topic that was asked for, and the mouse pointer meanwhile.
  struct HelpCall {
    std::wstring file;
    std::uint32_t command;
    std::uint32_t data;
    MousePointer pointer;
    bool operator==(const HelpCall&) const = default;
  };

  // A failing call does nothing and throws std::bad_alloc.
  FailingCallFake faults;

  // Runs while a box is shown.
  std::function<void()> on_box;
  bool help_answer = true;
  bool help_failure = false;
  // The library's own help file; empty where it is missing.
  std::wstring own_help_file;
  wchar_t separator = L'.';
  int separator_questions = 0;

  void Answer(int button);

  // Every box that was shown, in order.
  const Boxes& boxes() const { return boxes_; }

  // The boxes since the last time that this was asked.
  Boxes TakeBoxes();

  MousePointer pointer() const { return pointer_; }

  // The mouse pointer under each box.
  const std::vector<MousePointer>& pointer_under_boxes() const { return pointer_under_boxes_; }

  const std::vector<HelpCall>& help_calls() const { return help_calls_; }
  const std::wstring& help_file() const { return help_file_; }

 private:
  void CountCall();

  Boxes boxes_;
  std::size_t taken_ = 0;
  std::deque<int> answers_;
  MousePointer pointer_ = MousePointer::kDefault;
  std::vector<MousePointer> pointer_under_boxes_;
  std::vector<HelpCall> help_calls_;
  std::wstring help_file_;
};

}  // namespace kesp
