// Creating each class, reading the type library, and connecting to events.
#include "console/library_health_win.h"

#include <objbase.h>
#include <ocidl.h>
#include <oleauto.h>
#include <wrl/client.h>

#include <functional>

#include "KespCommObj.h"
#include "console/com_calls_win.h"
#include "console/event_sink_win.h"
#include "console/public_classes_win.h"
#include "console/type_comparison_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

using Microsoft::WRL::ComPtr;
using Creation = std::function<HRESULT(REFCLSID clsid, IUnknown** object)>;
using ClassObjects = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

std::string Connect(const Creation& create) {
  ComPtr<IUnknown> tcp;
  if (const HRESULT result = create(__uuidof(::CKespTCP), &tcp); FAILED(result)) return ResultText(result);
  try {
    const EventConnection connection(tcp.Get(), __uuidof(::__CKespTCP), [](DISPID, const EventArguments&) {});
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

LibraryReport Examine(const Creation& create, const std::function<std::string()>& compare) {
  LibraryReport report;
  for (const PublicClass& each : PublicClassesWithIds()) {
    ComPtr<IUnknown> object;
    const HRESULT result = create(each.clsid, &object);
    report.classes.push_back({each.name, FAILED(result) ? ResultText(result) : ""});
  }
  report.type_library = {"type library", compare()};
  report.event = {"events of CKespTCP", Connect(create)};
  return report;
}

// The type library that an object of the library uses.
HRESULT UsedTypeLibrary(const Creation& create, ITypeLib** library) {
  ComPtr<IUnknown> object;
  ComPtr<IDispatch> dispatch;
  ComPtr<ITypeInfo> info;
  UINT index = 0;
  HRESULT result = create(__uuidof(::CKespCommObj), &object);
  if (SUCCEEDED(result)) result = object.As(&dispatch);
  if (SUCCEEDED(result)) result = dispatch->GetTypeInfo(0, LOCALE_NEUTRAL, &info);
  return SUCCEEDED(result) ? info->GetContainingTypeLib(library, &index) : result;
}

// A library of types that clients use, and that in the file.
std::string Compare(HRESULT used_result, ITypeLib* used, const std::string& path) {
  if (FAILED(used_result)) return ResultText(used_result);
  ComPtr<ITypeLib> own;
  const HRESULT result = LoadTypeLibEx(ToWide(path).c_str(), REGKIND_NONE, &own);
  return FAILED(result) ? "not in the file: " + ResultText(result) : DifferenceOf(used, own.Get());
}

// Windows puts "%1" where the name of the file belongs.
std::string LoadingText(DWORD error) {
  std::string text = SystemText(HRESULT_FROM_WIN32(error));
  if (const auto place = text.find("%1"); place != std::string::npos) text.replace(place, 2, "the file");
  return text + " (error " + std::to_string(error) + ")";
}

}  // namespace

LibraryReport ExamineLibrary(const std::string& path) {
  LibraryReport report;
  HMODULE module = LoadLibraryExW(ToWide(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (module == nullptr) {
    report.error = LoadingText(GetLastError());
    return report;
  }
  const FARPROC found = GetProcAddress(module, "DllGetClassObject");
  if (found == nullptr) {
    report.error = "it is no COM server";
    return report;
  }
  // The module stays loaded until the program ends.
  const auto class_objects = reinterpret_cast<ClassObjects>(reinterpret_cast<void*>(found));
  const Creation create = [class_objects](REFCLSID clsid, IUnknown** object) {
    ComPtr<IClassFactory> factory;
    const HRESULT result = class_objects(clsid, IID_PPV_ARGS(&factory));
    return FAILED(result) ? result
                          : factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(object));
  };
  return Examine(create, [&] {
    ComPtr<ITypeLib> used;
    const HRESULT result = UsedTypeLibrary(create, &used);
    return Compare(result, used.Get(), path);
  });
}

LibraryReport ExamineRegisteredLibrary(const std::string& path) {
  const Creation create = [](REFCLSID clsid, IUnknown** object) {
    return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                            reinterpret_cast<void**>(object));
  };
  return Examine(create, [&path] {
    ComPtr<ITypeLib> used;
    const HRESULT result = LoadRegTypeLib(LIBID_KespCommObj, 1, 0, LOCALE_NEUTRAL, &used);
    return Compare(result, used.Get(), path);
  });
}

}  // namespace kesp::console
