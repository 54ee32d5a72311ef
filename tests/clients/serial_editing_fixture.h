// A communication object on the test's COM port, and its RS-232 dialog.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "dialogs/dialog_ids.h"
#include "tests/clients/dialog_editing.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {

inline constexpr wchar_t kSerialDialog[] = L"RS-232 Communication Settings";
inline constexpr wchar_t kModemDialog[] = L"RF Modem Properties";
inline constexpr wchar_t kModemBox[] = L"Connect RF Modem";

// The pages of the dialog with all of its flags.
enum SerialPage { kComPortPage, kSmartSwitchPage, kExtendedPage };
inline constexpr long kAllSerialPages =
    ecfShowRS232ExtendedTab | ecfShowRS232SmartSwitchTab | ecfShowRS232IRDongle;

class SerialEditingFixture : public testing::Test {
 protected:
  SerialEditingFixture() {
    edited_.transport = SerialTransport(edited_.comm);
    UseSerialLine(port());
  }

  const ComPtr<_CKespCommObj>& comm() const { return edited_.comm; }
  const ComPtr<_CKespCOMPort3>& port() const { return edited_.transport; }
  bool Edit(EditCall call, long flags, const DialogUser::Act& act) const {
    const DialogUser user(kSerialDialog, act);
    return edited_.Edit(call, {.flags = flags});
  }
  bool Edit(const DialogUser::Act& act) const { return Edit(EditCall::kFacadeEarly, kAllSerialPages, act); }

  // The place in a list of the entry with that text; -1 when it has none.
  static int PlaceOf(const DialogUser& user, int list, const std::wstring& text) {
    const std::vector<std::wstring> entries = user.Entries(list);
    const auto found = std::find(entries.begin(), entries.end(), text);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
  }
  static std::wstring OwnPort() { return L"COM" + SerialPortText(); }

  Apartment apartment_;
  EditedObject<_CKespCOMPort3> edited_{Create<_CKespCommObj>(__uuidof(CKespCommObj)), nullptr};
};

}  // namespace kesp::clients
