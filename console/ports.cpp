// COM ports as a table and as JSON.
#include "console/ports.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <tuple>

#include "console/port_identity.h"
#include "console/table.h"

namespace kesp::console {
namespace {

nlohmann::ordered_json AsJson(const ListedPort& port) {
  const PortIdentity identity = IdentityOf(port.device);
  nlohmann::ordered_json object = {{"port", port.device.name},
                                   {"present", port.device.present},
                                   {"state", StateOf(port)},
                                   {"name", port.device.friendly_name},
                                   {"bus", identity.bus},
                                   {"vendor", identity.vendor},
                                   {"product", identity.product},
                                   {"usb_id", identity.usb_id},
                                   {"serial", identity.serial},
                                   {"channel", identity.channel},
                                   {"instance", port.device.instance}};
  if (port.device.latency_ms) object["latency_ms"] = *port.device.latency_ms;
  return object;
}

}  // namespace

int PortNumber(std::string_view name) {
  int number = 0;
  if (name.starts_with("COM")) std::from_chars(name.data() + 3, name.data() + name.size(), number);
  return number;
}

std::vector<PortDevice> InNaturalOrder(std::vector<PortDevice> ports) {
  const auto key = [](const PortDevice& port) {
    return std::make_tuple(PortNumber(port.name), port.name, !port.present, port.instance);
  };
  std::sort(ports.begin(), ports.end(),
            [&key](const PortDevice& one, const PortDevice& other) { return key(one) < key(other); });
  return ports;
}

void AddPortsWithoutDevice(const std::vector<std::string>& working, std::vector<PortDevice>& ports) {
  for (const std::string& name : working) {
    const bool known = std::any_of(ports.begin(), ports.end(),
                                   [&](const PortDevice& port) { return port.present && port.name == name; });
    if (known || !name.starts_with("COM")) continue;
    PortDevice port;
    port.name = name;
    port.present = true;
    ports.push_back(port);
  }
}

std::string StateOf(const ListedPort& port) {
  if (!port.device.present) return "not there";
  switch (port.use) {
    case PortUse::kFree:
      return "free";
    case PortUse::kInUse:
      return "in use";
    case PortUse::kCannotBeOpened:
      return "cannot be opened";
    case PortUse::kNotTried:
      break;
  }
  return "here";
}

std::string PortTable(const std::vector<ListedPort>& ports) {
  if (ports.empty()) return "";
  std::vector<TableRow> rows = {{"PORT", "STATE", "NAME", "VENDOR", "PRODUCT", "SERIAL NUMBER"}};
  for (const ListedPort& port : ports) {
    const PortIdentity identity = IdentityOf(port.device);
    rows.push_back({port.device.name, StateOf(port), port.device.friendly_name, identity.vendor,
                    identity.product, identity.serial});
  }
  return TableOf(rows);
}

std::string PortsAsJson(const std::vector<ListedPort>& ports) {
  auto list = nlohmann::ordered_json::array();
  for (const ListedPort& port : ports) list.push_back(AsJson(port));
  return list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace kesp::console
