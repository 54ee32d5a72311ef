// The settings of serial lines as text, and of descriptors that are none.
#include "simulator/line_settings.h"

#include <gtest/gtest.h>

#include <system_error>

namespace kesp::simulator {
namespace {

TEST(LineSettings, Text_IsTheUsualOne) {
  EXPECT_EQ(TextOf(LineSettings{}), "9600,N,8,1");
  EXPECT_EQ(TextOf(LineSettings{1200, 'E', 7, 2}), "1200,E,7,2");
}

TEST(SettingsOf, NoTerminal_Throws) {
  EXPECT_THROW(SettingsOf(-1), std::system_error);
}

}  // namespace
}  // namespace kesp::simulator
