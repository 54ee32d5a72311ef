// A second pair of eyes and hands: reads a message box of the thread under test and presses its buttons.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "dialog_user.h"

namespace kesp {

// Waits on a thread of its own for a box with that title, on the thread that made the reader; reads it, and
// has `act` do what a user would, which must end the box.
class BoxReader {
 public:
  using Act = std::function<void(HWND box)>;

  BoxReader(const std::wstring& title, Act act) {
    user_.emplace(title, [this, act = std::move(act)](DialogUser& user) {
      contents_ = ReadBox(user.window());
      act(user.window());
    });
  }

  // What was read; waits for the thread, so only after the box is gone. Fails the test when the box did not
  // come or did not go by itself.
  const BoxContents& Contents() {
    user_.reset();
    return contents_;
  }

 private:
  BoxContents contents_;
  std::optional<DialogUser> user_;
};

// An act: clicks the button of that number, as the mouse does.
inline BoxReader::Act Press(int button) {
  return [button](HWND box) { PostMessageW(GetDlgItem(box, button), BM_CLICK, 0, 0); };
}

}  // namespace kesp
