// A user who answers as the test has written down, and whose screen can be read.
#pragma once

#include <deque>
#include <vector>

#include "support/user_surface.h"

namespace kesp {

class UserSurfaceFake final : public UserSurface {
 public:
  // Records the request; the next scripted answer, or 1 (OK) when there is none left.
  int ShowMessageBox(const MessageBoxRequest& request) override {
    boxes_.push_back(request);
    if (answers_.empty()) return 1;
    const int answer = answers_.front();
    answers_.pop_front();
    return answer;
  }

  void SetPointer(MousePointer pointer) noexcept override { pointer_ = pointer; }

  void Answer(int button) { answers_.push_back(button); }

  // Every box that was shown, in order.
  const std::vector<MessageBoxRequest>& boxes() const { return boxes_; }

  MousePointer pointer() const { return pointer_; }

 private:
  std::vector<MessageBoxRequest> boxes_;
  std::deque<int> answers_;
  MousePointer pointer_ = MousePointer::kDefault;
};

}  // namespace kesp
