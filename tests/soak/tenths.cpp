// Rows and figures as text; growth counts from the second tenth to the last.
#include "tests/soak/tenths.h"

#include <cmath>

namespace kesp::soak {

namespace {

constexpr std::int64_t kBytesPerKilobyte = 1024;
constexpr std::size_t kColumn = 9;

std::string Column(const std::string& text) {
  return (text.size() < kColumn ? std::string(kColumn - text.size(), ' ') : " ") + text;
}

std::string Kilobytes(std::int64_t bytes) {
  return std::to_string(bytes / kBytesPerKilobyte);
}

std::string CallsPerSecond(long calls, double seconds) {
  return std::to_string(std::lround(static_cast<double>(calls) / (seconds > 0 ? seconds : 1)));
}

// "57, 57, 57": after the first, the second and the last tenth.
template <class TextOf>
std::string Course(const std::vector<Tenth>& tenths, const TextOf& text_of) {
  return text_of(tenths.front().resources) + ", " + text_of(tenths[1].resources) + ", " +
         text_of(tenths.back().resources);
}

}  // namespace

std::string TableHead() {
  std::string line;
  for (const char* name : {"tenth", "handles", "runtime", "KB", "system", "KB", "private", "GDI", "USER",
                           "threads", "calls/s"}) {
    line += Column(name);
  }
  return line;
}

std::string TableRow(int number, const Tenth& tenth, long calls) {
  const Resources& held = tenth.resources;
  return Column(std::to_string(number)) + Column(std::to_string(held.handles)) +
         Column(std::to_string(held.runtime_blocks)) + Column(Kilobytes(held.runtime_bytes)) +
         Column(std::to_string(held.system_blocks)) + Column(Kilobytes(held.system_bytes)) +
         Column(Kilobytes(held.private_bytes)) + Column(std::to_string(held.gdi_objects)) +
         Column(std::to_string(held.user_objects)) + Column(std::to_string(held.threads)) +
         Column(CallsPerSecond(calls, tenth.seconds));
}

std::vector<std::string> Grown(const std::vector<Tenth>& tenths) {
  std::vector<std::string> grown;
  for (const ResourceKind& kind : kResourceKinds) {
    const std::int64_t second = tenths[1].resources.*kind.value;
    const std::int64_t last = tenths.back().resources.*kind.value;
    const std::int64_t lost = tenths.back().lost_by_system.*kind.value - tenths[1].lost_by_system.*kind.value;
    if (last <= second + lost + kind.allowance) continue;
    grown.push_back(std::string(kind.name) + " grew from " + std::to_string(second) +
                    " after the second tenth to " + std::to_string(last) + " after the last");
  }
  return grown;
}

std::vector<std::string> Figures(const std::string& part, long calls, const std::vector<Tenth>& tenths) {
  double seconds = 0;
  for (const Tenth& tenth : tenths) seconds += tenth.seconds;
  const auto key = [&part](const std::string& what) { return "figure " + part + ", " + what; };
  const auto handles = [](const Resources& held) { return std::to_string(held.handles); };
  const auto blocks = [](std::int64_t count, std::int64_t bytes) {
    return std::to_string(count) + " (" + Kilobytes(bytes) + " KB)";
  };
  const auto runtime = [&](const Resources& held) { return blocks(held.runtime_blocks, held.runtime_bytes); };
  const auto system = [&](const Resources& held) { return blocks(held.system_blocks, held.system_bytes); };
  const auto rest = [](const Resources& held) {
    return std::to_string(held.gdi_objects) + "/" + std::to_string(held.user_objects) + "/" +
           std::to_string(held.threads);
  };
  const std::string when = " after tenths 1, 2 and 10 = ";
  std::vector<std::string> lines = {
      "figure " + part + " = " + std::to_string(calls) + " in " + std::to_string(std::lround(seconds)) + " s",
      key("handles") + when + Course(tenths, handles),
      key("blocks of the runtime's heap") + when + Course(tenths, runtime),
      key("blocks of the system's heaps") + when + Course(tenths, system),
      key("GDI objects/USER objects/threads") + when + Course(tenths, rest)};
  if (const std::int64_t lost = tenths.back().lost_by_system.system_blocks; lost != 0) {
    lines.push_back(key("blocks that the system may have lost = ") + std::to_string(lost));
  }
  return lines;
}

}  // namespace kesp::soak
