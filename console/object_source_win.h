// Where the library's objects come from: the DLL beside the program, or the one that is registered.
#pragma once

#include <windows.h>

#include "console/com_calls_win.h"

namespace kesp::console {

class ObjectSource {
 public:
  // Loads the DLL from the program's folder. Throws NoLibrary.
  static ObjectSource Beside();
  // Whatever the registry names.
  static ObjectSource Registered() { return ObjectSource(nullptr); }

  // Throws NoLibrary where the class cannot be had.
  template <class Interface>
  ComPtr<Interface> Create(REFCLSID clsid) const {
    ComPtr<Interface> object;
    Create(clsid, __uuidof(Interface), reinterpret_cast<void**>(object.GetAddressOf()));
    return object;
  }

 private:
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

  explicit ObjectSource(GetClassObject get_class_object) : get_class_object_(get_class_object) {}
  void Create(REFCLSID clsid, REFIID iid, void** object) const;

  GetClassObject get_class_object_;  // null: COM finds it
};

}  // namespace kesp::console
