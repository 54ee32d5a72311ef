// An instrument through the library's communication object.
#pragma once

#include "KespCommObj.h"
#include "console/event_sink_win.h"
#include "console/library.h"
#include "console/transport_settings_win.h"

namespace kesp::console {

// Lives on the thread that made it, which is an apartment.
class InstrumentWin : public Instrument {
 public:
  InstrumentWin(ComPtr<_CKespCommObj> comm, const Address& address, const Tuning& tuning);

  std::string Query(const std::string& cmd) override;
  std::string QueryBinary(const std::string& cmd) override;
  void Update(const std::string& cmd) override;
  std::optional<std::string> Detect(DetectLevel level, const OnDetectionStep& on_step) override;
  Transfer Download(const std::string& cmd, const OnTransfer& on_transfer) override;
  bool Edit() override;
  Address address() override { return settings_->Read(); }
  void SetTimeout(int milliseconds) override { settings_->SetTimeout(milliseconds); }
  std::optional<std::chrono::milliseconds> waited() const override { return waited_; }

 private:
  // The transport in use.
  template <class Transport>
  ComPtr<Transport> InUse();
  // What the events of a query tell.
  struct Heard {
    std::int64_t arrived = 0;                  // bytes of the reply, over TCP/IP
    std::optional<ULONGLONG> reading_began{};  // at a COM port
  };
  // Notes it while the result lives; null on the GPIB.
  std::unique_ptr<EventConnection> Hear(Heard& heard);
  void NoteReceived(LibraryError& error, std::int64_t arrived, const ComText& reply) const;
  // Throws what the operation has left as its status, unless it returned True.
  void Judge(HRESULT result, VARIANT_BOOL succeeded);
  // Throws that failure of the port. One that was pulled out would stay open and fail for ever, so it is
  // closed, by choosing the transport again.
  [[noreturn]] void Forsake(const LibraryError& error);

  ComPtr<_CKespCommObj> comm_;
  Address asked_;  // as it was given
  std::unique_ptr<TransportSettings> settings_;
  std::string omega_;  // the address of an Omega controller, which goes with each command
  bool closes_after_failure_ = false;
  std::optional<std::chrono::milliseconds> waited_;
};

// Has the communication object write its trace into that file; nothing for an empty name. Throws
// std::runtime_error where it cannot be written.
void StartTrace(_CKespCommObj* comm, const std::string& file);

}  // namespace kesp::console
