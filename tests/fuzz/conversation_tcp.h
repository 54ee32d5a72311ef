// A conversation with the network transport, and the model that knows what must come of each step.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "network/kesp_tcp.h"
#include "support/attempt.h"
#include "tests/fuzz/conversation_socket.h"

namespace kesp {

// The client, its handlers and the model of one CKespTCP. The model follows the socket and the events, not
// the transport: from them alone it says whether a reply is complete, whether the object counts as connected,
// when a wait is over and what a read returns.
class TcpConversation : private CKespTCPEvents, private SocketWatcher {
 public:
  explicit TcpConversation(FuzzInput& input);
  ~TcpConversation() override;

  void Run();

 private:
  enum class Member { kWriteLine, kReadLine, kReadLineBinary, kInitialize, kUninitialize, kAutoDetect };
  enum class Known { kNo, kYes, kUnknown };

  // One call of a member that has not returned yet.
  struct Call {
    Member member{};
    std::int64_t start_second = 0;
    std::int32_t gap_ms = 0;
    int pumpings = 0;
    int connects = 0;
    int closings = 0;
    int sendings = 0;
    bool socket_failed = false;
    bool closing_failed = false;
    bool discovers = false;
    bool interfered = false;  // by a handler
    std::optional<std::string> taken;
    bool strip = false;
    bool check = false;
  };

  // The client.
  void Act();
  void Answer();
  void WriteLine();
  void ReadLine();
  void ReadLineBinary();
  void Initialize();
  void Uninitialize();
  void AutoDetect();
  void ChangeSetting();
  void ChangeFlags();
  void QueryAtTheEnd();

  // The model.
  Attempt Do(Member member, std::int32_t gap_ms, Call& call, const std::function<bool()>& operation);
  void CheckWait(const Call& call) const;
  bool IsTimeOver(const Call& call) const;
  bool IsDiscovering() const;
  bool IsReplyComplete(const Call& call) const;
  // Whether the read was refused at once; then that was right.
  bool IsRefused(const Attempt& attempt, const Call& call, EKespTCPState state);
  void CheckReadFailure(const Attempt& attempt, const Call& call) const;
  void SettleAfterDetection(const Call& call, bool found, EKespProtocol protocol);
  void Judge();
  void Forget();
  void DoubtClosed();
  void Begin(const char* event);
  void End(const char* event);

  // SocketWatcher
  void Pumping() override;
  void Connecting() override;
  void Connected() override;
  void Failing() override;
  void Message() override { Act(); }
  void Closing(bool failed) override;
  void Sending(std::string_view bytes, bool failed) override;
  void Taken(const std::string& bytes) override;
  void Announcing() override;
  void Overran() override { overran_ = true; }

  // CKespTCPEvents
  void ConnectBegin() override;
  void ConnectEnd() override { End("Connect"); }
  void SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) override;
  void SendProgressEnd() override { End("SendProgress"); }
  void SendCompleteBegin() override { Begin("SendComplete"); }
  void SendCompleteEnd() override { End("SendComplete"); }
  void DataArrivalBegin(std::int32_t bytesTotal) override;
  void DataArrivalEnd() override { End("DataArrival"); }
  void ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                  const std::wstring& Source, const std::wstring& HelpFile, std::int32_t HelpContext,
                  bool& CancelDisplay) override;
  void ErrorEnd() override { End("Error"); }
  void CloseBegin() override { Begin("Close"); }
  void CloseEnd() override { End("Close"); }
  void AutoDetectUpdate(const std::wstring& cmd, const std::wstring& IPAddress, std::int16_t Port,
                        bool& Abort) override;
  void AutoDetectBegin() override;
  void AutoDetectEnd() override;
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, const std::wstring& IPAddress) override;
  std::shared_ptr<void> KeepAlive() override { return nullptr; }

  FuzzInput& input_;
  ConversationWorld world_;
  bool listens_;
  ConversationSocket* socket_ = nullptr;
  std::unique_ptr<CKespTCP> tcp_;
  std::vector<Call*> calls_;
  std::vector<const char*> open_events_;
  bool ready_ = false;
  bool ready_known_ = true;
  bool takes_datagram_ = false;
  bool calm_ = false;
  bool overran_ = false;
  Known connected_ = Known::kNo;
  std::int64_t last_arrival_ms_ = 0;
  std::wstring eos_ = L"\r";
  std::string command_;
  int actions_ = 0;
};

}  // namespace kesp
