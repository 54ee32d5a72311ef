// The serial transport: settings, the port, lines in both directions, detection, and the radio modem.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "serial/com_port_dialog.h"
#include "serial/com_port_events.h"
#include "serial/radio_modem_settings.h"
#include "serial/serial_control.h"
#include "serial/smart_switch.h"
#include "serial/transmission.h"
#include "support/binary_value.h"
#include "support/diagnostic_log.h"
#include "support/enumerations.h"
#include "support/environment.h"
#include "support/failure.h"

namespace kesp {

// CKespCOMPort3 talks over one RS-232 line to the controller behind it. It owns its serial control and its
// port switch; it is used by one thread. Whoever calls a member keeps the object alive for the length of the
// call: the members raise events, and a handler may drop the last reference. Settings are plain values except
// where their setter says otherwise; a change reaches the port when it is opened the next time. A setter that
// throws (a Failure with a number of com_port_error) leaves every setting as it was.
//
// A new object allows no bit rate at all: widen the range first, in this order: MaxBaudRate, MinBaudRate, and
// then BaudRate.
class CKespCOMPort3 final : private SwitchLine {
 public:
  // The number of bytes that one reply or download may have, 64 MiB. The read that would take more fails with
  // OutOfMemory().
  static constexpr std::size_t kReplyLimit = std::size_t{64} * 1024 * 1024;

  // Makes the key, then the port switch, and gives every setting its default. `events` receives the object's
  // events, `dialog` is what Edit shows. Either may be null, the dialog where there is no screen; they must
  // outlive the object.
  CKespCOMPort3(Environment& environment, SerialPorts& ports, CKespCOMPort3Events* events = nullptr,
                ComPortDialog* dialog = nullptr);

  // Closes the port, and notes in the settings file that nobody knows where the radio modem on it points.
  ~CKespCOMPort3() override;
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
  bool CreateLogFile() const { return log_.IsOn(); }
  void SetCreateLogFile(bool value) { log_.Turn(value); }
  const std::wstring& LogFilename() const { return log_.Filename(); }
  void SetLogFilename(const std::wstring& value) { log_.SetFilename(value); }

  // The rate in bit/s as decimal text; "<unknown>" for brNone and for every value that names no rate.
  std::wstring BaudRateName(EKespBaudRate3 vData) const;

  // The settings as a serial control takes them: rate, parity letter (N, E, O, M, S), data bits and stop
  // bits, joined by commas, as in "9600,N,8,1". A value of Parity, DataBits or StopBits that has no name
  // counts as none, 8 and 1; a rate that has no name gives "<unknown>".
  std::wstring GetSettings() const;

  // 10 hexadecimal digits and "K", different for each object.
  const std::wstring& GetKey() const { return key_; }

  // Opens the port with the settings as they are now, selects the wanted port of the switch, wakes the
  // infrared adapter, and returns true. An open port is closed first, so this is the way to apply changed
  // settings. A failure of the port is thrown with its own number (380: settings refused, 8002: no such port,
  // 8005: in use, and the others of serial_control_errors.h) and its source in brackets behind this one's;
  // the port stays as the failure found it.
  bool OpenPort();

  // Does nothing when the port is closed. Otherwise releases the switch and closes the port, also when the
  // release fails, which is then thrown like a failure of OpenPort. A release that does not leave the port in
  // its time is no failure. Bytes that the port has taken are given the time that they need on the line, ten
  // seconds at the most, unless something was received since; it does not pump messages.
  void ClosePort();

  // Whether the machine has that port; whether it has it and it can be opened: nobody holds it, this object
  // included, and its device answers. A failure to find out is shown in the error box, and the answer is
  // false.
  bool PortExists(std::int16_t cp);
  bool IsPortAvailable(std::int16_t cp);

  // Discards every byte that waits in either direction. Throws the control's failure (8018 on a closed port).
  void ClearBuffers();

  // How ReadLineBinary hands its reply back, imText at first. Any other value is ignored.
  EInputMode InputMode() const { return input_mode_; }
  void SetInputMode(EInputMode eMode);

  // Sends the command in the frame of ControllerStyle (command_frame.h) and returns true when the port has
  // taken every byte; there is no limit to that wait, and it does not pump messages. With CRBeforeCmd a lone
  // carriage return goes first and whatever it brings within 50 ms of leaving is discarded. Raises
  // WriteBegin, WriteUpdate for each look at the output buffer (32767 stands for more), WriteEnd. Throws
  // ERR_ADDRESS_NOT_SPECIFIED (CS_OMEGA without an address), or a failure of the port as OpenPort does.
  bool WriteLine(const std::wstring& cmd = {}, const std::wstring& OmegaAddress = {},
                 const std::wstring& OmegaValue = {}, bool CRBeforeCmd = false);

  // Reads one reply into `result`, checks and strips it as set, and returns true. Does not pump messages. A
  // reply ends
  //   - with a CR, at once, when UseRFModem or UseRedirector is set;
  //   - with an LF, at once, when TerminateOnLF is set; with a CR only after TimeOut milliseconds then;
  //   - otherwise with TimeOut milliseconds of silence, or 100 when StripCRLF and CheckNonAscii are off, too.
  // A line that never falls silent is read until it ends, fails or exceeds kReplyLimit. Raises ReadBegin,
  // ReadUpdate, ReadTimeOut, ReadInvalidChars. Throws ERR_READ_TIMEOUT (`result` holds what came),
  // ERR_INVALID_CHARACTERS (a byte above 128; `result` holds the reply), or a failure of the port as OpenPort
  // does.
  bool ReadLine(std::wstring& result);

  // Reads a reply of any bytes, ended by lTimeoutms milliseconds of silence, and returns true: text behind
  // the text that is in `result` (imText), or the bytes (imBinary). Nothing is checked or stripped. Does not
  // pump messages. Raises ReadBegin, ReadUpdate (with 0 for text), ReadTimeOut. Throws ERR_READ_TIMEOUT when
  // nothing comes for TimeOut milliseconds (`result` unchanged). Any other failure is shown in the error box
  // and returns false; text that had come is in `result` then, too.
  bool ReadLineBinary(BinaryValue& result, std::int32_t lTimeoutms = 100);

  // Gathers text until the line has been silent for TimeOut milliseconds, and returns true. Looks at the line
  // twice a second while something comes and pumps messages all the time. Raises DownloadBegin,
  // DownloadUpdate (a handler that sets Abort ends it with false, `result` holding what came),
  // DownloadTimeOut, DownloadEnd. Throws ERR_DOWNLOAD_TIMEOUT when nothing comes. Any other failure is shown
  // in the error box and returns false.
  bool Download(std::wstring& result);

  // Looks for an instrument: tries the identification commands of DetectLevel at the present bit rate and
  // then at every other one from MaxBaudRate down to MinBaudRate, with 2000 ms for each. True: `Buffer` holds
  // the answer and BaudRate is the rate that worked. False: BaudRate is what it was, or, after an abort or a
  // port that failed, the rate that was being tried. With UseRFModem the modem is pointed at InstrAddr first
  // and only the present rate is tried. The port is closed afterwards; TimeOut and CheckNonAscii are as
  // before. Raises AutoDetectBegin, AutoDetectUpdate (a handler may set Abort), AutoDetectEnd, and the events
  // of writing and reading.
  bool AutoDetect(std::wstring& Buffer, EDetectLevel DetectLevel = EDetectLevel::dlAllCommands,
                  const std::wstring& OmegaAddress = {});

  // The radio modem's settings as they are in the modem. The port is opened for it and left open. False when
  // the modem does not answer (the argument is unchanged then). Holds the thread for a second and more
  // without pumping messages, as the next two do.
  bool RFReadModemSettings(RadioModemSettings& settings);

  // Sends settings to the radio modem: the network's identifier, the channel, the modem's own address, and
  // the time in milliseconds after which it leaves its command mode (rounded to a tenth of a second); with
  // bWriteToNVRAM it keeps them when it is switched off. The port must be open. True also when the modem did
  // not answer: read them back to be sure. False when the port fails or a number has no 32-bit form.
  bool RFWriteModemSettings(double dPANID, std::int16_t iChannel, double dModemAddress, double dTimeout,
                            bool bWriteToNVRAM = false);

  // Points the radio modem at the instrument with that address, unless the settings file says that it points
  // there. The port must be open. False when the modem does not answer or the port fails.
  bool RFWriteModemInstrAddress(std::int16_t iInstrAddr);

  // Opens the port, selects every port of the switch in turn, 200 ms each, and closes the port. A failure is
  // shown in the error box and ends the test at once; the port stays as it is then.
  void TestSmartSwitch();

  // Closes the port and lets the user edit the settings in a dialog, of which Flags (any combination of the
  // RS-232 ones; others mean nothing here) tells how much is shown. HelpFile, when not empty, becomes the
  // help file of the whole program, and stays it; HCID is the number of the topic in it that Help opens, 0
  // for none. True when the user confirmed; the new settings are then in place. False when he cancelled (what
  // the dialog changes at once stays changed), when there is no screen, and after a failure, which is shown
  // in the error box. The port is closed afterwards in every case; a failure of that is shown, too, and does
  // not change the answer.
  bool Edit(EEditCommFlags Flags = {}, const std::wstring& HelpFile = {}, std::int32_t HCID = 0);

 private:
  enum class ReadOutcome { kComplete, kTimeOut, kAborted };
  // What trying a command, or a rate, came to: an answer, nothing, characters that tell of a wrong rate, or a
  // reason to give up altogether.
  enum class Found { kAnswer, kNothing, kGarbage, kEnd };
  enum class SearchPhase { kPresentRate, kSweep };
  struct Detection {
    EDetectLevel level;
    std::wstring omega_address;
  };

  // SwitchLine
  void ClearLine() override { ClearBuffers(); }
  void WriteToLine(const std::string& bytes) override { Send(bytes); }
  void AwaitLine() override;
  void LogSwitch(const std::wstring& message) override;

  void ApplyPreset();
  void ConfigureControl();
  // Closes the control behind the last byte that the driver has taken.
  void CloseControl() noexcept;
  void AwaitEndOfTransmission();
  void NoteEnd(ReadOutcome outcome);
  void WakeInfraredAdapter();
  std::int32_t PortCode(std::int16_t cp, const wchar_t* question);

  // Hands the bytes to the port.
  void Send(const std::string& bytes);
  // Waits until the port has taken every byte; false when a second more than they need is over before that.
  bool AwaitOutput();
  void SendFrame(const std::string& frame, bool cr_before);
  void DrainOutput();

  // Takes what has come; `already` bytes count towards kReplyLimit.
  std::string TakeInput(std::size_t already);
  ReadOutcome CollectReply(std::string& reply);
  void RefuseInvalidCharacters(const std::string& reply);
  ReadOutcome CollectBinary(std::string& reply, EInputMode mode, std::int32_t silence_ms);
  ReadOutcome CollectDownload(std::string& data);

  bool Search(const Detection& detection, std::wstring& answer);
  Found TryRate(const Detection& detection, SearchPhase phase, std::wstring& answer);
  Found TryCommand(const Detection& detection, SearchPhase phase, const std::wstring& cmd,
                   std::wstring& answer);

  bool WithModemStyle(const std::function<bool()>& operation);
  bool InCommandMode(const std::function<void()>& conversation);
  void TellModem(const std::wstring& command);
  bool AwaitOk();
  std::wstring AskModem(const std::wstring& command);
  // Which instrument the modem on that port was last pointed at, and a note of that; -1 stands for unknown.
  std::wstring ModemTarget(std::int16_t port);
  void RememberModemTarget(std::int16_t port, const std::wstring& address);

  // Throws the failure anew with the member's source and the failure's own in brackets.
  [[noreturn]] static void FailIn(const wchar_t* member, const Failure& failure);
  void LogFailure(const wchar_t* member, const Failure& failure);

  // Writes a line to the diagnostic log, as DiagnosticLog::Write does, with the radio address where there is
  // one.
  template <typename MakeText>
  void Log(const MakeText& make_text) noexcept {
    log_.Write([&] { return WithRadioAddress(make_text()); });
  }
  void Log(const wchar_t* text) noexcept {
    Log([text] { return std::wstring(text); });
  }
  std::wstring WithRadioAddress(const std::wstring& message) const;

  // Raises an event when somebody listens. A handler may change every member, so nothing read before an event
  // is used after it.
  template <typename Event, typename... Arguments>
  void Raise(Event event, Arguments&&... arguments) {
    if (events_ != nullptr) (events_->*event)(std::forward<Arguments>(arguments)...);
  }

  Environment& environment_;
  SerialPorts& ports_;
  CKespCOMPort3Events* events_;
  ComPortDialog* dialog_;
  DiagnosticLog log_;
  std::wstring key_;
  std::shared_ptr<CKespSmartSwitch3> smart_switch_;
  std::unique_ptr<SerialControl> control_;
  Transmission transmission_;
  // How many bytes the driver held at the last look of the WriteLine that is under way; else 0.
  std::int32_t unsent_ = 0;
  EInputMode input_mode_ = EInputMode::imText;
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
  bool check_non_ascii_ = true;
  bool terminate_on_lf_ = true;
  std::int16_t instr_addr_ = 0;
  bool use_rf_modem_ = false;
  std::int32_t rf_modem_prop_hcid_ = 0;
  std::wstring modem_file_;  // the settings file that remembers where each port's radio modem points
};

}  // namespace kesp
