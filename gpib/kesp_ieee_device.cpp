// The IEEE-488 transport's device: opening and closing.
#include <cstdint>
#include <string>

#include "gpib/eos_character.h"
#include "gpib/kesp_ieee.h"
#include "support/error_numbers.h"
#include "support/failure.h"

namespace kesp {

namespace {

// Of everything that Initialize lets the driver do; closing carries it too, which is kept as it is.
constexpr wchar_t kDriverSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";
constexpr wchar_t kClosingSource[] = L"[CKespIEEE - Uninitialize()]";

// REOS of the driver's end-of-string modes: the byte in the low 8 bits ends a read.
constexpr std::int32_t kEndReadAtByte = 1024;

}  // namespace

// Runs what comes before a call of the driver; a failure of its own is logged as the call's would be.
template <typename Preparation>
void CKespIEEE::RunLogged(const wchar_t* call, const Preparation& preparation) {
  try {
    preparation();
  } catch (const Failure& failure) {
    log_.Write([&] { return L"Error " + std::wstring(call) + L"- " + failure.description(); });
    throw;
  }
}

bool CKespIEEE::Initialize() {
  log_.Write(L"Initialize()");
  CheckDeviceAddress(address_, [this](const wchar_t* line) { log_.Write(line); });
  log_.Write(L"Init Board...");
  initialized_ = InitializeIEEEBoard();
  log_.Write(L"Initialize() Done...");
  return true;
}

bool CKespIEEE::InitializeIEEEBoard() {
  log_.Write(L"InitializeIEEEBoard()...");
  try {
    OpenDevice();
    SetUpDevice();
  } catch (...) {
    // It does not count as open, so nobody else closes it.
    CloseQuietly();
    throw;
  }
  log_.Write(L"InitializeIEEEBoard() Done...");
  return true;
}

void CKespIEEE::OpenDevice() {
  log_.Write(L"ibdev()");
  RunLogged(L"ibdev()", [&] { driver_.Load(kDriverSource); });
  initialized_ = false;
  CloseQuietly();
  const GpibDriver::Device opened = driver_.ibdev(address_.board, address_.primary, address_.secondary,
                                                  static_cast<std::int32_t>(time_out_secs_));
  device_ = Low16(opened.descriptor);
  if (opened.descriptor != device_) {
    driver_.ibonl(opened.descriptor);
    device_ = -1;
    throw Failure(Overflow().number(), kDriverSource,
                  L"Overflow (the driver's descriptor " + std::to_wstring(opened.descriptor) + L")");
  }
  const bool failed = opened.status.Failed() || device_ < 0;
  // One that comes with a failure is to be closed, too, except 0, which is the board's own.
  device_online_ = !failed || device_ > 0;
  if (failed) FailOpening(opened.status, L"ibdev()", ieee_error::ERR_IBDEV);
}

void CKespIEEE::SetUpDevice() {
  if (clear_device_) {
    log_.Write(L"ibclr()");
    CheckOpening(driver_.ibclr(device_), L"ibclr()", ieee_error::ERR_IBCLR);
  }
  if (!set_eos_) return;
  log_.Write(L"ibeos()");
  std::int32_t mode = kEndReadAtByte;
  RunLogged(L"ibeos()", [&] { mode += EosByteOfFirstCharacter(eos_char_, kDriverSource); });
  CheckOpening(driver_.ibeos(device_, mode), L"ibeos()", ieee_error::ERR_IBEOS);
}

void CKespIEEE::CheckOpening(const GpibStatus& status, const wchar_t* call, std::int32_t number) {
  if (status.Failed()) FailOpening(status, call, number);
}

void CKespIEEE::FailOpening(const GpibStatus& status, const wchar_t* call, std::int32_t number) {
  log_.Write([&] { return L"Error " + std::wstring(call) + L"- " + status.ErrorText(); });
  throw Failure(number, kDriverSource, L"Error calling " + std::wstring(call) + L": " + status.ErrorText());
}

bool CKespIEEE::Uninitialize() {
  if (device_ < 0) throw Failure(ieee_error::ERR_INVALID_DEVICE, kClosingSource, L"Invalid device.");
  if (address_.board < 0) {
    throw Failure(ieee_error::ERR_INVALID_BOARD_INDEX, kClosingSource, L"Invalid board index.");
  }
  if (initialized_) {
    if (device_online_) Close(device_, L"device");
    device_online_ = false;
    Close(address_.board, L"board");
    initialized_ = false;
  }
  return true;
}

// Whatever comes of it.
void CKespIEEE::CloseQuietly() {
  if (device_online_) driver_.ibonl(device_);
  device_online_ = false;
}

void CKespIEEE::Close(std::int16_t descriptor, const wchar_t* what) {
  const GpibStatus status = driver_.ibonl(descriptor);
  if (!status.Failed()) return;
  throw Failure(ieee_error::ERR_IBONL, kDriverSource,
                L"Error calling ibonl() for " + std::wstring(what) + L": " + status.ErrorText());
}

}  // namespace kesp
