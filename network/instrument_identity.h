// What an instrument's answer to "*IDN?" says about it.
#pragma once

#include <optional>
#include <string>

namespace kesp {

struct InstrumentIdentity {
  std::wstring model;
  std::wstring serial;
};

// The second and the third of the answer's fields, which are separated by "," and taken as they are, blanks
// included ("maker,model,serial,version" in SCPI), however long they are. Nothing when there are fewer than
// three.
std::optional<InstrumentIdentity> IdentityIn(const std::wstring& answer);

}  // namespace kesp
