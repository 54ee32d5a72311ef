// Statuses and errors by their names in the type library.
#include "console/error_names_win.h"

#include <array>
#include <cstdio>

namespace kesp::console {
namespace {

struct NamedError {
  long number;
  const char* name;
};

constexpr NamedError kErrors[] = {
    {ERR_SYSTEM_ERROR, "ERR_SYSTEM_ERROR"},
    {ERR_COMM_STYLE_NOT_SUPPORTED, "ERR_COMM_STYLE_NOT_SUPPORTED"},
    {ERR_NO_COMM_OBJECT, "ERR_NO_COMM_OBJECT"},
    {ERR_INVALID_COM_PORT, "ERR_INVALID_COM_PORT"},
    {ERR_ADDRESS_NOT_SPECIFIED, "ERR_ADDRESS_NOT_SPECIFIED"},
    {COMPORT3_ERR_INVALID_COM_PORT, "ERR_INVALID_COM_PORT"},
    {ERR_INVALID_TIMEOUT, "ERR_INVALID_TIMEOUT"},
    {ERR_INVALID_BAUD_RATE, "ERR_INVALID_BAUD_RATE"},
    {ERR_BAUD_RATE_NOT_SUPPORTED, "ERR_BAUD_RATE_NOT_SUPPORTED"},
    {COMPORT3_ERR_ADDRESS_NOT_SPECIFIED, "ERR_ADDRESS_NOT_SPECIFIED"},
    {ERR_READ_TIMEOUT, "ERR_READ_TIMEOUT"},
    {ERR_INVALID_CHARACTERS, "ERR_INVALID_CHARACTERS"},
    {ERR_DOWNLOAD_TIMEOUT, "ERR_DOWNLOAD_TIMEOUT"},
    {ERR_INVALID_PRIMARY_ADDRESS, "ERR_INVALID_PRIMARY_ADDRESS"},
    {ERR_INVALID_SECONDARY_ADDRESS, "ERR_INVALID_SECONDARY_ADDRESS"},
    {ERR_INVALID_BOARD_INDEX, "ERR_INVALID_BOARD_INDEX"},
    {ERR_INVALID_DEVICE, "ERR_INVALID_DEVICE"},
    {ERR_IBDEV, "ERR_IBDEV"},
    {ERR_IBCLR, "ERR_IBCLR"},
    {ERR_IBEOS, "ERR_IBEOS"},
    {ERR_IBWRT, "ERR_IBWRT"},
    {ERR_IBRD, "ERR_IBRD"},
    {ERR_IBONL, "ERR_IBONL"},
    {ERR_INVALID_IP_ADDRESS, "ERR_INVALID_IP_ADDRESS"},
    {ERR_INVALID_PORT, "ERR_INVALID_PORT"},
    {ERR_CONNECTING, "ERR_CONNECTING"},
    {ERR_CLOSING, "ERR_CLOSING"},
    {ERR_NOT_INITIALIZED, "ERR_NOT_INITIALIZED"},
    {ERR_SEND_DATA, "ERR_SEND_DATA"},
    {ERR_GET_DATA, "ERR_GET_DATA"},
    {ERR_TIMEOUT, "ERR_TIMEOUT"},
    {ERR_NO_CONNECTION, "ERR_NO_CONNECTION"},
    {ERR_TCP_INVALID_CHARACTERS, "ERR_TCP_INVALID_CHARACTERS"},
};

// From 0 on.
constexpr const char* kStatuses[] = {
    "cfrSuccess",
    "cfrInvalidSetting",
    "cfrWriteFailed",
    "cfrReadFailed",
    "cfrTimeout",
    "cfrInvalidData",
    "cfrOtherError",
    "cfrInvalidBoardIndex",
    "cfrInvalidPrimaryAddress",
    "cfrInvalidSecondaryAddress",
    "cfrInitializeFailed",
    "cfrInvalidIPAddress",
    "cfrInvalidPort",
    "cfrNoConnection",
};

}  // namespace

std::string StatusName(ECommError status) {
  const auto number = static_cast<std::size_t>(status);
  return number < std::size(kStatuses) ? kStatuses[number] : "CommError " + std::to_string(status);
}

std::string ErrorName(HRESULT result) {
  for (const NamedError& each : kErrors)
    if (each.number == result) return each.name;
  if (HRESULT_FACILITY(result) == FACILITY_CONTROL) return "error " + std::to_string(HRESULT_CODE(result));
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(result));
  return text.data();
}

}  // namespace kesp::console
