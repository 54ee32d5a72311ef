// Making the objects of a world, and naming them.
#include "tests/variants/side.h"

#include <stdexcept>

#include "KespCommObj.h"
#include "tests/variants/variant_words.h"

namespace kesp::variants {

namespace {

template <class Interface>
ComPtr<Interface> Create(REFCLSID clsid) {
  ComPtr<Interface> object;
  if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf())))) {
    throw std::runtime_error("the library is not registered");
  }
  return object;
}

ComPtr<IDispatch> MakeObject(const PublicClass& one) {
  if (one.is_creatable) return Create<IDispatch>(one.clsid);
  // The one class whose objects are a part of others.
  ComPtr<_CKespSmartSwitch3> part;
  Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3))->get_SmartSwitch(&part);
  if (ClassNameOf(part.Get()) != one.name) throw std::runtime_error("a class whose objects nobody makes");
  return part;
}

// The key of an object, which differs from one to another; empty for objects that have none.
std::wstring KeyOf(IDispatch* object) {
  wchar_t text[] = L"GetKey";
  wchar_t* name = text;
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id))) return {};
  DISPPARAMS none{};
  clients::Value key;
  object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, key.get(), nullptr, nullptr);
  return key.text();
}

bool IsSame(IUnknown* one, IUnknown* other) {
  ComPtr<IUnknown> identity;
  ComPtr<IUnknown> other_identity;
  one->QueryInterface(IID_PPV_ARGS(identity.GetAddressOf()));
  other->QueryInterface(IID_PPV_ARGS(other_identity.GetAddressOf()));
  return identity == other_identity;
}

// Lets go of it.
bool IsHeldAfter(ComPtr<IDispatch>& last) {
  IDispatch* object = last.Get();
  object->AddRef();
  last.Reset();
  return object->Release() != 0;
}

std::wstring ItemsInWords(IEnumVARIANT* items, const Side& side) {
  std::wstring words = L"enumerator of";
  clients::Value item;
  while (items->Next(1, item.get(), nullptr) == S_OK) {
    words += L" " + InWords(*item.get(), side);
    item = clients::Value();
  }
  return words;
}

}  // namespace

Side::Side(const PublicClass& one, short port) : port_(port), object_(MakeObject(one)) {
  if (FAILED(
          object_->QueryInterface(one.default_interface, reinterpret_cast<void**>(dual_.GetAddressOf())))) {
    throw std::runtime_error("an object without its class's interface");
  }
  key_ = KeyOf(object_.Get());
}

CountedObject* Side::MakeCounted(const Manners& manners, VARIANT value) {
  return &counted_.emplace_back(manners, value);
}

IDispatch* Side::MakeInstrument() {
  return instruments_.emplace_back(Create<IDispatch>(__uuidof(CInstrument))).Get();
}

std::wstring Side::NameOf(IUnknown* object) const {
  if (object == nullptr) return L"nothing";
  for (std::size_t i = 0; i < counted_.size(); ++i) {
    if (object == static_cast<const IUnknown*>(&counted_[i])) return L"counted " + std::to_wstring(i);
  }
  for (std::size_t i = 0; i < instruments_.size(); ++i) {
    if (IsSame(object, instruments_[i].Get())) return L"instrument " + std::to_wstring(i);
  }
  if (object_ != nullptr && IsSame(object, object_.Get())) return L"the object itself";
  ComPtr<IEnumVARIANT> items;
  if (SUCCEEDED(object->QueryInterface(IID_PPV_ARGS(items.GetAddressOf()))))
    return ItemsInWords(items.Get(), *this);
  return L"another " + ClassNameOf(object);
}

std::wstring Side::Neutral(const std::wstring& text) const {
  if (!key_.empty() && text == key_) return L"(the key)";
  const std::wstring port = L"COM" + std::to_wstring(port_);
  if (const std::size_t at = text.find(port); port_ != kNoPort && at != std::wstring::npos)
    return text.substr(0, at) + L"(the port)" + text.substr(at + port.size());
  // The handle that the driver of the bus gave to this world's device.
  const std::size_t handle = text.find(L" on device ");
  const std::size_t end = text.find_first_not_of(L"0123456789", handle + 11);
  if (handle == std::wstring::npos || end == std::wstring::npos) return text;
  return text.substr(0, handle) + text.substr(end);
}

std::wstring Side::CountedInWords() const {
  std::wstring words;
  for (const CountedObject& one : counted_) words += one.record() + InWords(one.value(), *this) + L"; ";
  return words;
}

bool Side::ReleaseAll() {
  dual_.Reset();
  bool is_held = IsHeldAfter(object_);
  // A collection that held instruments is gone by now.
  for (ComPtr<IDispatch>& instrument : instruments_) is_held = IsHeldAfter(instrument) || is_held;
  for (const CountedObject& one : counted_) is_held = is_held || one.references() != 0;
  instruments_.clear();
  return is_held;
}

}  // namespace kesp::variants
