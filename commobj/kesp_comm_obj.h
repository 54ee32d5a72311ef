// The communication object: one facade over the three transports.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "commobj/exchange.h"
#include "commobj/transports.h"
#include "support/attempt.h"
#include "support/binary_value.h"
#include "support/diagnostic_log.h"
#include "support/enumerations.h"
#include "support/environment.h"
#include "support/failure.h"

namespace kesp {

// CKespCommObj owns one transport of each kind for its whole life, lets the client choose which one is in
// use, and does whole exchanges on it. Used by one thread.
//
// Misuse that the caller must fix is thrown (ERR_NO_COMM_OBJECT, ERR_COMM_STYLE_NOT_SUPPORTED). A transport's
// failure is not: the operation returns false and leaves CommError, CommErrorSource and CommErrorDescr.
class CKespCommObj {
 public:
  // Makes the transports: serial (with 300 to 57600 baud allowed and 57600 set), network, IEEE-488.
  CKespCommObj(Environment& environment, const TransportFactory& transports);

  // Releases the transports: serial, network, IEEE-488.
  ~CKespCommObj();
  CKespCommObj(const CKespCommObj&) = delete;
  CKespCommObj& operator=(const CKespCommObj&) = delete;

  // Whether the serial port is closed after each operation. True at first.
  bool AutoClose() const { return auto_close_; }
  void SetAutoClose(bool value) { auto_close_ = value; }

  // Milliseconds of silence that end a binary reply, 100 at first. Not range-checked.
  std::int32_t BinaryTimeoutms() const { return binary_timeout_ms_; }
  void SetBinaryTimeoutms(std::int32_t value) { binary_timeout_ms_ = value; }

  // Whether serial commands are preceded by a lone carriage return. False at first.
  bool CRBeforeCommand() const { return cr_before_command_; }
  void SetCRBeforeCommand(bool value) { cr_before_command_ = value; }

  // Path of the trace file: "commobjout.log" in the library's folder at first. Also becomes LogFilename of
  // the transports: serial, IEEE-488, network.
  const std::wstring& DebugFilename() const { return trace_.Filename(); }
  void SetDebugFilename(const std::wstring& value);

  // Whether the trace is written. False at first. Also becomes CreateLogFile of the transports: serial,
  // IEEE-488, network.
  bool Debugging() const { return trace_.IsOn(); }
  void SetDebugging(bool value);

  // The status of the last operation; source and description are empty after a success.
  ECommError CommError() const { return comm_error_; }
  const std::wstring& CommErrorSource() const { return comm_error_source_; }
  const std::wstring& CommErrorDescr() const { return comm_error_descr_; }

  // 10 hexadecimal digits and "K", different for each object.
  const std::wstring& GetKey() const { return key_; }

  // The transport in use, csRS232 at first. Setting it closes a serial port that an operation left open, in
  // every case. A value outside -1 to 2 throws ERR_COMM_STYLE_NOT_SUPPORTED and leaves the style as it was;
  // so does a port that fails while it is closed, with its own failure.
  ECommStyle CommStyle() const { return comm_style_; }
  void SetCommStyle(ECommStyle value);

  CKespCOMPort3& serial() const { return *serial_; }
  CKespTCP& network() const { return *network_; }
  CKespIEEE& ieee() const { return *ieee_; }

  // Sends cmd and reads the reply as text. True: the reply is in `result` and CommError is cfrSuccess. False:
  // CommError tells why; `result` is what the transport left there. The network connection and the IEEE-488
  // device are closed afterwards in every case, the serial port when AutoClose is set. A serial port that
  // another program holds is tried three times. Of an IEEE-488 reply the first 50 characters are read.
  // OmegaAddress and OmegaValue are for serial controllers that are addressed. Throws ERR_NO_COMM_OBJECT with
  // csNone.
  bool Query(std::wstring& result, const std::wstring& cmd, const std::wstring& OmegaAddress = {},
             const std::wstring& OmegaValue = {});

  // As Query, but the reply is left in `result` unfiltered: its bytes, or, from a serial port in the input
  // mode imText, text behind the text that is there. The serial port is opened anew and tried once. csIEEE
  // throws ERR_COMM_STYLE_NOT_SUPPORTED.
  bool QueryBinary(BinaryValue& result, const std::wstring& cmd, const std::wstring& OmegaAddress = {},
                   const std::wstring& OmegaValue = {});

  // Sends cmd and reads nothing. Status and errors as for Query.
  bool Update(const std::wstring& cmd, const std::wstring& OmegaAddress = {},
              const std::wstring& OmegaValue = {});

  // Looks for an instrument as the selected transport's AutoDetect does (csIEEE: from the first address on)
  // and returns what that returns; `result` is what it left there. The port, connection or device is closed
  // afterwards. A failure of the transport is shown in an error box and gives false. The status stays as it
  // is. Throws ERR_NO_COMM_OBJECT with csNone.
  bool DetectInstrument(std::wstring& result, EDetectLevel DetectLevel = EDetectLevel::dlAllCommands);

  // Sets how the serial port's input is read, imText or imBinary; other values and other styles change
  // nothing there. CommError is cfrOtherError afterwards in every case, until the next exchange. A failure is
  // shown in an error box. Throws ERR_NO_COMM_OBJECT with csNone, with the source of Update.
  void SetInputMode(EInputMode eMode);

  // Lets the user edit the settings of the selected transport as its Edit does, and returns what that
  // returns. csIEEE has no dialog: false at once. A serial port that an operation left open is closed. A
  // failure is shown in an error box and gives false. The status stays as it is. Throws ERR_NO_COMM_OBJECT
  // with csNone.
  bool Edit(EEditCommFlags Flags = {}, const std::wstring& HelpFile = {}, std::int32_t HCID = 0);

 private:
  // Throws ERR_NO_COMM_OBJECT with csNone.
  void RequireTransport(const wchar_t* source) const;
  static Failure StyleNotSupported(const wchar_t* source);

  bool DetectOnSerial(std::wstring& result, EDetectLevel level);
  bool DetectOnNetwork(std::wstring& result, EDetectLevel level);
  bool EditSerial(EEditCommFlags flags, const std::wstring& help_file, std::int32_t help_context);
  // Runs the exchange that describe returns, in the error trap.
  template <typename Describe>
  bool Run(const wchar_t* source, const wchar_t* trap_action, const Describe& describe);
  bool RunOnTransport(const Exchange& exchange);
  bool RunOnSerial(const Exchange& exchange);
  bool OpenSerialPort(const Exchange& exchange);
  bool ExchangeOnSerial(const Exchange& exchange);
  bool ReadFromSerial(const Exchange& exchange);
  void CloseSerialPort();
  bool RunOnNetwork(const Exchange& exchange);
  bool ExchangeOnNetwork(const Exchange& exchange);
  bool ReadFromNetwork(const Exchange& exchange);
  bool RunOnIeee(const Exchange& exchange);
  bool ExchangeOnIeee(const Exchange& exchange);
  bool ReadFromIeee(const Exchange& exchange);
  void BeginOperation();
  bool Succeed();
  // Stores the status and the failure's texts, traces the error-info line and returns false.
  bool Fail(ECommError status, const std::wstring& operation, const Attempt& attempt);
  void TraceErrorInfo(const wchar_t* operation, const Attempt& attempt) noexcept;

  Environment& environment_;
  DiagnosticLog trace_;
  ECommError comm_error_ = ECommError::cfrSuccess;
  ECommStyle comm_style_ = ECommStyle::csNone;
  std::wstring key_;
  bool auto_close_ = true;
  bool serial_port_open_ = false;  // opened by an operation and left open
  std::shared_ptr<CKespCOMPort3> serial_;
  std::shared_ptr<CKespTCP> network_;
  std::shared_ptr<CKespIEEE> ieee_;
  std::wstring comm_error_source_;
  std::wstring comm_error_descr_;
  bool cr_before_command_ = false;
  std::int32_t binary_timeout_ms_ = 100;
};

}  // namespace kesp
