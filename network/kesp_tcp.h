// The network transport: settings, connection, line input and output over one TCP connection, and detection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "network/address_index.h"
#include "network/eos_scanner.h"
#include "network/instrument.h"
#include "network/instruments.h"
#include "network/socket_control.h"
#include "network/tcp_dialog.h"
#include "network/tcp_events.h"
#include "support/binary_value.h"
#include "support/diagnostic_log.h"
#include "support/enumerations.h"
#include "support/environment.h"
#include "support/failure.h"
#include "support/timing.h"

namespace kesp {

// CKespTCP talks to one instrument at a time. It owns its socket control and the collection of discovered
// instruments; it is used by one thread. Members that need the socket's notifications throw
// RPC_E_WRONG_THREAD on a thread to which these do not come: Initialize, Uninitialize (while connected),
// WriteLine, the reads and AutoDetect. Whoever calls a member keeps the object alive for the length of the
// call: the members raise events, and a handler may drop the last reference. Settings are plain values except
// where their setter says otherwise. A setter or method that throws leaves the settings as they were.
class CKespTCP final : private SocketListener {
 public:
  // make_instrument makes the records of the instruments that are found. `events` receives the object's
  // events and may be null; it must outlive the object or be taken back with SetEvents(nullptr). `dialog` is
  // what Edit shows, null where there is no screen; it must outlive the object.
  CKespTCP(Environment& environment, const SocketControlFactory& make_socket,
           InstrumentFactory make_instrument, CKespTCPEvents* events = nullptr, TcpDialog* dialog = nullptr);
  ~CKespTCP() override;
  CKespTCP(const CKespTCP&) = delete;
  CKespTCP& operator=(const CKespTCP&) = delete;

  void SetEvents(CKespTCPEvents* events) { events_ = events; }

  // Whether text replies with a character above 128 are refused. True at first.
  bool CheckNonAscii() const { return check_non_ascii_; }
  void SetCheckNonAscii(bool value) { check_non_ascii_ = value; }

  // Whether a reply is complete when EOSChar has arrived; otherwise any arrival (text) or a quiet gap
  // (binary) completes it. True at first.
  bool TerminateOnEOS() const { return terminate_on_eos_; }
  void SetTerminateOnEOS(bool value) { terminate_on_eos_ = value; }

  // Whether CR and LF of text replies become blanks and the ends are trimmed. True at first.
  bool StripCRLF() const { return strip_crlf_; }
  void SetStripCRLF(bool value) { strip_crlf_ = value; }

  // Milliseconds that connecting, closing and reading may take, 3000 at first. Not range-checked. Counted in
  // whole calendar seconds: 3000 ends a wait after 3 to 4 seconds.
  std::int16_t TimeOutmSecs() const { return time_out_msecs_; }
  void SetTimeOutmSecs(std::int16_t value) { time_out_msecs_ = value; }

  // The text that ends a reply, a carriage return at first. An empty text never ends one. Commands end with a
  // carriage return whatever this says.
  const std::wstring& EOSChar() const { return eos_char_; }
  void SetEOSChar(const std::wstring& value);

  // 10 hexadecimal digits and "K", different for each object.
  const std::wstring& GetKey() const { return key_; }

  // The socket's state at this moment.
  EKespTCPState State() const { return socket_->State(); }

  // The TCP port, 0 at first. A value below 1 throws ERR_INVALID_PORT. Ports above 32767 cannot be set.
  std::int16_t Port() const { return port_; }
  void SetPort(std::int16_t value);

  // The instrument's address, "0.0.0.0" at first. An empty text throws ERR_INVALID_IP_ADDRESS; nothing else
  // is checked, so a host name is good too.
  const std::wstring& IPAddress() const { return ip_address_; }
  void SetIPAddress(const std::wstring& value);

  // The diagnostic log, off at first.
  bool CreateLogFile() const { return log_.IsOn(); }
  void SetCreateLogFile(bool value) { log_.Turn(value); }
  const std::wstring& LogFilename() const { return log_.Filename(); }
  void SetLogFilename(const std::wstring& value) { log_.SetFilename(value); }

  // The instruments found so far; the object's own collection, empty at first.
  const std::shared_ptr<CInstruments>& Devices() const { return devices_; }

  // The protocol of the next Initialize, sckTCPProtocol at first. It also decides how AutoDetect searches.
  EKespProtocol Protocol() const { return protocol_; }
  void SetProtocol(EKespProtocol value) { protocol_ = value; }

  // Whether the address is known (ipStatic, at first) or to be discovered; stored only.
  EIPType IPType() const { return ip_type_; }
  void SetIPType(EIPType value) { ip_type_ = value; }

  // Looks for instruments, each wait lasting 1000 ms as TimeOutmSecs counts them (1 to 2 seconds); returns
  // whether one was found. TimeOutmSecs, IPType and Protocol are afterwards what they were, also when it
  // throws.
  //
  // With the TCP protocol it connects to IPAddress and Port, as Initialize does (a connection that leads
  // elsewhere, or nowhere any more, is closed first), and tries the level's commands until one is answered.
  // True: `result` has the answer. Nothing answers, or a handler of AutoDetectUpdate sets Abort: `result` is
  // empty. The connection stays open in every case, and late answers may still come on it. No connection, or
  // one that was lost, is nothing found, and leaves the socket closed; throws ERR_INVALID_IP_ADDRESS and
  // ERR_INVALID_PORT.
  //
  // With the UDP protocol it sends one broadcast, adds everyone who answers it to Devices, unless his address
  // is there already or 4,096 items are, and connects to every item of Devices in turn, from the last to the
  // first, to ask for Model and Serial. An item that cannot be reached, does not answer, or gives fewer than
  // three fields keeps what it has. After ten minutes of that the others are not asked. Items that a handler
  // removes from Devices meanwhile are not asked. True: somebody answered the
  // broadcast; Port is 10001 then and IPAddress that of the item asked last. `result` is empty and no
  // connection open in every case. Throws ERR_TIMEOUT (the old connection did not close), ERR_CONNECTING and
  // ERR_SEND_DATA (the broadcast could not be sent).
  bool AutoDetect(std::wstring& result, EDetectLevel DetectLevel = EDetectLevel::dlAllCommands);

  // Connects to IPAddress and Port and returns true; at once when the object counts itself connected. Pumps
  // messages while it waits. Throws ERR_INVALID_IP_ADDRESS (empty or "0.0.0.0"), ERR_INVALID_PORT,
  // ERR_CONNECTING (the connection could not be started), ERR_TIMEOUT (not connected in time: four attempts
  // of TimeOutmSecs when the host does not answer at all, one otherwise; or the old connection did not
  // close). After a failure the socket stays as it is; the next Initialize closes it first.
  bool Initialize();

  // Closes the connection and returns true; also when there is none. Throws ERR_CLOSING.
  bool Uninitialize();

  // Sends cmd and a carriage return and pumps messages once; returns true. Forgets that an earlier reply was
  // complete. Throws ERR_NOT_INITIALIZED, ERR_NO_CONNECTION, ERR_SEND_DATA.
  bool WriteLine(const std::wstring& cmd = {});

  // Waits for a complete reply, pumping messages, takes everything received into `result` as text, checks and
  // strips it as set, and returns true. Throws ERR_NOT_INITIALIZED, ERR_NO_CONNECTION, ERR_TIMEOUT (`result`
  // is unchanged, a partial reply stays for the next read), ERR_GET_DATA (the instrument sent more than the
  // socket may hold), ERR_INVALID_CHARACTERS of the serial list (`result` holds the reply). With the UDP
  // protocol it waits for an answer to a broadcast, which is stored (see AutoDetect) and leaves `result`
  // empty; it returns true when TimeOutmSecs are over, too, `result` unchanged.
  bool ReadLine(std::wstring& result);

  // Waits for a reply, pumping messages, takes everything received into `result` as bytes and returns true.
  // With TerminateOnEOS false a reply is complete when nothing came for more than lTimeoutms milliseconds.
  // Throws as ReadLine does, except that nothing is checked or stripped.
  bool ReadLineBinary(BinaryValue& result, std::int32_t lTimeoutms = 100);

  // Lets the user edit the settings in a dialog; with ecfShowTCPExtendedTab among the Flags (others mean
  // nothing here) it shows its second page, too. HelpFile, when not empty, becomes the help file of the whole
  // program, and stays it; HCID is the number of the topic in it that Help opens, 0 for none. True when the
  // user confirmed; the new settings are then in place. False when he cancelled, when there is no screen, and
  // after a failure, which is shown in the error box. A connection stays as it is.
  bool Edit(EEditCommFlags Flags = {}, const std::wstring& HelpFile = {}, std::int32_t HCID = 0);

 private:
  // SocketListener
  void OnConnect() override;
  void OnClose() override;
  void OnError(SocketError& error) override;
  void OnDataArrival(std::int32_t bytes_total) override;
  void OnSendProgress(std::int32_t bytes_sent, std::int32_t bytes_remaining) override;
  void OnSendComplete() override;
  std::shared_ptr<void> KeepAlive() override;

  // Raises an event when somebody listens. A handler may change every member and the socket's state, so
  // nothing read before an event is used after it.
  template <typename Event, typename... Arguments>
  void Raise(Event event, Arguments&&... arguments) {
    if (events_ != nullptr) (events_->*event)(std::forward<Arguments>(arguments)...);
  }

  // "1.2.3.4:80", the peer as the socket knows it.
  std::wstring Peer() const;
  // "1.2.3.4 on port 80", the peer as it is set.
  std::wstring Target() const;

  // Throws when the notifications do not come to the calling thread: it would wait for them in vain.
  void CheckThread(const wchar_t* source) const;
  // Lets the socket's notifications and the client's own messages come in.
  void PumpOnce();
  void Disconnect();
  // Closes the socket and forgets what was known of the bytes that go with it.
  void CloseSocket();
  void CheckTarget();
  void CloseBeforeConnecting(const wchar_t* source);
  void StartConnecting();
  bool AwaitConnection();

  bool Probe(std::span<const wchar_t* const> commands, std::wstring& result);
  bool AskInTurn(std::span<const wchar_t* const> commands, std::wstring& result);
  bool IsConnectedToTarget() const;
  bool IsAborted(const std::wstring& cmd);
  bool IsAnswered(const std::wstring& cmd, std::wstring& result);

  bool Discover();
  bool UDPBroadcast();
  void GatherReplies();
  void TakeReply();
  void StoreDevice(const std::wstring& address);
  void IdentifyDevices();
  void Identify(Instrument& device);

  bool AwaitReply(const ElapsedSeconds& waited, const wchar_t* source);
  void CheckReadable(const wchar_t* source) const;
  void CheckOverrun(const wchar_t* source) const;
  bool IsQuietFor(std::int32_t milliseconds) const;
  void JudgeReply();
  // What the log tells of the data that was pending at an arrival.
  struct LoggedData {
    std::string beginning;
    std::size_t length = 0;
    std::optional<char> last;
  };
  static LoggedData BeginningOf(std::string_view data);
  void LogArrival(const LoggedData& data);
  std::string TakeData();
  void RefuseInvalidCharacters(const std::string& bytes, const std::wstring& text);

  Environment& environment_;
  CKespTCPEvents* events_;
  TcpDialog* dialog_;
  DiagnosticLog log_;
  std::wstring key_;
  std::unique_ptr<SocketControl> socket_;
  std::wstring ip_address_ = L"0.0.0.0";
  std::int16_t port_ = 0;
  std::wstring eos_char_ = L"\r";
  std::int16_t time_out_msecs_ = 3000;
  bool data_ready_ = false;
  bool strip_crlf_ = true;
  bool check_non_ascii_ = true;
  bool terminate_on_eos_ = true;
  InstrumentFactory make_instrument_;
  std::shared_ptr<CInstruments> devices_;
  AddressIndex device_addresses_;
  std::uint32_t replies_heard_ = 0;  // to all broadcasts
  EKespProtocol protocol_ = EKespProtocol::sckTCPProtocol;
  EIPType ip_type_ = EIPType::ipStatic;
  bool connected_ = false;
  std::int32_t last_arrival_tick_ = 0;
  EosScanner eos_scanner_{eos_char_};
  std::optional<std::wstring> overrun_description_;  // set when the socket dropped data for want of room
};

}  // namespace kesp
