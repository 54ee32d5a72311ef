// The public classes of the library, as the tests expect them.
#pragma once

#include <array>
#include <ostream>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::clients {

struct PublicClass {
  const wchar_t* name;
  const CLSID& clsid;
  const IID& default_interface;
  const wchar_t* interface_name;
  const IID* events;  // null for none
  const wchar_t* events_name;

  bool is_creatable() const { return clsid != __uuidof(CKespSmartSwitch3); }
};

inline const std::array<PublicClass, 7> kPublicClasses = {{
    {L"CKespCommObj", __uuidof(CKespCommObj), __uuidof(_CKespCommObj), L"_CKespCommObj", nullptr, nullptr},
    {L"CKespCOMPort3", __uuidof(CKespCOMPort3), __uuidof(_CKespCOMPort3), L"_CKespCOMPort3",
     &__uuidof(__CKespCOMPort3), L"__CKespCOMPort3"},
    {L"CKespTCP", __uuidof(CKespTCP), __uuidof(_CKespTCP), L"_CKespTCP", &__uuidof(__CKespTCP),
     L"__CKespTCP"},
    {L"CKespIEEE", __uuidof(CKespIEEE), __uuidof(_CKespIEEE), L"_CKespIEEE", &__uuidof(__CKespIEEE),
     L"__CKespIEEE"},
    {L"CInstrument", __uuidof(CInstrument), __uuidof(_CInstrument), L"_CInstrument", nullptr, nullptr},
    {L"CInstruments", __uuidof(CInstruments), __uuidof(_CInstruments), L"_CInstruments", nullptr, nullptr},
    {L"CKespSmartSwitch3", __uuidof(CKespSmartSwitch3), __uuidof(_CKespSmartSwitch3), L"_CKespSmartSwitch3",
     nullptr, nullptr},
}};

// An object of the class; a port switch is taken from a serial transport.
ComPtr<IUnknown> MakeObject(const PublicClass& wanted);

void PrintTo(const PublicClass& one, std::ostream* out);

// For the names of parameterized cases.
std::string NarrowName(const PublicClass& one);

}  // namespace kesp::clients
