// The serial transport: its settings, their rules, and the settings text of the serial control.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "serial/smart_switch.h"
#include "support/enumerations.h"
#include "support/environment.h"

namespace kesp {

// CKespCOMPort3 describes one RS-232 line and the controller behind it. It owns its port switch; it is used
// by one thread. Settings are plain values except where their setter says otherwise. A setter that throws (a
// Failure with a number of com_port_error) leaves every setting as it was.
//
// A new object allows no bit rate at all: widen the range first, in this order: MaxBaudRate, MinBaudRate, and
// then BaudRate.
class CKespCOMPort3 final {
 public:
  // Makes the key, then the port switch, and gives every setting its default.
  explicit CKespCOMPort3(Environment& environment);
  CKespCOMPort3(const CKespCOMPort3&) = delete;
  CKespCOMPort3& operator=(const CKespCOMPort3&) = delete;

  // The number of the COM port, 1 to 256; 1 at first. Any other value throws ERR_INVALID_COM_PORT.
  std::int16_t Port() const { return port_; }
  void SetPort(std::int16_t value);

  // The bit rate of the line, brNone at first. A value below MinBaudRate or above MaxBaudRate throws
  // ERR_BAUD_RATE_NOT_SUPPORTED, also when the rate itself exists.
  EKespBaudRate3 BaudRate() const { return baud_rate_; }
  void SetBaudRate(EKespBaudRate3 value);

  // The lowest rate that BaudRate accepts and a detection tries, brNone at first. BaudRate is left as it is,
  // even when it comes to lie outside. Throws ERR_BAUD_RATE_NOT_SUPPORTED when the value is neither brNone
  // nor a rate, and ERR_INVALID_BAUD_RATE when it lies above MaxBaudRate; the source names MaxBaudRate in
  // both cases.
  EKespBaudRate3 MinBaudRate() const { return min_baud_rate_; }
  void SetMinBaudRate(EKespBaudRate3 value);

  // The highest rate that BaudRate accepts and a detection tries, brNone at first. BaudRate is left as it is,
  // even when it comes to lie outside. Throws ERR_BAUD_RATE_NOT_SUPPORTED when the value is neither brNone
  // nor a rate, and ERR_INVALID_BAUD_RATE when it lies below MinBaudRate.
  EKespBaudRate3 MaxBaudRate() const { return max_baud_rate_; }
  void SetMaxBaudRate(EKespBaudRate3 value);

  // How a character is framed on the line: 8 data bits, 1 stop bit, no parity at first. Not checked.
  EKespDataBits3 DataBits() const { return data_bits_; }
  void SetDataBits(EKespDataBits3 value) { data_bits_ = value; }
  EKespStopBits3 StopBits() const { return stop_bits_; }
  void SetStopBits(EKespStopBits3 value) { stop_bits_ = value; }
  EKespParity3 Parity() const { return parity_; }
  void SetParity(EKespParity3 value) { parity_ = value; }

  // The kind of controller on the line, CS_KESP at first; any value is stored. Setting it overwrites what was
  // set before: DataBits, StopBits and Parity with 7, 1, even for CS_OMEGA and 8, 1, none for every other
  // style; and for CS_PRECIDIA also CheckNonAscii (true), BaudRate, MinBaudRate and MaxBaudRate (br9600),
  // StripCRLF (false), TerminateOnLF (false) and TimeOut (250 ms). Another style set afterwards brings none
  // of those back.
  EKespControllerStyle3 ControllerStyle() const { return controller_style_; }
  void SetControllerStyle(EKespControllerStyle3 value);

  // Milliseconds that a read waits for its reply, 3000 at first; 0 is allowed. A negative value throws
  // ERR_INVALID_TIMEOUT.
  std::int32_t TimeOut() const { return time_out_; }
  void SetTimeOut(std::int32_t value);

  // Whether CR and LF are removed from replies. True at first.
  bool StripCRLF() const { return strip_crlf_; }
  void SetStripCRLF(bool value) { strip_crlf_ = value; }

  // Whether a line feed ends a reply. True at first.
  bool TerminateOnLF() const { return terminate_on_lf_; }
  void SetTerminateOnLF(bool value) { terminate_on_lf_ = value; }

  // Whether replies are checked for characters that are not allowed. True at first.
  bool CheckNonAscii() const { return check_non_ascii_; }
  void SetCheckNonAscii(bool value) { check_non_ascii_ = value; }

  // Whether a port switch sits on the line. False at first.
  bool UseSmartSwitch() const { return use_smart_switch_; }
  void SetUseSmartSwitch(bool value) { use_smart_switch_ = value; }

  // The object's own port switch, the same one for its whole life. It may outlive the object.
  const std::shared_ptr<CKespSmartSwitch3>& SmartSwitch() const { return smart_switch_; }

  // Whether an infrared adapter sits on the line. False at first.
  bool UseIRDongle() const { return use_ir_dongle_; }
  void SetUseIRDongle(bool value) { use_ir_dongle_ = value; }

  // Whether the port leads to a radio modem. False at first.
  bool UseRFModem() const { return use_rf_modem_; }
  void SetUseRFModem(bool value) { use_rf_modem_ = value; }

  // The address of the instrument behind a radio modem, 0 at first. Not checked.
  std::int16_t InstrAddr() const { return instr_addr_; }
  void SetInstrAddr(std::int16_t value) { instr_addr_ = value; }

  // The help context number of the radio modem's dialog, 0 (none) at first. Not checked.
  std::int32_t RFModemPropHCID() const { return rf_modem_prop_hcid_; }
  void SetRFModemPropHCID(std::int32_t value) { rf_modem_prop_hcid_ = value; }

  // Whether the port is that of a COM port redirector. False at first.
  bool UseRedirector() const { return use_redirector_; }
  void SetUseRedirector(bool value) { use_redirector_ = value; }

  // The diagnostic log: off at first, its file "CKespCOMPort3.log". Not checked.
  bool CreateLogFile() const { return create_log_file_; }
  void SetCreateLogFile(bool value) { create_log_file_ = value; }
  const std::wstring& LogFilename() const { return log_filename_; }
  void SetLogFilename(const std::wstring& value) { log_filename_ = value; }

  // The rate in bit/s as decimal text; "<unknown>" for brNone and for every value that names no rate.
  std::wstring BaudRateName(EKespBaudRate3 vData) const;

  // The settings as a serial control takes them: rate, parity letter (N, E, O, M, S), data bits and stop
  // bits, joined by commas, as in "9600,N,8,1". A value of Parity, DataBits or StopBits that has no name
  // counts as none, 8 and 1; a rate that has no name gives "<unknown>".
  std::wstring GetSettings() const;

  // 10 hexadecimal digits and "K", different for each object.
  const std::wstring& GetKey() const { return key_; }

 private:
  void ApplyPreset();

  std::wstring key_;
  std::shared_ptr<CKespSmartSwitch3> smart_switch_;
  EKespControllerStyle3 controller_style_ = EKespControllerStyle3::CS_KESP;
  EKespParity3 parity_ = EKespParity3::PARITY_NONE;
  EKespDataBits3 data_bits_ = EKespDataBits3::DATA_8BITS;
  EKespStopBits3 stop_bits_ = EKespStopBits3::STOP_1BIT;
  EKespBaudRate3 min_baud_rate_ = EKespBaudRate3::brNone;
  EKespBaudRate3 max_baud_rate_ = EKespBaudRate3::brNone;
  EKespBaudRate3 baud_rate_ = EKespBaudRate3::brNone;
  std::int16_t port_ = 1;
  std::int32_t time_out_ = 3000;
  bool strip_crlf_ = true;
  bool use_ir_dongle_ = false;
  bool use_smart_switch_ = false;
  bool use_redirector_ = false;
  bool create_log_file_ = false;
  bool check_non_ascii_ = true;
  bool terminate_on_lf_ = true;
  std::wstring log_filename_ = L"CKespCOMPort3.log";
  std::int16_t instr_addr_ = 0;
  bool use_rf_modem_ = false;
  std::int32_t rf_modem_prop_hcid_ = 0;
};

}  // namespace kesp
