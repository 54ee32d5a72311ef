// Exceptions to HRESULT, IErrorInfo and, by way of the dispatch, EXCEPINFO.
#include "server/error_bridge.h"

#include <wrl/client.h>

#include "server/text_bridge.h"
#include "support/failure.h"

namespace kesp {

using Microsoft::WRL::ComPtr;

namespace {

void SetErrorInformation(REFIID iid, const Failure& failure) {
  ComPtr<ICreateErrorInfo> creator;
  if (FAILED(CreateErrorInfo(&creator))) return;
  creator->SetGUID(iid);
  creator->SetSource(Bstr(failure.source()).get());
  creator->SetDescription(Bstr(failure.description()).get());
  ComPtr<IErrorInfo> info;
  if (SUCCEEDED(creator.As(&info))) SetErrorInfo(0, info.Get());
}

}  // namespace

HRESULT ResultOfNumber(long number) {
  if (number < 0) return number;
  return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number);
}

HRESULT ReportException(REFIID iid) noexcept {
  try {
    const Failure failure = CurrentFailure();
    SetErrorInformation(iid, failure);
    return ResultOfNumber(failure.number());
  } catch (...) {
    return FailWithoutInfo(E_OUTOFMEMORY);
  }
}

HRESULT ReportLateException(EXCEPINFO* exception) noexcept {
  try {
    const Failure failure = CurrentFailure();
    Bstr source(failure.source());
    Bstr description(failure.description());
    if (exception != nullptr) {
      *exception = EXCEPINFO{};
      exception->bstrSource = source.Detach();
      exception->bstrDescription = description.Detach();
      exception->scode = ResultOfNumber(failure.number());
    }
    return FailWithoutInfo(DISP_E_EXCEPTION);
  } catch (...) {
    return FailWithoutInfo(E_OUTOFMEMORY);
  }
}

HRESULT FailWithoutInfo(HRESULT result) noexcept {
  SetErrorInfo(0, nullptr);
  return result;
}

}  // namespace kesp
