// A second pair of eyes and hands: reads a message box of another thread and presses its buttons.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>

#include "window_reading.h"

namespace kesp {

// Waits on a thread of its own for a box with that title, on the thread that made the reader; reads it, has
// `act` do what a user would, and waits for the box to go. Whatever goes wrong, the box is closed at the
// deadline, so that the thread under test goes on; in the last resort the program ends with a failure.
class BoxReader {
 public:
  using Act = std::function<void(HWND box)>;

  BoxReader(std::wstring title, Act act);
  ~BoxReader();
  BoxReader(const BoxReader&) = delete;
  BoxReader& operator=(const BoxReader&) = delete;

  // What was read; joins the thread, so only after the box is gone. Fails the test when the box did not come
  // or did not go by itself.
  const BoxContents& Contents();

 private:
  void Run();
  HWND Find() const;

  std::wstring title_;
  Act act_;
  DWORD watched_thread_;
  BoxContents contents_;
  bool found_ = false;
  bool went_ = false;
  std::thread thread_;
};

// An act: clicks the button of that number, as the mouse does.
BoxReader::Act Press(int button);

}  // namespace kesp
