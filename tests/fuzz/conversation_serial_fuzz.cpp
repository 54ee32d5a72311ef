// The serial transport in conversations of the fuzzer's making.
#include "tests/fuzz/conversation_serial.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::SerialConversation(input).Run();
  return 0;
}
