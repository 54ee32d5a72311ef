// The status that the reference gives to each failure of a transport, told by what the failure says.
#pragma once

#include <string>

#include "support/enumerations.h"

namespace kesp {

inline bool Has(const std::wstring& text, const wchar_t* part) {
  return text.find(part) != std::wstring::npos;
}

// The status that goes with what the network transport said.
inline ECommError NetworkStatus(const std::wstring& source, const std::wstring& description) {
  if (Has(source, L"Initialize()")) {
    if (description == L"Invalid IP Address") return ECommError::cfrInvalidIPAddress;
    return description == L"Invalid Port" ? ECommError::cfrInvalidPort : ECommError::cfrInitializeFailed;
  }
  // A failure to close the old connection comes from the socket itself.
  if (source == L"KespWinsock") return ECommError::cfrInitializeFailed;
  if (description == L"Socket not initialized") return ECommError::cfrInitializeFailed;
  if (description == L"Socket not connected") return ECommError::cfrNoConnection;
  if (Has(source, L"WriteLine()")) return ECommError::cfrWriteFailed;
  return description == L"Timeout" ? ECommError::cfrTimeout : ECommError::cfrReadFailed;
}

// The same for the serial transport; without a source, the modem or a failure that was shown.
inline bool IsSerialStatus(ECommError status, const std::wstring& source, const std::wstring& description) {
  if (source.empty()) return status == ECommError::cfrInvalidSetting || status == ECommError::cfrOtherError;
  if (Has(source, L"OpenPort()"))
    return status == ECommError::cfrTimeout || status == ECommError::cfrOtherError;
  if (Has(source, L"WriteLine()")) return status == ECommError::cfrWriteFailed;
  if (description.starts_with(L"Timeout waiting for instrument")) return status == ECommError::cfrTimeout;
  if (description.starts_with(L"Invalid characters received")) return status == ECommError::cfrInvalidData;
  return status == ECommError::cfrReadFailed;
}

inline ECommError IeeeStatus(const std::wstring& source) {
  if (Has(source, L"WriteLine()")) return ECommError::cfrWriteFailed;
  return Has(source, L"ReadLine()") ? ECommError::cfrReadFailed : ECommError::cfrInitializeFailed;
}

}  // namespace kesp
