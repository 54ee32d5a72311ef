// The 16-bit view of the driver's cells and the messages of its error numbers.
#include "gpib/gpib_status.h"

namespace kesp {

std::int16_t Low16(std::int32_t cell) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(cell) & 0xFFFFU));
}

std::wstring GpibStatus::ErrorText() const {
  return L"Error: " + std::to_wstring(iberr) + L" - " + GpibErrorMessage(iberr);
}

std::wstring GpibErrorMessage(std::int16_t number) {
  switch (number) {
    case 0:
      return L"System error";
    case 1:
      return L"Function requires GPIB board to be CIC";
    case 2:
      return L"Write function detected no listeners";
    case 3:
      return L"Interface board not addressed correctly";
    case 4:
      return L"Invalid argument to function call";
    case 5:
      return L"Function requires GPIB board to be SAC";
    case 6:
      return L"I/O operation aborted";
    case 7:
      return L"Non-existent interface board";
    case 8:
      return L"DMA Error";
    case 10:
      return L"I/O operation started before previous operation completed";
    case 11:
      return L"No capability for intended operation";
    case 12:
      return L"File system operation error";
    case 14:
      return L"Command error during device call";
    case 15:
      return L"Serial poll status byte lost";
    case 16:
      return L"SRQ remains asserted";
    case 20:
      return L"The return buffer is full";
    case 21:
      return L"Address or board is locked";
    default:
      return L"Unknown Error";
  }
}

}  // namespace kesp
