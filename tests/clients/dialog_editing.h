// Edit of whichever object a test is about, called in either way of binding while somebody sits at the
// screen.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/late_object.h"
#include "tests/win/dialog_user.h"

namespace kesp::clients {

// Whose Edit it is, and how it is called.
enum class EditCall { kTransportEarly, kTransportLate, kFacadeEarly, kFacadeLate };

inline bool IsOfFacade(EditCall call) {
  return call == EditCall::kFacadeEarly || call == EditCall::kFacadeLate;
}

inline std::string EditCallName(const testing::TestParamInfo<EditCall>& info) {
  return std::string(IsOfFacade(info.param) ? "OfAFacade" : "OfTheClient") +
         (info.param == EditCall::kTransportLate || info.param == EditCall::kFacadeLate ? "Late" : "Early");
}

// What Edit is given.
struct EditArguments {
  long flags = 0;
  std::wstring help_file = {};
  long help_context = 0;
};

// Calls Edit through the vtable; the answer.
template <class Interface>
bool EditEarly(const ComPtr<Interface>& object, const EditArguments& given = {}) {
  VARIANT_BOOL answer = 5;
  EXPECT_EQ(RefusalOf(object->Edit(static_cast<EEditCommFlags>(given.flags), Text(given.help_file).get(),
                                   given.help_context, &answer)),
            Refusal{});
  EXPECT_TRUE(answer == VARIANT_TRUE || answer == VARIANT_FALSE);
  return answer == VARIANT_TRUE;
}

// Calls Edit by its name; the answer.
inline bool EditLate(const ComPtr<IDispatch>& object, const EditArguments& given = {}) {
  const Value flags(given.flags);
  const Value help_file(given.help_file.c_str());
  const Value help_context(given.help_context);
  const Outcome outcome =
      LateObject(object).Call(L"Edit", {Plain(flags), Plain(help_file), Plain(help_context)});
  EXPECT_EQ(outcome.result, S_OK);
  EXPECT_EQ(outcome.value.type(), VT_BOOL);
  return outcome.IsTrue();
}

// A communication object, its transport of that kind, and Edit of one of them.
template <class Transport>
struct EditedObject {
  ComPtr<_CKespCommObj> comm;
  ComPtr<Transport> transport;

  bool Edit(EditCall call, const EditArguments& given = {}) const {
    switch (call) {
      case EditCall::kTransportEarly:
        return EditEarly(transport, given);
      case EditCall::kTransportLate:
        return EditLate(transport, given);
      case EditCall::kFacadeEarly:
        return EditEarly(comm, given);
      case EditCall::kFacadeLate:
        return EditLate(comm, given);
    }
    return false;
  }
};

}  // namespace kesp::clients
