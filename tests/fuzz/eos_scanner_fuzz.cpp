// The search for the end of a reply, against a plain search, whatever pieces the reply comes in.
#include <string>

#include "network/eos_scanner.h"
#include "support/text.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

void Scan(FuzzInput input) {
  EosScanner scanner(std::wstring{});
  std::string received;
  std::string end;
  while (input.HasMore()) {
    switch (input.Below(4)) {
      case 0: {
        const std::wstring text = WideText(input.Bytes(input.Below(8)));
        scanner.LookFor(text);
        end = SystemCodePage().ToExactBytes(text).value_or(std::string());
        break;
      }
      case 1:
        scanner.Restart();
        received.clear();
        break;
      default:
        received += input.Bytes(1 + input.Below(16));
    }
    const bool is_there = !end.empty() && received.find(end) != std::string::npos;
    Require(scanner.FoundIn(received) == is_there, "the end is found where a plain search finds it");
  }
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::Scan(kesp::FuzzInput(data, size));
  return 0;
}
