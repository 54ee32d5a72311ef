// The classes that clients can create.
#pragma once

#include "server/com_headers.h"

namespace kesp {

struct CreatableClass {
  const CLSID& clsid;
  const wchar_t* name;         // the last part of the ProgID, "CKespTCP"
  const wchar_t* description;  // what the registry shows
  // Makes an object with one reference, as its IUnknown. Throws.
  IUnknown* (*create)();
};

// A range over the table.
const CreatableClass* begin_classes();
const CreatableClass* end_classes();

// The class, or null for an identifier that is not the library's or whose class clients cannot create.
const CreatableClass* FindClass(REFCLSID clsid);

}  // namespace kesp
