// The network list manager of Windows.
#include "console/network_profiles_win.h"

#include <objbase.h>
// After it.
#include <netlistmgr.h>
#include <wrl/client.h>

#include "console/public_classes_win.h"

namespace kesp::console {
namespace {

using Microsoft::WRL::ComPtr;

constexpr CLSID kNetworkListManager = {
    0xDCB00C01, 0x570F, 0x4A9B, {0x8D, 0x69, 0x19, 0x9F, 0xDB, 0xA5, 0x72, 0x3B}};

std::string NameOf(NLM_NETWORK_CATEGORY category) {
  switch (category) {
    case NLM_NETWORK_CATEGORY_PRIVATE:
      return "private";
    case NLM_NETWORK_CATEGORY_DOMAIN_AUTHENTICATED:
      return "domain";
    default:
      return "public";
  }
}

}  // namespace

NetworkProfiles::NetworkProfiles() {
  ComPtr<INetworkListManager> manager;
  ComPtr<IEnumNetworkConnections> connections;
  if (FAILED(CoCreateInstance(kNetworkListManager, nullptr, CLSCTX_ALL, __uuidof(INetworkListManager),
                              reinterpret_cast<void**>(manager.GetAddressOf()))) ||
      FAILED(manager->GetNetworkConnections(&connections)))
    return;
  for (;;) {
    ComPtr<INetworkConnection> connection;
    ComPtr<INetwork> network;
    ULONG fetched = 0;
    if (connections->Next(1, &connection, &fetched) != S_OK || fetched != 1) return;
    GUID adapter{};
    NLM_NETWORK_CATEGORY category = NLM_NETWORK_CATEGORY_PUBLIC;
    if (SUCCEEDED(connection->GetAdapterId(&adapter)) && SUCCEEDED(connection->GetNetwork(&network)) &&
        SUCCEEDED(network->GetCategory(&category)))
      profiles_[GuidText(adapter)] = NameOf(category);
  }
}

std::string NetworkProfiles::ProfileOf(const std::string& adapter) const {
  const auto found = profiles_.find(adapter);
  return found == profiles_.end() ? "" : found->second;
}

}  // namespace kesp::console
