// Reads a message box of another thread and presses its buttons.
#include "box_reader.h"

#include <gtest/gtest.h>

namespace kesp {

BoxReader::BoxReader(std::wstring title, Act act)
    : title_(std::move(title)),
      act_(std::move(act)),
      watched_thread_(GetCurrentThreadId()),
      thread_([this] { Run(); }) {}

BoxReader::~BoxReader() {
  if (thread_.joinable()) thread_.join();
}

const BoxContents& BoxReader::Contents() {
  if (thread_.joinable()) thread_.join();
  EXPECT_TRUE(found_) << "the box did not come";
  EXPECT_TRUE(went_) << "the box had to be closed by force";
  return contents_;
}

HWND BoxReader::Find() const {
  return FindDialog(title_, watched_thread_);
}

void BoxReader::Run() {
  HWND box = nullptr;
  found_ = WaitFor([&] { return (box = Find()) != nullptr; });
  if (found_) {
    contents_ = ReadBox(box);
    act_(box);
    went_ = WaitFor([box] { return IsWindow(box) == FALSE; });
  }
  if (!went_) CloseDialogs(watched_thread_);
}

BoxReader::Act Press(int button) {
  return [button](HWND box) { PostMessageW(GetDlgItem(box, button), BM_CLICK, 0, 0); };
}

}  // namespace kesp
