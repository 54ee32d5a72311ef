// The class behind MakeSocketControl.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "network/host_lookup_win.h"
#include "network/message_window_win.h"
#include "network/notification_code.h"
#include "network/receive_buffer.h"
#include "network/send_queue.h"
#include "network/socket_control.h"
#include "network/socket_handle_win.h"
#include "network/winsock_library_win.h"

namespace kesp {

// Lets Winsock post a message for each thing that happens to the socket (WSAAsyncSelect) and works on it in
// the window procedure. A listener may call back into the control from any notification, also to close it and
// to connect it anew; the running number of the connection tells afterwards whether it did.
class WinsockControl final : public SocketControl, private MessageHandler {
 public:
  explicit WinsockControl(SocketListener& listener) : listener_(listener) {}

  EKespTCPState State() const override { return state_; }
  bool IsOfThisThread() const override {
    return resources_ == nullptr || resources_->window.IsOfThisThread();
  }
  EKespProtocol Protocol() const override { return protocol_; }
  void SetProtocol(EKespProtocol protocol) override;
  std::wstring RemoteHost() const override { return remote_host_; }
  std::int32_t RemotePort() const override { return remote_port_; }
  void Connect(const std::wstring& host, std::int32_t port) override;
  void Close() override;
  void SendData(std::string_view bytes) override;
  void DeliverDue() override;
  std::string_view PeekData() const override { return received_.Front(); }
  std::optional<DatagramSender> Sender() const override { return received_.FrontSender(); }
  std::string GetData() override { return received_.TakeFront(); }

 private:
  // What every connected control needs of the system.
  struct Resources {
    explicit Resources(MessageHandler& handler) : window(handler) {}
    WinsockLibrary library;
    MessageWindow window;
    HostLookup lookup;
  };

  // MessageHandler
  void OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
  std::shared_ptr<void> KeepAlive() override { return listener_.KeepAlive(); }

  void TakeResources();
  UINT Code(NotificationKind kind) const { return NotificationCode::For(kind, connection_); }
  // Each of these returns 0 or a Winsock error number.
  int Watch(long events);
  int Open(std::uint32_t address);
  int OpenStream();
  int OpenDatagrams();
  int SendDatagram(std::string_view bytes);
  int SendStream(std::string_view bytes);
  int SendUnsent();

  struct Taken {
    int error = 0;
    std::size_t count = 0;
  };
  Taken SendNow(std::string_view bytes);

  void OnHostLookup(const HostLookup::Result& result);
  void OnSocketEvent(int event, int error);
  void OnConnected(int error);
  void OnReadable();
  void OnDatagramReadable();
  void OnWritable();
  void OnPeerClosed(int error);
  void ReportSent();
  void ReportArrival();
  void Fail(int error);

  // What a receive call brought: bytes, an error number, or nothing.
  struct Receipt {
    bool has_bytes = false;
    int error = 0;
  };
  Receipt ReceiveOnce();

  SocketListener& listener_;
  EKespTCPState state_ = EKespTCPState::sckClosed;
  EKespProtocol protocol_ = EKespProtocol::sckTCPProtocol;
  std::wstring remote_host_;
  std::int32_t remote_port_ = 0;
  std::uint32_t remote_address_ = 0;  // in network byte order
  unsigned connection_ = 0;           // counts Connect and Close
  bool send_report_due_ = false;
  ReceiveBuffer received_;
  SendQueue send_queue_;
  std::unique_ptr<char[]> scratch_;
  std::unique_ptr<Resources> resources_;
  SocketHandle socket_;
};

}  // namespace kesp
