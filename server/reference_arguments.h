// Makes a late-bound client's arguments fit parameters that are passed by reference.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "server/com_headers.h"
#include "server/result_object.h"
#include "server/type_info_cache.h"

namespace kesp {

// A copy of a call's arguments in which each reference parameter that the client passed as a script variable
// or as a plain value refers to a value of the parameter's own type, owned by this object. Arguments that fit
// are passed on as they are. An object that a client hands over for a result takes it in its member `value`,
// where it has one: JScript hands over values only, and has no other way to see a reply. Reading and writing
// that member may run any code of the client's.
// An optional argument that a variable leaves out is left out.
class ReferenceArguments {
 public:
  // False when the call can be made with the arguments as they are.
  static bool AreNeeded(const MemberCall& call, const DISPPARAMS& given);

  // Throws WrongVariable() for a typed variable that cannot hold the result.
  ReferenceArguments(const MemberCall& call, const DISPPARAMS& original);
  ReferenceArguments(const ReferenceArguments&) = delete;
  ReferenceArguments& operator=(const ReferenceArguments&) = delete;

  // S_OK, or why the call must not be made.
  HRESULT fit() const { return fit_; }
  // The argument that does not fit, or refused its result: its place in rgvarg.
  UINT bad_argument() const { return bad_argument_; }

  DISPPARAMS* arguments() { return &arguments_; }

  // Moves results into the script's variables, and into the members `value` of objects, that they are for.
  // What those held before is released. The variable that a property's value comes from stays as it is, and
  // so does an object when the call failed and brought it nothing. Fails when an object refuses its result.
  HRESULT WriteBack(bool call_succeeded);

 private:
  // A value that stands in for a client's argument.
  struct StandIn {
    explicit StandIn(const VARIANT* in_place_of) : argument(in_place_of) {}
    ~StandIn() { VariantClear(&value); }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    // What the call finds, to be compared afterwards.
    void Remember();
    bool HasChanged() const;

    VARIANT value{};
    const VARIANT* argument;
    VARIANT* variable = nullptr;  // the script's variable to write back to; null for none
    ResultObject object;          // the object to write back to, where there is one
    VARIANT before{};             // shallow, as its text may be gone
    std::wstring text_before;
  };

  // Says of the optional arguments that a variable leaves out what the automation library understands.
  void LeaveOut(const MemberCall& call, const DISPPARAMS& original);
  // Makes references of values that are passed beside named arguments. The automation library of Wine takes
  // the place of a result for that of another argument there, and would overwrite a value of the client's.
  void ProtectValues(const DISPPARAMS& original);
  HRESULT Prepare(VARIANT& argument, VARTYPE type);
  HRESULT PrepareAnyType(VARIANT& argument);
  static VARIANT* FindArgument(std::vector<VARIANT>& arguments, const DISPPARAMS& original, UINT position,
                               UINT arguments_of_call);

  bool is_put_;
  HRESULT fit_ = S_OK;
  UINT bad_argument_ = 0;
  DISPPARAMS arguments_;
  std::vector<VARIANT> copies_;                      // shallow: the client owns what they refer to
  std::vector<std::unique_ptr<StandIn>> stand_ins_;  // at fixed addresses, since arguments refer to them
};

}  // namespace kesp
