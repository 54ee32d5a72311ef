// The help viewer, asked for a topic.
#include "dialogs/help.h"

namespace kesp {

namespace {

constexpr std::uint32_t kHelpContext = 1;  // HELP_CONTEXT

}  // namespace

bool ShowContextHelp(UserSurface& user, std::int32_t context) {
  return CallHelp(user, kHelpContext, static_cast<std::uint32_t>(context));
}

bool CallHelp(UserSurface& user, std::uint32_t command, std::uint32_t data) {
  try {
    user.SetPointer(MousePointer::kBusy);
    const bool taken = user.CallHelp(command, data);
    user.SetPointer(MousePointer::kDefault);
    return taken;
  } catch (...) {
    return false;
  }
}

}  // namespace kesp
