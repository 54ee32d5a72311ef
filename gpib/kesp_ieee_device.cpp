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

bool CKespIEEE::Initialize() {
  Log(L"Initialize()");
  CheckDeviceAddress(address_, [this](const std::wstring& line) { Log(line); });
  Log(L"Init Board...");
  initialized_ = InitializeIEEEBoard();
  Log(L"Initialize() Done...");
  return true;
}

bool CKespIEEE::InitializeIEEEBoard() {
  Log(L"InitializeIEEEBoard()...");
  OpenDevice();
  try {
    SetUpDevice();
  } catch (...) {
    // Nobody could close it any more: it does not count as open.
    driver_.ibonl(device_);
    throw;
  }
  Log(L"InitializeIEEEBoard() Done...");
  return true;
}

void CKespIEEE::OpenDevice() {
  Log(L"ibdev()");
  try {
    driver_.Load(kDriverSource);
  } catch (const Failure& failure) {
    Log(L"Error ibdev()- " + failure.description());
    throw;
  }
  if (initialized_) {
    initialized_ = false;
    driver_.ibonl(device_);
  }
  const GpibDriver::Device opened = driver_.ibdev(address_.board, address_.primary, address_.secondary,
                                                  static_cast<std::int32_t>(time_out_secs_));
  device_ = Low16(opened.descriptor);
  CheckOpening(opened.status, L"ibdev()", ieee_error::ERR_IBDEV);
  if (device_ != opened.descriptor) {
    driver_.ibonl(opened.descriptor);
    device_ = -1;
    throw Failure(Overflow().number(), kDriverSource,
                  L"Overflow (the driver's descriptor " + std::to_wstring(opened.descriptor) + L")");
  }
}

void CKespIEEE::SetUpDevice() {
  if (clear_device_) {
    Log(L"ibclr()");
    CheckOpening(driver_.ibclr(device_), L"ibclr()", ieee_error::ERR_IBCLR);
  }
  if (!set_eos_) return;
  Log(L"ibeos()");
  const std::int32_t mode = kEndReadAtByte + EosByteOfFirstCharacter(eos_char_, kDriverSource);
  CheckOpening(driver_.ibeos(device_, mode), L"ibeos()", ieee_error::ERR_IBEOS);
}

void CKespIEEE::CheckOpening(const GpibStatus& status, const wchar_t* call, std::int32_t number) {
  if (!status.Failed()) return;
  Log(L"Error " + std::wstring(call) + L"- " + status.ErrorText());
  throw Failure(number, kDriverSource, L"Error calling " + std::wstring(call) + L": " + status.ErrorText());
}

bool CKespIEEE::Uninitialize() {
  if (device_ < 0) throw Failure(ieee_error::ERR_INVALID_DEVICE, kClosingSource, L"Invalid device.");
  if (address_.board < 0) {
    throw Failure(ieee_error::ERR_INVALID_BOARD_INDEX, kClosingSource, L"Invalid board index.");
  }
  if (initialized_) {
    Close(device_, L"device");
    Close(address_.board, L"board");
    initialized_ = false;
  }
  return true;
}

void CKespIEEE::Close(std::int16_t descriptor, const wchar_t* what) {
  const GpibStatus status = driver_.ibonl(descriptor);
  if (!status.Failed()) return;
  throw Failure(ieee_error::ERR_IBONL, kDriverSource,
                L"Error calling ibonl() for " + std::wstring(what) + L": " + status.ErrorText());
}

}  // namespace kesp
