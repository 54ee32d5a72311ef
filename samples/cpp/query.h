// A query through the communication object, with its outcome and its trace file printed.
#pragma once

#include "kesp.h"

// In the temporary folder: the folder of the library itself may not be writable.
inline std::wstring TraceFile() {
  wchar_t folder[MAX_PATH] = L"";
  GetTempPathW(MAX_PATH, folder);
  return std::wstring(folder) + L"query-cpp.log";
}

inline ComPtr<_CKespCommObj> MakeCommObj() {
  ComPtr<_CKespCommObj> comm;
  Check(CoCreateInstance(__uuidof(CKespCommObj), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&comm)));
  return comm;
}

// Chooses a transport and gives its own interface. CommStyle is put by reference, so it needs a variable.
template <typename Transport>
ComPtr<Transport> Choose(_CKespCommObj* comm, ECommStyle style) {
  Check(comm->put_CommStyle(&style));
  ComPtr<IDispatch> transport;
  Check(comm->get_CommObject(&transport));
  ComPtr<Transport> chosen;
  Check(transport.As(&chosen));
  return chosen;
}

// Gives the exit code: 1 when there was no reply.
inline int Query(_CKespCommObj* comm, const std::wstring& cmd) {
  Check(comm->put_DebugFilename(Text(TraceFile()).get()));
  Check(comm->put_Debugging(VARIANT_TRUE));
  Text result;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  Check(comm->Query(result.out(), Text(cmd).get(), nullptr, nullptr, &succeeded));
  std::printf("command:     %ls\n", cmd.c_str());
  if (succeeded != VARIANT_FALSE) {
    std::wstring reply = result.c_str();
    // From the GPIB it comes with its line end.
    reply.erase(reply.find_last_not_of(L"\r\n") + 1);
    std::printf("reply:       %ls\n", reply.c_str());
  } else {
    Text source, description;
    Check(comm->get_CommErrorSource(source.out()));
    Check(comm->get_CommErrorDescr(description.out()));
    std::printf("source:      %ls\ndescription: %ls\n", source.c_str(), description.c_str());
  }
  ECommError status = cfrOtherError;
  Check(comm->get_CommError(&status));
  std::printf("status:      %d\ntrace file:  %ls\n", static_cast<int>(status), TraceFile().c_str());
  return succeeded != VARIANT_FALSE ? 0 : 1;
}
