// The removal of a registry key at the moment in which another program uses it.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "server/registry_key.h"

namespace kesp {
namespace {

const std::wstring kFolder = L"Software\\KespRegistryKeyTest";
const std::wstring kShared = kFolder + L"\\shared";
const std::wstring kOthers = kShared + L"\\other";

class RegistryKeyTest : public testing::Test {
 protected:
  ~RegistryKeyTest() override { RemoveTree(HKEY_CURRENT_USER, kFolder); }

  static void Make(const std::wstring& path) { RegistryKey::Create(HKEY_CURRENT_USER, path); }
  static void Remove() { RemoveIfEmpty(HKEY_CURRENT_USER, kShared); }
  static bool Exists(const std::wstring& path) { return KeyExists(HKEY_CURRENT_USER, path); }
};

TEST_F(RegistryKeyTest, RemoveIfEmpty_RemovesOnlyAKeyWithoutKeysAndValues) {
  Remove();
  Make(kOthers);
  Remove();
  EXPECT_TRUE(Exists(kOthers));
  RemoveTree(HKEY_CURRENT_USER, kOthers);
  SetKey(HKEY_CURRENT_USER, kShared, L"a value");
  Remove();
  EXPECT_TRUE(Exists(kShared));
  RemoveTree(HKEY_CURRENT_USER, kShared);
  Make(kShared);
  Remove();
  EXPECT_FALSE(Exists(kShared));
  EXPECT_TRUE(Exists(kFolder));
}

// The other one makes its key at another moment of the removal each time; before, it finds the key there, and
// afterwards it makes that, too.
TEST_F(RegistryKeyTest, RemoveIfEmpty_WhileAnotherMakesAKeyBelow_LeavesThatKey) {
  constexpr int kRounds = 400;
  for (int round = 0; round < kRounds; ++round) {
    Make(kShared);
    std::atomic<bool> begun = false;
    std::thread other([&] {
      while (!begun) {
      }
      for (std::atomic<int> wait = 0; wait < 100 * round; ++wait) {
      }
      Make(kOthers);
    });
    begun = true;
    Remove();
    other.join();
    ASSERT_TRUE(Exists(kOthers)) << "in round " << round;
    RemoveTree(HKEY_CURRENT_USER, kShared);
  }
}

}  // namespace
}  // namespace kesp
