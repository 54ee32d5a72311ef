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
            "The port gives nothing any more: plug the adapter in again, and send the command again"
            " (docs\\no-answer.md#the-port-is-not-there-or-gone).");
  EXPECT_EQ(HintOf("Port already open"),
            "Another program holds the port: close it there (docs\\no-answer.md#access-denied).");
}

TEST(PortHint, ThePortCannotBeOpened_NotToldAsOneThatWasPulled) {
  EXPECT_EQ(HintOf("The device is not open").find("The port takes nothing any more"), 0U);
  EXPECT_EQ(PortHint(LibraryError("cfrOtherError", "CKespCOMPort3 - OpenPort() [commCOMControl]",
                                  "The device is not open"))
                .find("The port cannot be opened"),
            0U);
}

TEST(PortHint, AnythingElse_None) {
  EXPECT_EQ(HintOf("Timeout"), "");
}

}  // namespace
}  // namespace kesp::console
