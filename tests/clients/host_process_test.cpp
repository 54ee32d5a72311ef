// What the library does to the process that loads it: when it may leave, what stays behind, and whose runtime
// it uses. Each suite is run in a process of its own.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <iostream>
#include <optional>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/library_module.h"

namespace kesp::clients {
namespace {

// Makes the library throw inside, and sees the error arrive.
void ExpectAnErrorArrives() {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_Port, 0), COMPORT3_ERR_INVALID_COM_PORT);
}

class UnloadingTest : public testing::Test {
 protected:
  ComPtr<IClassFactory> Factory() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(module_.GetClassObject(__uuidof(CInstrument), IID_IClassFactory,
                                     reinterpret_cast<void**>(factory.GetAddressOf())),
              S_OK);
    return factory;
  }

  Apartment apartment_;
  LibraryModule module_;
};

// The order of these two counts: there is no way back from the first object.
TEST_F(UnloadingTest, A_BeforeTheFirstObject_FactoriesAndLocksHoldIt) {
  EXPECT_EQ(module_.CanUnloadNow(), S_OK);
  ComPtr<IClassFactory> factory = Factory();
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  factory.Reset();
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE);
  EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
  EXPECT_EQ(module_.CanUnloadNow(), S_OK);
}

TEST_F(UnloadingTest, B_FromTheFirstObjectOn_ItStays) {
  Create<_CInstrument>(__uuidof(CInstrument)).Reset();
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE);
}

// A host that registers the library, or looks at its classes, gets rid of it again.
TEST(LoadingTest, OnlyAFactoryWasMade_IsUnloaded) {
  for (int round = 0; round < 3; ++round) {
    {
      const Apartment apartment;
      ComPtr<IUnknown> factory;
      EXPECT_EQ(CoGetClassObject(__uuidof(CKespTCP), CLSCTX_INPROC_SERVER, nullptr, IID_IUnknown,
                                 reinterpret_cast<void**>(factory.GetAddressOf())),
                S_OK);
    }
    EXPECT_EQ(GetModuleHandleW(L"KespCommObj.dll"), nullptr) << "round " << round;
  }
}

// Bytes of memory that the process has asked for.
std::size_t CommittedBytes() {
  std::size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
       at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
  }
  return bytes;
}

// What a process holds. Slots of thread-local storage and handles are given out from the lowest free one on,
// so that the next one tells how many are taken.
struct Holdings {
  std::size_t bytes = CommittedBytes();
  DWORD next_slot = TlsAlloc();
  HANDLE next_handle = CreateEventW(nullptr, FALSE, FALSE, nullptr);

  Holdings() {
    TlsFree(next_slot);
    CloseHandle(next_handle);
  }
};

// A host that sets up COM for each of its jobs.
TEST(JobsTest, FiveThousandJobs_NothingGrows) {
  constexpr int kJobs = 5000;
  constexpr int kSettled = 100;
  std::optional<Holdings> before;
  for (int job = 0; job < kJobs; ++job) {
    if (job == kSettled) before.emplace();
    const Apartment apartment;
    ExpectAnErrorArrives();
    ASSERT_FALSE(HasFailure()) << "job " << job;
  }
  const Holdings after;
  std::cout << "bytes " << before->bytes << " -> " << after.bytes << ", next slot " << before->next_slot
            << " -> " << after.next_slot << ", next handle " << before->next_handle << " -> "
            << after.next_handle << '\n';
  EXPECT_EQ(after.next_slot, before->next_slot);
  EXPECT_EQ(after.next_handle, before->next_handle);
  EXPECT_LE(after.bytes, before->bytes + 256 * 1024);
}

// Many programs made with the library's own compiler bring the compiler's shared runtime along.
TEST(SharedRuntimeTest, HostLoadedTheCompilersRuntimeFirst_ErrorsArrive) {
  std::array<wchar_t, MAX_PATH> program{};
  GetModuleFileNameW(nullptr, program.data(), MAX_PATH);
  const auto beside = std::filesystem::path(program.data()).parent_path() / KESP_SHARED_RUNTIME;
  const HMODULE runtime = LoadLibraryExW(beside.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  ASSERT_NE(runtime, nullptr) << beside;
  ASSERT_EQ(GetModuleHandleW(L"KespCommObj.dll"), nullptr) << "too late";
  const Apartment apartment;
  ExpectAnErrorArrives();
  FreeLibrary(runtime);
}

}  // namespace
}  // namespace kesp::clients
