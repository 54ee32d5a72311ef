// A broadcast, its answers, and one connection after the other.
#include "bench/bare_discovery.h"

#include <winsock2.h>

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

#include "bench/bare_socket.h"
#include "bench/measure.h"

namespace kesp::bench {

namespace {

constexpr std::uint16_t kDiscoveryPort = 30718;
constexpr std::uint16_t kInstrumentPort = 10001;
constexpr std::array<char, 4> kQuestion{0, 1, 0, '\xF6'};
constexpr DWORD kSilenceMs = 2000;
// The library's, too.
constexpr int kRoom = 1024 * 1024;
constexpr UINT kReadable = WM_APP;

void Check(bool succeeded, const char* what) {
  if (!succeeded)
    throw std::runtime_error(std::string(what) + " failed: " + std::to_string(WSAGetLastError()));
}

// A socket for the broadcast and its answers, and a window for those who want messages.
class BareDatagrams {
 public:
  explicit BareDatagrams(BareWait wait)
      : wait_(wait), socket_(socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP)), buffer_(65536, '\0') {
    Check(socket_ != INVALID_SOCKET, "socket");
    SetOption(SO_BROADCAST, TRUE);
    SetOption(SO_RCVBUF, kRoom);
    const sockaddr_in any = AddressOf(INADDR_ANY, 0);
    Check(bind(socket_, reinterpret_cast<const sockaddr*>(&any), sizeof any) == 0, "bind");
    if (wait_ == BareWait::kInReceive) {
      SetOption(SO_RCVTIMEO, kSilenceMs);
      return;
    }
    window_ = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    Check(window_ != nullptr, "CreateWindowEx");
    Check(WSAAsyncSelect(socket_, window_, kReadable, FD_READ) == 0, "WSAAsyncSelect");
  }
  ~BareDatagrams() {
    closesocket(socket_);
    if (window_ != nullptr) DestroyWindow(window_);
  }
  BareDatagrams(const BareDatagrams&) = delete;
  BareDatagrams& operator=(const BareDatagrams&) = delete;

  void Ask() const {
    const sockaddr_in everyone = AddressOf(INADDR_BROADCAST, kDiscoveryPort);
    Check(sendto(socket_, kQuestion.data(), static_cast<int>(kQuestion.size()), 0,
                 reinterpret_cast<const sockaddr*>(&everyone),
                 sizeof everyone) == static_cast<int>(kQuestion.size()),
          "sendto");
  }

  // The sender of the next answer; nothing when there was silence.
  std::optional<std::uint32_t> Receive() {
    if (wait_ == BareWait::kForMessages && !AwaitMessage()) return std::nullopt;
    sockaddr_in from{};
    int size = sizeof from;
    const int count = recvfrom(socket_, buffer_.data(), static_cast<int>(buffer_.size()), 0,
                               reinterpret_cast<sockaddr*>(&from), &size);
    if (count < 0 && WSAGetLastError() == WSAETIMEDOUT) return std::nullopt;
    Check(count > 0, "recvfrom");
    return ntohl(from.sin_addr.s_addr);
  }

 private:
  static sockaddr_in AddressOf(std::uint32_t address, std::uint16_t port) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    name.sin_addr.s_addr = htonl(address);
    return name;
  }

  template <class Value>
  void SetOption(int option, Value value) const {
    Check(setsockopt(socket_, SOL_SOCKET, option, reinterpret_cast<const char*>(&value), sizeof value) == 0,
          "setsockopt");
  }

  static bool AwaitMessage() {
    const DWORD start = GetTickCount();
    MSG message{};
    while (GetTickCount() - start < kSilenceMs) {
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        if (message.message == kReadable) return true;
        DispatchMessageW(&message);
      }
    }
    return false;
  }

  BareWait wait_;
  SOCKET socket_;
  HWND window_ = nullptr;
  std::string buffer_;
};

// Different senders, in the order of their first answers.
std::vector<std::uint32_t> Gather(const Senders& senders, BareWait wait, DiscoveryFigures& figures) {
  BareDatagrams datagrams(wait);
  std::unordered_set<std::uint32_t> known;
  std::vector<std::uint32_t> heard;
  double first = 0;
  std::size_t answers = 0;
  datagrams.Ask();
  while (answers < senders.Datagrams()) {
    const std::optional<std::uint32_t> sender = datagrams.Receive();
    if (!sender) break;
    if (++answers == 1) {
      Sleep(senders.pause_ms);
      first = MicrosecondsNow();
    }
    if (known.insert(*sender).second) heard.push_back(*sender);
    if (answers > 1) figures.receiving = (MicrosecondsNow() - first) / static_cast<double>(answers - 1);
  }
  return heard;
}

void AskForIdentity(std::uint32_t address) {
  in_addr name{};
  name.s_addr = htonl(address);
  BareSocket instrument(inet_ntoa(name), kInstrumentPort);
  instrument.Send("*IDN?\r");
  instrument.ReceiveLine();
}

}  // namespace

DiscoveryFigures DiscoverBare(const Senders& senders, BareWait wait) {
  DiscoveryFigures figures;
  figures.whole = Microseconds([&] {
    const std::vector<std::uint32_t> heard = Gather(senders, wait, figures);
    figures.heard = heard.size();
    const double time = Microseconds([&] {
      for (auto sender = heard.rbegin(); sender != heard.rend(); ++sender, ++figures.identified)
        AskForIdentity(*sender);
    });
    if (!heard.empty()) figures.asking = time / static_cast<double>(heard.size());
  });
  return figures;
}

}  // namespace kesp::bench
