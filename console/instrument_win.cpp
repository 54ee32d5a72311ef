// Commands and replies through the communication object.
#include "console/instrument_win.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "console/box_catcher_win.h"
#include "console/detection_win.h"
#include "console/editing_win.h"
#include "console/error_names_win.h"
#include "console/hexadecimal.h"
#include "console/received_bytes_win.h"
#include "console/transfers_win.h"
#include "console/utf8_path.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

// Of the events of CKespTCP.
constexpr DISPID kDataArrivalBegin = 7;
// Of those of CKespCOMPort3.
constexpr DISPID kReadBegin = 8;
// How many of the last bytes of an unfinished reply a hint shows.
constexpr std::size_t kLastShown = 4;

// A value that the library fills in.
class ComValue {
 public:
  ComValue() { VariantInit(&value_); }
  ~ComValue() { VariantClear(&value_); }
  ComValue(const ComValue&) = delete;
  ComValue& operator=(const ComValue&) = delete;
  VARIANT* out() { return &value_; }

  // Of an array of bytes; nothing of anything else.
  std::string Bytes() const {
    if (V_VT(&value_) != (VT_ARRAY | VT_UI1)) return {};
    LONG last = -1;
    Check(SafeArrayGetUBound(V_ARRAY(&value_), 1, &last));
    void* data = nullptr;
    Check(SafeArrayAccessData(V_ARRAY(&value_), &data));
    std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(last + 1));
    SafeArrayUnaccessData(V_ARRAY(&value_));
    return bytes;
  }

 private:
  VARIANT value_;
};

std::unique_ptr<TransportSettings> Apply(_CKespCommObj* comm, const Address& address) {
  if (const auto* tcp = std::get_if<TcpAddress>(&address)) return ApplyTcp(comm, *tcp);
  if (const auto* gpib = std::get_if<GpibAddress>(&address)) return ApplyGpib(comm, *gpib);
  return ApplyCom(comm, std::get<ComAddress>(address));
}

}  // namespace

InstrumentWin::InstrumentWin(ComPtr<_CKespCommObj> comm, const Address& address, const Tuning& tuning)
    : comm_(std::move(comm)), asked_(address), settings_(Apply(comm_.Get(), address)) {
  if (tuning.timeout_ms) settings_->SetTimeout(*tuning.timeout_ms);
  if (tuning.gap_ms) Check(comm_->put_BinaryTimeoutms(*tuning.gap_ms));
  if (tuning.crlf_as_is) settings_->LeaveLineEnds();
  if (const auto* com = std::get_if<ComAddress>(&address)) {
    omega_ = com->line.omega.value_or("");
    closes_after_failure_ = tuning.keep_open;
    Write(comm_.Get(), &_CKespCommObj::put_AutoClose, !tuning.keep_open);
    Check(comm_->SetInputMode(imBinary));
  }
  StartTrace(comm_.Get(), tuning.trace);
}

std::string InstrumentWin::Query(const std::string& cmd) {
  ComText reply;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  Heard heard;
  const auto events = Hear(heard);
  settings_->Expect(TransportSettings::Reply::kText);
  const HRESULT result =
      comm_->Query(reply.out(), ComText(cmd).get(), ComText(omega_).get(), nullptr, &succeeded);
  // The library counts the timeout on the same counter.
  waited_.reset();
  if (heard.reading_began) waited_ = std::chrono::milliseconds(GetTickCount64() - *heard.reading_began);
  try {
    Judge(result, succeeded);
  } catch (LibraryError& error) {
    NoteReceived(error, heard.arrived, reply);
    throw;
  }
  return reply.str();
}

std::unique_ptr<EventConnection> InstrumentWin::Hear(Heard& heard) {
  if (std::holds_alternative<TcpAddress>(asked_))
    return std::make_unique<EventConnection>(InUse<_CKespTCP>().Get(), __uuidof(__CKespTCP),
                                             [&heard](DISPID event, EventArguments arguments) {
                                               if (event == kDataArrivalBegin)
                                                 heard.arrived = arguments.Number(0);
                                             });
  if (std::holds_alternative<ComAddress>(asked_))
    return std::make_unique<EventConnection>(InUse<_CKespCOMPort3>().Get(), __uuidof(__CKespCOMPort3),
                                             [&heard](DISPID event, EventArguments) {
                                               if (event == kReadBegin)
                                                 heard.reading_began = GetTickCount64();
                                             });
  return nullptr;
}

// At a COM port the library leaves what came in place of the reply.
void InstrumentWin::NoteReceived(LibraryError& error, std::int64_t arrived, const ComText& reply) const {
  if (std::holds_alternative<TcpAddress>(asked_)) error.received = arrived;
  if (!std::holds_alternative<ComAddress>(asked_)) return;
  const std::string bytes = ReceivedBytes({reply.get(), SysStringLen(reply.get())});
  error.received = static_cast<std::int64_t>(bytes.size());
  error.last_received = HexadecimalOf(bytes.substr(bytes.size() - std::min(bytes.size(), kLastShown)));
}

std::string InstrumentWin::QueryBinary(const std::string& cmd) {
  ComValue reply;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  settings_->Expect(TransportSettings::Reply::kBytes);
  Heard heard;
  const auto events = Hear(heard);
  waited_.reset();
  // A COM port that fails in the middle is told in a box, and not by the status.
  const BoxCatcher boxes;
  const HRESULT result =
      comm_->QueryBinary(reply.out(), ComText(cmd).get(), ComText(omega_).get(), nullptr, &succeeded);
  if (boxes.caught()) Forsake(*boxes.caught());
  try {
    Judge(result, succeeded);
  } catch (LibraryError& error) {
    // Bytes that came and did not fall silent in time lack no end character.
    if (heard.arrived == 0 || settings_->EndsBytes()) error.received = heard.arrived;
    throw;
  }
  return reply.Bytes();
}

void InstrumentWin::Update(const std::string& cmd) {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  waited_.reset();
  const HRESULT result = comm_->Update(ComText(cmd).get(), ComText(omega_).get(), nullptr, &succeeded);
  Judge(result, succeeded);
}

template <class Transport>
ComPtr<Transport> InstrumentWin::InUse() {
  ComPtr<IDispatch> object;
  Check(comm_->get_CommObject(&object));
  ComPtr<Transport> transport;
  Check(object.As(&transport));
  return transport;
}

std::optional<std::string> InstrumentWin::Detect(DetectLevel level, const OnDetectionStep& on_step) {
  if (std::holds_alternative<TcpAddress>(asked_)) return DetectAt(InUse<_CKespTCP>().Get(), level, on_step);
  if (const auto* gpib = std::get_if<GpibAddress>(&asked_))
    return DetectAt(InUse<_CKespIEEE>().Get(), gpib->primary, level, on_step);
  return DetectAt(InUse<_CKespCOMPort3>().Get(), omega_, level, on_step);
}

Transfer InstrumentWin::Download(const std::string& cmd, const OnTransfer& on_transfer) {
  return DownloadFrom(InUse<_CKespCOMPort3>().Get(), cmd, omega_, on_transfer);
}

bool InstrumentWin::Edit() {
  return EditSettings(comm_.Get());
}

void InstrumentWin::Judge(HRESULT result, VARIANT_BOOL succeeded) {
  Check(result);
  if (succeeded != VARIANT_FALSE) return;
  const ECommError status = Read(comm_.Get(), &_CKespCommObj::get_CommError);
  const LibraryError error(StatusName(status), Read(comm_.Get(), &_CKespCommObj::get_CommErrorSource),
                           Read(comm_.Get(), &_CKespCommObj::get_CommErrorDescr));
  // A reply that did not come, or was garbled, says nothing against the port.
  const bool is_of_the_reply = status == cfrTimeout || status == cfrInvalidData;
  if (is_of_the_reply) throw error;
  Forsake(error);
}

void InstrumentWin::Forsake(const LibraryError& error) {
  if (closes_after_failure_) Write(comm_.Get(), &_CKespCommObj::put_CommStyle, csRS232);
  throw LibraryError(error);
}

void StartTrace(_CKespCommObj* comm, const std::string& file) {
  if (file.empty()) return;
  const std::filesystem::path path = absolute(PathOf(file));
  // The library does not tell when it cannot write.
  if (!std::ofstream(path, std::ios::app)) throw std::runtime_error(file + " cannot be written");
  Write(comm, &_CKespCommObj::put_DebugFilename, ToUtf8(path.native()));
  Write(comm, &_CKespCommObj::put_Debugging, true);
}

}  // namespace kesp::console
