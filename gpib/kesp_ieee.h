// The IEEE-488 transport: its settings and their rules.
#pragma once

#include <cstdint>
#include <string>

#include "support/enumerations.h"
#include "support/environment.h"

namespace kesp {

// CKespIEEE describes one device on the bus of one IEEE-488 board. It is used by one thread. Settings are
// plain values except where their setter says otherwise. A setter that throws (a Failure with a number of
// ieee_error) leaves every setting as it was.
class CKespIEEE final {
 public:
  explicit CKespIEEE(Environment& environment);
  CKespIEEE(const CKespIEEE&) = delete;
  CKespIEEE& operator=(const CKespIEEE&) = delete;

  // Whether the device is cleared when it is opened. True at first.
  bool ClearDevice() const { return clear_device_; }
  void SetClearDevice(bool value) { clear_device_ = value; }

  // Whether opening the device tells the driver that the first character of EOSChar ends a read. True at
  // first.
  bool SetEOS() const { return set_eos_; }
  void SetSetEOS(bool value) { set_eos_ = value; }

  // The driver's time-out code, to3s at first. Not checked.
  ETimeOutSecs TimeOutSecs() const { return time_out_secs_; }
  void SetTimeOutSecs(ETimeOutSecs value) { time_out_secs_ = value; }

  // The device's primary address, 1 to 30; 1 at first. Any other value throws ERR_INVALID_PRIMARY_ADDRESS.
  std::int16_t PrimaryAddress() const { return primary_address_; }
  void SetPrimaryAddress(std::int16_t value);

  // The device's secondary address, 1 to 30 as the driver is to get it (no offset is added), or 0 for none; 0
  // at first. Any other value throws ERR_INVALID_SECONDARY_ADDRESS.
  std::int16_t SecondaryAddress() const { return secondary_address_; }
  void SetSecondaryAddress(std::int16_t value);

  // The interface board: 0, the only one. Any other value throws ERR_INVALID_BOARD_INDEX.
  std::int16_t BoardIndex() const { return board_index_; }
  void SetBoardIndex(std::int16_t value);

  // The decimal code of the character that ends a command, as text ("10" for a line feed); empty at first.
  // Not checked.
  const std::wstring& EOSChar() const { return eos_char_; }
  void SetEOSChar(const std::wstring& value) { eos_char_ = value; }

  // 10 hexadecimal digits and "K", different for each object.
  const std::wstring& GetKey() const { return key_; }

  // The diagnostic log: off at first, its file "CKespIEEE.log". Not checked.
  bool CreateLogFile() const { return create_log_file_; }
  void SetCreateLogFile(bool value) { create_log_file_ = value; }
  const std::wstring& LogFilename() const { return log_filename_; }
  void SetLogFilename(const std::wstring& value) { log_filename_ = value; }

 private:
  std::wstring key_;
  std::int16_t board_index_ = 0;
  std::int16_t primary_address_ = 1;
  std::int16_t secondary_address_ = 0;
  ETimeOutSecs time_out_secs_ = ETimeOutSecs::to3s;
  bool clear_device_ = true;
  bool set_eos_ = true;
  std::wstring eos_char_;
  bool create_log_file_ = false;
  std::wstring log_filename_ = L"CKespIEEE.log";
};

}  // namespace kesp
