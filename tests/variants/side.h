// One of the two equal worlds in which a call is made: as the library makes it, and by the second opinion.
#pragma once

#include <deque>
#include <string>

#include "tests/variants/counted_object.h"
#include "tests/variants/type_members.h"

namespace kesp::variants {

inline constexpr short kNoPort = 0;

// The object of the library, and those of the client that calls it.
class Side {
 public:
  // With a COM port of its own that is there, or none. Throws std::runtime_error when there is no object of
  // that class.
  Side(const PublicClass& one, short port);

  IDispatch* object() const { return object_.Get(); }
  // The class's own interface, as the vtable has it.
  IDispatch* dual() const { return dual_.Get(); }

  // A new object of the client's, without a reference. It lives as long as this.
  CountedObject* MakeCounted(const Manners& manners, VARIANT value);
  // A further object of the library, kept as long as this.
  IDispatch* MakeInstrument();

  // Who that is, in words that are the same in both worlds.
  std::wstring NameOf(IUnknown* object) const;
  short port() const { return port_; }
  // The text, with what is this world's own taken out.
  std::wstring Neutral(const std::wstring& text) const;

  // The records and values of the client's objects.
  std::wstring CountedInWords() const;
  // Lets go of the library's objects. Whether somebody else still holds one of them, or one of the client's.
  bool ReleaseAll();

 private:
  const short port_;
  ComPtr<IDispatch> object_;
  ComPtr<IDispatch> dual_;
  std::wstring key_;
  std::deque<CountedObject> counted_;
  std::deque<ComPtr<IDispatch>> instruments_;
};

}  // namespace kesp::variants
