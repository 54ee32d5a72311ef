// The use of the system's socket library for the length of an object's life.
#pragma once

namespace kesp {

class WinsockLibrary {
 public:
  // Starts version 2.2 of the library for this user of it.
  WinsockLibrary();
  ~WinsockLibrary();
  WinsockLibrary(const WinsockLibrary&) = delete;
  WinsockLibrary& operator=(const WinsockLibrary&) = delete;

  // 0, or the Winsock error number with which starting failed.
  int error() const { return error_; }

 private:
  int error_;
};

}  // namespace kesp
