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

// "57 57 58": after each tenth; "57" where all are the same.
template <class TextOf>
std::string Course(const std::vector<Tenth>& tenths, const TextOf& text_of) {
  std::string course;
  bool is_flat = true;
  const std::string first = text_of(tenths.front().resources);
  for (const Tenth& tenth : tenths) {
    const std::string text = text_of(tenth.resources);
    is_flat = is_flat && text == first;
    course += (course.empty() ? "" : " ") + text;
  }
  return is_flat ? first + " each time" : course;
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
  const auto row = [&](const char* what, const auto& text_of) {
    return key(what) + " after each tenth = " + Course(tenths, text_of);
  };
  const auto number = [](std::int64_t Resources::*value) {
    return [value](const Resources& held) { return std::to_string(held.*value); };
  };
  const auto kilobytes = [](std::int64_t Resources::*value) {
    return [value](const Resources& held) { return Kilobytes(held.*value); };
  };
  std::vector<std::string> lines = {
      "figure " + part + " = " + std::to_string(calls) + " in " + std::to_string(std::lround(seconds)) + " s",
      row("handles", number(&Resources::handles)),
      row("blocks of the runtime's heap", number(&Resources::runtime_blocks)),
      row("KB of the runtime's heap", kilobytes(&Resources::runtime_bytes)),
      row("blocks of the system's heaps", number(&Resources::system_blocks)),
      row("KB of the system's heaps", kilobytes(&Resources::system_bytes)),
      row("private KB", kilobytes(&Resources::private_bytes)),
      row("GDI objects", number(&Resources::gdi_objects)),
      row("USER objects", number(&Resources::user_objects)),
      row("threads", number(&Resources::threads))};
  if (const std::int64_t lost = tenths.back().lost_by_system.system_blocks; lost != 0) {
    lines.push_back(key("blocks that the system lost by itself = ") + std::to_string(lost));
  }
  return lines;
}

}  // namespace kesp::soak
