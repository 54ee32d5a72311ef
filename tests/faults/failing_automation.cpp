// How the functions of COM and of automation fail.
#include <objbase.h>
#include <oleauto.h>
#include <windows.h>

#include "tests/faults/functions.h"
#include "tests/faults/hook.h"

namespace kesp::faults {

void AddAutomationFunctions(std::vector<Import>& functions) {
  const std::vector<Way> no_memory = {{E_OUTOFMEMORY, ERROR_NOT_ENOUGH_MEMORY}};
  functions.push_back(Fails<&CoCreateGuid>("CoCreateGuid", {{RPC_S_UUID_NO_ADDRESS, 0}, {E_FAIL, 0}}));
  functions.push_back(Fails<&CoGetCurrentLogicalThreadId>("CoGetCurrentLogicalThreadId", no_memory));
  functions.push_back(Fails<&CreateErrorInfo>("CreateErrorInfo", no_memory));
  functions.push_back(Fails<&SetErrorInfo>("SetErrorInfo", no_memory));
  functions.push_back(Fails<&StringFromGUID2>("StringFromGUID2", {{0, 0}}));
  functions.push_back(Fails<&LoadTypeLibEx>(
      "LoadTypeLibEx", {{TYPE_E_CANTLOADLIBRARY, 0}, {E_OUTOFMEMORY, 0}, {TYPE_E_IOERROR, 0}}));
  functions.push_back(
      Fails<&SafeArrayAccessData>("SafeArrayAccessData", {{E_UNEXPECTED, 0}, {E_INVALIDARG, 0}}));
  functions.push_back(
      Fails<&SafeArrayUnaccessData>("SafeArrayUnaccessData", {{E_UNEXPECTED, 0}}).WorksAnyway());
  functions.push_back(Fails<&SafeArrayCreateVector>("SafeArrayCreateVector", {{0, ERROR_NOT_ENOUGH_MEMORY}}));
  functions.push_back(Fails<&SysAllocStringLen>("SysAllocStringLen", {{0, ERROR_NOT_ENOUGH_MEMORY}}));
  functions.push_back(Fails<&VariantChangeType>(
      "VariantChangeType", {{E_OUTOFMEMORY, 0}, {DISP_E_TYPEMISMATCH, 0}, {DISP_E_OVERFLOW, 0}}));
  functions.push_back(Fails<&VariantCopy>("VariantCopy", no_memory));
  functions.push_back(Fails<&VariantCopyInd>("VariantCopyInd", {{E_OUTOFMEMORY, 0}, {DISP_E_BADVARTYPE, 0}}));
}

}  // namespace kesp::faults
