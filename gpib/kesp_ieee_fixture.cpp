// The stage of the IEEE-488 transport's tests: the device, and what was heard of it.
#include "gpib/kesp_ieee_fixture.h"

#include <utility>

namespace kesp {

IeeeFixture::IeeeFixture() {
  bus_.knows_descriptors = true;
  ieee_.SetPrimaryAddress(5);
  ieee_.SetEOSChar(L"10");
}

IeeeFixture::~IeeeFixture() = default;

void IeeeFixture::Answer(const char* entry_point, const GpibOutcome& outcome) {
  bus_.answers[entry_point] = [outcome] { return outcome; };
}

Calls IeeeFixture::Heard() {
  return std::exchange(bus_.heard, {});
}

Lines IeeeFixture::Logged() {
  Lines lines;
  const std::string content = environment_.files.Content(ieee_.LogFilename());
  for (std::size_t begin = 0, end = 0; (end = content.find("\r\n", begin)) != std::string::npos;
       begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    lines.push_back(SystemCodePage().FromBytes(line.substr(line.rfind('\t') + 1)));
  }
  return lines;
}

}  // namespace kesp
