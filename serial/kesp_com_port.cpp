// The serial transport: creation, the rules of its settings, the settings text, and its end.
#include "serial/kesp_com_port.h"

#include "serial/baud_rate.h"
#include "support/error_numbers.h"
#include "support/failure.h"
#include "support/object_key.h"
#include "support/paths.h"

namespace kesp {

namespace {

constexpr std::int16_t kHighestPort = 256;

// The source of both ends of the range: MinBaudRate reports under the name of MaxBaudRate on purpose.
constexpr wchar_t kRangeSource[] = L"CKespCOMPort3 - MaxBaudRate";

Failure RateNotSupported(const wchar_t* source) {
  return {com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED, source, L"Baud rate not supported."};
}

const wchar_t* ParityLetter(EKespParity3 parity) {
  switch (parity) {
    case EKespParity3::PARITY_EVEN:
      return L"E";
    case EKespParity3::PARITY_ODD:
      return L"O";
    case EKespParity3::PARITY_MARK:
      return L"M";
    case EKespParity3::PARITY_SPACE:
      return L"S";
    default:
      return L"N";
  }
}

const wchar_t* DataBitsDigit(EKespDataBits3 data_bits) {
  switch (data_bits) {
    case EKespDataBits3::DATA_4BITS:
      return L"4";
    case EKespDataBits3::DATA_5BITS:
      return L"5";
    case EKespDataBits3::DATA_6BITS:
      return L"6";
    case EKespDataBits3::DATA_7BITS:
      return L"7";
    default:
      return L"8";
  }
}

const wchar_t* StopBitsNumber(EKespStopBits3 stop_bits) {
  switch (stop_bits) {
    case EKespStopBits3::STOP_1_5BITS:
      return L"1.5";
    case EKespStopBits3::STOP_2BITS:
      return L"2";
    default:
      return L"1";
  }
}

}  // namespace

CKespCOMPort3::CKespCOMPort3(Environment& environment, SerialPorts& ports, CKespCOMPort3Events* events,
                             ComPortDialog* dialog)
    : environment_(environment),
      ports_(ports),
      events_(events),
      dialog_(dialog),
      log_(environment.clock, environment.files, L"CKespCOMPort3.log"),
      key_(NewObjectKey(environment.guids)),
      smart_switch_(std::make_shared<CKespSmartSwitch3>()),
      control_(ports.MakeControl()),
      transmission_(environment.clock) {
  // Without a temporary folder nothing is remembered, and the modem is pointed anew each time.
  const std::wstring folder = environment.files.TemporaryFolder();
  if (!folder.empty()) modem_file_ = JoinPath(folder, L"RFModem.ini");
}

CKespCOMPort3::~CKespCOMPort3() {
  try {
    ClosePort();
  } catch (...) {
    // The port is closed all the same, and there is nobody left to tell.
  }
  try {
    RememberModemTarget(port_, L"-1");
  } catch (...) {
    // The next user of the modem may find it pointing elsewhere; likewise.
  }
}

void CKespCOMPort3::SetPort(std::int16_t value) {
  if (value < 1 || value > kHighestPort) {
    throw Failure(com_port_error::ERR_INVALID_COM_PORT, L"CKespCOMPort3 - Port", L"Invalid COM port.");
  }
  port_ = value;
}

void CKespCOMPort3::SetBaudRate(EKespBaudRate3 value) {
  if (value < min_baud_rate_ || value > max_baud_rate_) {
    throw RateNotSupported(L"CKespCOMPort3 - BaudRate");
  }
  baud_rate_ = value;
}

void CKespCOMPort3::SetMinBaudRate(EKespBaudRate3 value) {
  if (!IsBaudRate(value)) throw RateNotSupported(kRangeSource);
  if (value > max_baud_rate_) {
    throw Failure(com_port_error::ERR_INVALID_BAUD_RATE, kRangeSource,
                  L"Cannot set minimum baud rate higher than maximum baud rate.");
  }
  min_baud_rate_ = value;
}

void CKespCOMPort3::SetMaxBaudRate(EKespBaudRate3 value) {
  if (!IsBaudRate(value)) throw RateNotSupported(kRangeSource);
  if (value < min_baud_rate_) {
    throw Failure(com_port_error::ERR_INVALID_BAUD_RATE, kRangeSource,
                  L"Cannot set maximum baud rate lower than minimum baud rate.");
  }
  max_baud_rate_ = value;
}

void CKespCOMPort3::SetTimeOut(std::int32_t value) {
  if (value < 0) {
    // The brackets are part of the source text here and nowhere else among these setters.
    throw Failure(com_port_error::ERR_INVALID_TIMEOUT, L"[CKespCOMPort3 - TimeOut]",
                  L"Invalid timeout setting.");
  }
  time_out_ = value;
}

void CKespCOMPort3::SetControllerStyle(EKespControllerStyle3 value) {
  controller_style_ = value;
  ApplyPreset();
}

void CKespCOMPort3::ApplyPreset() {
  const bool omega = controller_style_ == EKespControllerStyle3::CS_OMEGA;
  parity_ = omega ? EKespParity3::PARITY_EVEN : EKespParity3::PARITY_NONE;
  data_bits_ = omega ? EKespDataBits3::DATA_7BITS : EKespDataBits3::DATA_8BITS;
  stop_bits_ = EKespStopBits3::STOP_1BIT;
  if (controller_style_ != EKespControllerStyle3::CS_PRECIDIA) return;
  check_non_ascii_ = true;
  // Past the setters, whose range check would depend on what was allowed before.
  baud_rate_ = min_baud_rate_ = max_baud_rate_ = EKespBaudRate3::br9600;
  strip_crlf_ = false;
  terminate_on_lf_ = false;
  time_out_ = 250;
}

// A member all the same: clients ask an object for it.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
std::wstring CKespCOMPort3::BaudRateName(EKespBaudRate3 vData) const {
  return kesp::BaudRateName(vData);
}

std::wstring CKespCOMPort3::GetSettings() const {
  std::wstring settings = BaudRateName(baud_rate_);
  settings.append(L",").append(ParityLetter(parity_));
  settings.append(L",").append(DataBitsDigit(data_bits_));
  settings.append(L",").append(StopBitsNumber(stop_bits_));
  return settings;
}

std::wstring CKespCOMPort3::WithRadioAddress(const std::wstring& message) const {
  return use_rf_modem_ ? message + L" (RF address " + std::to_wstring(instr_addr_) + L")" : message;
}

void CKespCOMPort3::FailIn(const wchar_t* member, const Failure& failure) {
  throw Failure(failure.number(),
                std::wstring(L"CKespCOMPort3 - ") + member + L" [" + failure.source() + L"]",
                failure.description());
}

void CKespCOMPort3::LogFailure(const wchar_t* member, const Failure& failure) {
  Log([&] {
    return std::wstring(L"** ") + member + L" error: " + NumberAndDescription(failure) + L" [" +
           failure.source() + L"] **";
  });
}

}  // namespace kesp
