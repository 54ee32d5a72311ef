// The arguments of one call, with everything that they refer to.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "tests/variants/random_source.h"
#include "tests/variants/side.h"

namespace kesp::variants {

// Owns the values. The callee may change what is passed by reference.
class ArgumentList {
 public:
  explicit ArgumentList(Side& side) : side_(side) {}
  ~ArgumentList();
  ArgumentList(const ArgumentList&) = delete;
  ArgumentList& operator=(const ArgumentList&) = delete;

  // The arguments and the identifiers of the named ones, as DISPPARAMS has them.
  std::vector<VARIANT> values;
  std::vector<DISPID> names;

  DISPPARAMS parameters();

  // A random value, which a parameter of that type would take, or any.
  VARIANT FittingValue(RandomSource& random, const Parameter& parameter);
  VARIANT AnyValue(RandomSource& random);

  // Replaces whatever would be converted to a number outside of these.
  void KeepWithin(long least, long limit);
  // Replaces whatever could lead out of the current folder as the name of a file.
  void KeepFileNamesHere();

  // Values and what they refer to, to be compared.
  std::wstring InWords() const;
  // The same of those that are passed by value, with what the callee must not change either.
  std::wstring ValuesInWords() const;

 private:
  void ReplaceWhere(VARTYPE type, const std::function<bool(const VARIANT&)>& is_harmful,
                    const std::function<VARIANT()>& harmless);
  VARIANT Plain(RandomSource& random, VARTYPE type);
  VARIANT Array(RandomSource& random);
  VARIANT Object(RandomSource& random);
  VARIANT Referring(RandomSource& random, VARIANT value);
  VARIANT VariableOf(VARIANT value);

  Side& side_;
  std::deque<VARIANT> cells_;
  std::vector<SAFEARRAY*> locked_;
};

}  // namespace kesp::variants
