// Unit tests of an object's diagnostic log.
#include "support/diagnostic_log.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "support/clock_fake.h"
#include "support/files_fake.h"

namespace kesp {
namespace {

class DiagnosticLogTest : public testing::Test {
 protected:
  std::string Content(const std::wstring& filename) { return files_.Content(filename); }

  ClockFake clock_;
  FilesFake files_{clock_};
  DiagnosticLog log_{clock_, files_, L"first.log"};
};

TEST_F(DiagnosticLogTest, Created_IsOffWithItsFilename) {
  EXPECT_FALSE(log_.IsOn());
  EXPECT_EQ(log_.Filename(), L"first.log");
}

TEST_F(DiagnosticLogTest, Off_WritesNothingAndMakesNoText) {
  log_.Write(L"line");
  log_.Write([]() -> std::wstring {
    ADD_FAILURE() << "made";
    return {};
  });
  EXPECT_EQ(Content(L"first.log"), "");
}

TEST_F(DiagnosticLogTest, On_AppendsToTheFileSetLast) {
  log_.Turn(true);
  log_.Write(L"one");
  log_.SetFilename(L"second.log");
  log_.Write([] { return std::wstring(L"two"); });
  EXPECT_TRUE(Content(L"first.log").ends_with("\tone\r\n"));
  EXPECT_TRUE(Content(L"second.log").ends_with("\ttwo\r\n"));
}

TEST_F(DiagnosticLogTest, NoMemoryForTheText_LosesTheLineOnly) {
  log_.Turn(true);
  log_.Write([]() -> std::wstring { throw std::bad_alloc(); });
  log_.Write(L"next");
  EXPECT_TRUE(Content(L"first.log").ends_with("\tnext\r\n"));
}

}  // namespace
}  // namespace kesp
