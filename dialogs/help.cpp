// The help viewer, asked for a topic.
#include "dialogs/help.h"

#include <optional>

namespace kesp {

namespace {

constexpr std::uint32_t kHelpContext = 1;  // HELP_CONTEXT

template <typename Call>
bool UnderTheBusyPointer(UserSurface& user, const Call& call) {
  try {
    user.SetPointer(MousePointer::kBusy);
    const bool taken = call();
    user.SetPointer(MousePointer::kDefault);
    return taken;
  } catch (...) {
    return false;
  }
}

}  // namespace

bool ShowContextHelp(UserSurface& user, std::int32_t context, HelpTopic own_topic) {
  return UnderTheBusyPointer(user, [&] {
    const std::optional<bool> taken = user.CallOwnHelp(static_cast<std::uint32_t>(own_topic));
    return taken ? *taken : user.CallHelp(kHelpContext, static_cast<std::uint32_t>(context));
  });
}

bool CallHelp(UserSurface& user, std::uint32_t command, std::uint32_t data) {
  return UnderTheBusyPointer(user, [&] { return user.CallHelp(command, data); });
}

}  // namespace kesp
