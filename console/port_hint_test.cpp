// What helps where a COM port has failed.
#include "console/port_hint.h"

#include <gtest/gtest.h>

namespace kesp::console {
namespace {

std::string HintOf(const std::string& description) {
  return PortHint(LibraryError("cfrReadFailed", "CKespCOMPort3 - ReadLine() [commCOMControl]", description));
}

TEST(PortHint, ThePortFailed_OneSentence) {
  EXPECT_EQ(HintOf("Error reading comm device"),
            "The port gives nothing any more: plug the adapter in again, and send the command again.");
  EXPECT_EQ(HintOf("Port already open"), "Another program holds the port: close it there.");
}

TEST(PortHint, AnythingElse_None) {
  EXPECT_EQ(HintOf("Timeout"), "");
}

}  // namespace
}  // namespace kesp::console
