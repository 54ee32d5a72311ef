// The user who answers as the test has written down.
#include "support/user_surface_fake.h"

#include <stdexcept>

namespace kesp {

UserSurfaceFake::UserSurfaceFake() = default;

UserSurfaceFake::~UserSurfaceFake() = default;

int UserSurfaceFake::ShowMessageBox(const MessageBoxRequest& request) {
  boxes_.push_back(request);
  pointer_under_boxes_.push_back(pointer_);
  if (on_box) on_box();
  if (answers_.empty()) return 1;
  const int answer = answers_.front();
  answers_.pop_front();
  return answer;
}

bool UserSurfaceFake::CallHelp(std::uint32_t command, std::uint32_t data) {
  if (help_failure) throw std::runtime_error("the help viewer fails");
  help_calls_.push_back({help_file_, command, data, pointer_});
  return help_answer;
}

wchar_t UserSurfaceFake::DecimalSeparator() {
  ++separator_questions;
  return separator;
}

void UserSurfaceFake::Answer(int button) {
  answers_.push_back(button);
}

}  // namespace kesp
