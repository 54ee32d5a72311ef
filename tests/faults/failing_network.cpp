// How Winsock's functions fail.
#include <winsock2.h>
#include <ws2tcpip.h>

#include "tests/faults/functions.h"
#include "tests/faults/hook.h"

namespace kesp::faults {

void AddNetworkFunctions(std::vector<Import>& functions) {
  const auto errors = [](std::vector<DWORD> codes) {
    std::vector<Way> ways;
    for (const DWORD code : codes) ways.push_back({SOCKET_ERROR, code});
    return ways;
  };
  // It returns its error.
  functions.push_back(Fails<&WSAStartup>("WSAStartup", {{WSASYSNOTREADY, 0}, {WSAEPROCLIM, 0}})
                          .Makes(Resource::kSockets)
                          .ZeroIsSuccess());
  functions.push_back(
      Fails<&WSACleanup>("WSACleanup", errors({WSAENETDOWN})).TakesBack(Resource::kSockets).ZeroIsSuccess());
  functions.push_back(
      Fails<&socket>("socket", errors({WSAEMFILE, WSAENOBUFS, WSAENETDOWN})).Makes(Resource::kSocket));
  functions.push_back(
      Fails<&closesocket>("closesocket", errors({WSAENETDOWN})).TakesBack(Resource::kSocket).ZeroIsSuccess());
  functions.push_back(Fails<&WSAAsyncSelect>("WSAAsyncSelect", errors({WSAENETDOWN, WSAEINVAL})));
  functions.push_back(Fails<&connect>(
      "connect", errors({WSAECONNREFUSED, WSAENETUNREACH, WSAENOBUFS, WSAEADDRNOTAVAIL, WSAETIMEDOUT})));
  functions.push_back(Fails<&bind>("bind", errors({WSAEADDRINUSE, WSAEACCES, WSAENOBUFS})));
  functions.push_back(Fails<&setsockopt>("setsockopt", errors({WSAENETDOWN, WSAENOPROTOOPT})));
  functions.push_back(Fails<&send>(
      "send", errors({WSAECONNRESET, WSAENOBUFS, WSAEWOULDBLOCK, WSAECONNABORTED, WSAENETDOWN})));
  functions.push_back(
      Fails<&sendto>("sendto", errors({WSAENETUNREACH, WSAENOBUFS, WSAEWOULDBLOCK, WSAEACCES})));
  functions.push_back(Fails<&recv>(
      "recv", errors({WSAECONNRESET, WSAEWOULDBLOCK, WSAENOBUFS, WSAECONNABORTED, WSAENETDOWN})));
  functions.push_back(
      Fails<&recvfrom>("recvfrom", errors({WSAECONNRESET, WSAEWOULDBLOCK, WSAEMSGSIZE, WSAENETDOWN})));
  functions.push_back(
      Fails<&WSAAsyncGetHostByName>("WSAAsyncGetHostByName", {{0, WSAENOBUFS}, {0, WSAENETDOWN}}));
  functions.push_back(
      Fails<&WSACancelAsyncRequest>("WSACancelAsyncRequest", errors({WSAEALREADY, WSAEINVAL})));
  functions.push_back(Fails<&InetPtonW>("InetPtonW", {{0, 0}, {-1, WSAEAFNOSUPPORT}}));
}

}  // namespace kesp::faults
