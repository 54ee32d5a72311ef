// Starting and releasing the system's socket library.
#include "network/winsock_library_win.h"

#include <winsock2.h>

namespace kesp {

namespace {

int Start() {
  WSADATA data{};
  return WSAStartup(MAKEWORD(2, 2), &data);
}

}  // namespace

WinsockLibrary::WinsockLibrary() : error_(Start()) {}

WinsockLibrary::~WinsockLibrary() {
  if (error_ == 0) WSACleanup();
}

}  // namespace kesp
