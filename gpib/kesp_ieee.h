// The IEEE-488 transport: settings, the device on the bus, commands and replies, and the search for a device.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "gpib/device_address.h"
#include "gpib/gpib_driver.h"
#include "gpib/ieee_events.h"
#include "support/diagnostic_log.h"
#include "support/enumerations.h"
#include "support/environment.h"

namespace kesp {

// CKespIEEE talks to one device on the bus of one IEEE-488 board. It is used by one thread at a time. Whoever
// calls a member keeps the object alive for the length of the call: AutoDetect raises events, and a handler
// may drop the last reference. Settings are plain values except where their setter says otherwise. A setter
// that throws (a Failure with a number of ieee_error) leaves every setting as it was.
//
// The methods that reach for the driver throw, besides what they say, the failures of a driver that is not
// installed or not whole (BindGpibDriver); the next call tries again. The driver's calls block: none returns
// before the device has answered or the driver's time-out is over.
class CKespIEEE final {
 public:
  // `events` receives the object's events and may be null; it must outlive the object or be taken back with
  // SetEvents(nullptr).
  CKespIEEE(Environment& environment, GpibDriver& driver, CKespIEEEEvents* events = nullptr);

  // Closes the device if it is open.
  ~CKespIEEE();
  CKespIEEE(const CKespIEEE&) = delete;
  CKespIEEE& operator=(const CKespIEEE&) = delete;

  void SetEvents(CKespIEEEEvents* events) { events_ = events; }

  // Whether the device is cleared when it is opened. True at first.
  bool ClearDevice() const { return clear_device_; }
  void SetClearDevice(bool value) { clear_device_ = value; }

  // Whether opening the device tells the driver that the first character of EOSChar ends a read. True at
  // first.
  bool SetEOS() const { return set_eos_; }
  void SetSetEOS(bool value) { set_eos_ = value; }

  // The driver's time-out code, to3s at first; taken when the device is opened. Not checked. With toNone the
  // driver waits for ever.
  ETimeOutSecs TimeOutSecs() const { return time_out_secs_; }
  void SetTimeOutSecs(ETimeOutSecs value) { time_out_secs_ = value; }

  // The device's primary address, 1 to 30; 1 at first. Any other value throws ERR_INVALID_PRIMARY_ADDRESS.
  std::int16_t PrimaryAddress() const { return address_.primary; }
  void SetPrimaryAddress(std::int16_t value);

  // The device's secondary address, 1 to 30 as the driver is to get it (no offset is added), or 0 for none; 0
  // at first. Any other value throws ERR_INVALID_SECONDARY_ADDRESS.
  std::int16_t SecondaryAddress() const { return address_.secondary; }
  void SetSecondaryAddress(std::int16_t value);

  // The interface board: 0, the only one. Any other value throws ERR_INVALID_BOARD_INDEX.
  std::int16_t BoardIndex() const { return address_.board; }
  void SetBoardIndex(std::int16_t value);

  // The character that ends commands and reads, in two readings (eos_character.h): WriteLine takes the
  // decimal number in it ("10" is a line feed), Initialize with SetEOS the first character itself ("1").
  // Empty at first, with which neither works. Not checked.
  const std::wstring& EOSChar() const { return eos_char_; }
  void SetEOSChar(const std::wstring& value) { eos_char_ = value; }

  // 10 hexadecimal digits and "K", different for each object.
  const std::wstring& GetKey() const { return key_; }

  // The diagnostic log: off at first, its file "CKespIEEE.log". Not checked.
  bool CreateLogFile() const { return log_.IsOn(); }
  void SetCreateLogFile(bool value) { log_.Turn(value); }
  const std::wstring& LogFilename() const { return log_.Filename(); }
  void SetLogFilename(const std::wstring& value) { log_.SetFilename(value); }

  // Opens the device and returns true: takes it from the driver, clears it (ClearDevice) and sets the byte
  // that ends a read (SetEOS). A device that was open is closed first. Throws ERR_INVALID_BOARD_INDEX,
  // ERR_INVALID_PRIMARY_ADDRESS, ERR_INVALID_SECONDARY_ADDRESS, ERR_IBDEV, ERR_IBCLR, ERR_IBEOS, number 5
  // when SetEOS is set and EOSChar is empty, and number 6 when the driver's descriptor does not fit into 16
  // bits. After a failure no device is open.
  bool Initialize();

  // Closes the device and the board and returns true; does nothing when no device is open. Throws
  // ERR_INVALID_DEVICE when the last opening got no descriptor (ERR_IBDEV or number 6), and ERR_IBONL with
  // the source of Initialize's driver calls; the next call closes then what is not closed yet.
  bool Uninitialize();

  // Sends cmd and the character that EOSChar gives as a number, END with it, and returns true. Throws number
  // 13 or 5 for an EOSChar that is no such number, before anything is sent, and ERR_IBWRT.
  bool WriteLine(const std::wstring& cmd = {});

  // Reads up to 50 characters into `result` as they come, terminators included, and returns true; of a longer
  // reply the next call reads on. Throws ERR_IBRD; `result` holds what was received until then.
  bool ReadLine(std::wstring& result);

  // Looks for a device that answers one of "*IDN?", "*VER" and "t" (as many of them as DetectLevel says), at
  // the primary addresses 1 to 30, or with soFindNext behind the present one. Found: true, the answer is in
  // `result` and the address is the device's. Otherwise false, `result` is empty and the address as before.
  // In either case the device is closed and TimeOutSecs, to1s for the search, is as before. Raises
  // AutoDetectBegin, AutoDetectUpdate before each command and once before the first (a handler may set Abort,
  // which ends the search), and AutoDetectEnd. Throws as Initialize does, since a device that cannot be
  // opened is the board's or a setting's fault; address and TimeOutSecs are as before then, and the end was
  // raised.
  bool AutoDetect(std::wstring& result, EDetectLevel DetectLevel = EDetectLevel::dlAllCommands,
                  ESearchOption SearchOption = ESearchOption::soFindFirst);

 private:
  // Raises an event when somebody listens. A handler may change every member.
  template <typename Event, typename... Arguments>
  void Raise(Event event, Arguments&&... arguments) {
    if (events_ != nullptr) (events_->*event)(std::forward<Arguments>(arguments)...);
  }

  bool InitializeIEEEBoard();
  void OpenDevice();
  void SetUpDevice();
  void CloseQuietly();
  void Close(std::int16_t descriptor, const wchar_t* what);
  template <typename Preparation>
  void RunLogged(const wchar_t* call, const Preparation& preparation);
  void CheckOpening(const GpibStatus& status, const wchar_t* call, std::int32_t number);
  [[noreturn]] void FailOpening(const GpibStatus& status, const wchar_t* call, std::int32_t number);

  bool Search(std::span<const wchar_t* const> commands, ESearchOption option, std::wstring& result);
  enum class Found { kNothing, kAnswer, kAbort };
  Found TryAddress(std::span<const wchar_t* const> commands, std::int16_t address, std::wstring& result);
  bool IsAborted(const std::wstring& cmd, std::int16_t address);
  bool IsAnswered(const std::wstring& cmd, std::wstring& result);

  GpibDriver& driver_;
  CKespIEEEEvents* events_;
  DiagnosticLog log_;
  std::wstring key_;
  std::int16_t device_ = 0;  // the driver's descriptor
  DeviceAddress address_;
  bool initialized_ = false;
  bool device_online_ = false;  // the device is still to be closed
  ETimeOutSecs time_out_secs_ = ETimeOutSecs::to3s;
  bool clear_device_ = true;
  bool set_eos_ = true;
  std::wstring eos_char_;
};

}  // namespace kesp
