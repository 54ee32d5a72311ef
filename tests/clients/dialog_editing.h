// Edit of whichever object a test is about, called in either way of binding while somebody sits at the
// screen.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/late_object.h"
#include "tests/win/dialog_user.h"

namespace kesp::clients {

// Whose Edit it is, and how it is called.
enum class EditCall { kTransportEarly, kTransportLate, kFacadeEarly, kFacadeLate };

inline constexpr EditCall kEditCalls[] = {EditCall::kTransportEarly, EditCall::kTransportLate,
                                          EditCall::kFacadeEarly, EditCall::kFacadeLate};

// What Edit is given.
struct EditArguments {
  long flags = 0;
  std::wstring help_file = {};
  long help_context = 0;
};

// A communication object, its transport of that kind, and Edit of one of them while somebody sits at the
// screen.
template <class Transport>
class EditingFixture : public testing::Test {
 protected:
  explicit EditingFixture(std::wstring caption) : caption_(std::move(caption)) {}

  // Shows the dialog, does that in it, and gives Edit's answer.
  bool Edit(EditCall call, const EditArguments& given, const DialogUser::Act& act) const {
    const DialogUser user(caption_, act);
    switch (call) {
      case EditCall::kTransportEarly:
        return EditEarly(transport_, given);
      case EditCall::kTransportLate:
        return EditLate(transport_, given);
      case EditCall::kFacadeEarly:
        return EditEarly(comm_, given);
      case EditCall::kFacadeLate:
        return EditLate(comm_, given);
    }
    return false;
  }

  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  ComPtr<Transport> transport_;

 private:
  // Through the vtable.
  template <class Interface>
  static bool EditEarly(const ComPtr<Interface>& object, const EditArguments& given) {
    VARIANT_BOOL answer = 5;
    EXPECT_EQ(RefusalOf(object->Edit(static_cast<EEditCommFlags>(given.flags), Text(given.help_file).get(),
                                     given.help_context, &answer)),
              Refusal{});
    EXPECT_TRUE(answer == VARIANT_TRUE || answer == VARIANT_FALSE);
    return answer == VARIANT_TRUE;
  }
  // By its name.
  static bool EditLate(const ComPtr<IDispatch>& object, const EditArguments& given) {
    const Value flags(given.flags);
    const Value help_file(given.help_file.c_str());
    const Value help_context(given.help_context);
    const Outcome outcome =
        LateObject(object).Call(L"Edit", {Plain(flags), Plain(help_file), Plain(help_context)});
    EXPECT_EQ(outcome.result, S_OK);
    EXPECT_EQ(outcome.value.type(), VT_BOOL);
    return outcome.IsTrue();
  }

  std::wstring caption_;
};

}  // namespace kesp::clients
