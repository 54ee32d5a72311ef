// Making an object of any public class.
#include "tests/clients/public_classes.h"

namespace kesp::clients {

ComPtr<IUnknown> MakeObject(const PublicClass& wanted) {
  if (wanted.is_creatable()) return Create<IUnknown>(wanted.clsid);
  ComPtr<_CKespSmartSwitch3> smart_switch;
  Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3))->get_SmartSwitch(&smart_switch);
  return smart_switch;
}

std::string NarrowName(const PublicClass& one) {
  const std::wstring name = one.name;
  return {name.begin(), name.end()};
}

void PrintTo(const PublicClass& one, std::ostream* out) {
  *out << NarrowName(one);
}

}  // namespace kesp::clients
