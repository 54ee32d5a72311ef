// Makes a late-bound client's arguments fit parameters that are passed by reference.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "server/com_headers.h"
#include "server/type_info_cache.h"

namespace kesp {

// A copy of a call's arguments in which each reference parameter that the client passed as a script variable
// or as a plain value refers to a value of the parameter's own type, owned by this object. Arguments that fit
// are passed on as they are.
class ReferenceArguments {
 public:
  ReferenceArguments(const MemberCall& call, const DISPPARAMS& original);
  ~ReferenceArguments();
  ReferenceArguments(const ReferenceArguments&) = delete;
  ReferenceArguments& operator=(const ReferenceArguments&) = delete;

  DISPPARAMS* arguments() { return &arguments_; }

  // Moves the values into the script's variables they came from. What those held before is released.
  void WriteBack();

 private:
  // A value that stands in for a client's argument.
  struct StandIn {
    VARIANT value{};
    VARIANT* variable = nullptr;  // the script's variable to write back to; null for a plain value
  };

  void Prepare(VARIANT& argument, VARTYPE type);
  void PrepareAnyType(VARIANT& argument);
  static VARIANT* FindArgument(std::vector<VARIANT>& arguments, const DISPPARAMS& original, UINT position,
                               UINT arguments_of_call);
  static void ConvertIn(const VARIANT& source, VARTYPE type, VARIANT* value);

  DISPPARAMS arguments_;
  std::vector<VARIANT> copies_;                      // shallow: the client owns what they refer to
  std::vector<std::unique_ptr<StandIn>> stand_ins_;  // at fixed addresses, since arguments refer to them
};

}  // namespace kesp
