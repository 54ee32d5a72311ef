// The firewall's settings in the registry, which every user may read: an administrator's policy, else the
// machine's.
#include "console/firewall_win.h"

#include <map>

#include "console/registry_win.h"

namespace kesp::console {
namespace {

constexpr const char* kPolicy = "SOFTWARE\\Policies\\Microsoft\\WindowsFirewall\\";
constexpr const char* kMachine =
    "SYSTEM\\CurrentControlSet\\Services\\SharedAccess\\Parameters\\FirewallPolicy\\";

// The machine's settings still have the private network under its old name.
std::string KeyOf(const std::string& profile, const char* name_of_private) {
  const std::map<std::string, std::string> keys = {
      {"private", name_of_private}, {"public", "PublicProfile"}, {"domain", "DomainProfile"}};
  const auto found = keys.find(profile);
  return found == keys.end() ? "" : found->second;
}

std::optional<std::uint32_t> Policy(const std::string& profile, const char* name) {
  return RegistryKeyWin(HKEY_LOCAL_MACHINE, kPolicy + KeyOf(profile, "PrivateProfile"), KEY_WOW64_64KEY)
      .Number(name);
}

std::optional<std::uint32_t> Setting(const std::string& profile, const char* name) {
  if (const auto value = Policy(profile, name)) return value;
  return RegistryKeyWin(HKEY_LOCAL_MACHINE, kMachine + KeyOf(profile, "StandardProfile")).Number(name);
}

}  // namespace

FirewallProfile FirewallFor(const std::string& profile) {
  FirewallProfile firewall;
  if (KeyOf(profile, "StandardProfile").empty()) return firewall;
  if (const auto on = Setting(profile, "EnableFirewall")) firewall.on = *on != 0;
  constexpr const char* kNoReplies = "DisableUnicastResponsesToMulticastBroadcast";
  firewall.replies_blocked = Setting(profile, kNoReplies).value_or(0) != 0;
  firewall.by_policy = Policy(profile, kNoReplies).has_value();
  return firewall;
}

}  // namespace kesp::console
