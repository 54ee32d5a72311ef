// What the DLL shares between threads and has no native half: its counts, its table of types, and the gate of
// an object.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>

#include "KespCommObj.h"
#include "tests/clients/automation.h"
#include "tests/clients/ieee_client.h"
#include "tests/clients/library_module.h"
#include "tests/threads/figure.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

using namespace clients;

constexpr int kThreads = 6;

// A copy of the library, with counts and tables of its own that nobody has used yet.
class FreshLibrary {
 public:
  FreshLibrary() {
    static int number = 0;
    path_ =
        std::filesystem::temp_directory_path() / (L"kesp threads " + std::to_wstring(GetCurrentProcessId()) +
                                                  L"-" + std::to_wstring(++number) + L".dll");
    std::filesystem::copy_file(RegisteredPath(), path_, std::filesystem::copy_options::overwrite_existing);
    module_ = std::make_unique<LibraryModule>(path_.wstring());
  }
  ~FreshLibrary() {
    module_.reset();
    // One that made an object stays loaded.
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  FreshLibrary(const FreshLibrary&) = delete;
  FreshLibrary& operator=(const FreshLibrary&) = delete;

  LibraryModule& module() { return *module_; }
  ComPtr<IClassFactory> Factory(const CLSID& clsid) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(
        module_->GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf())),
        S_OK);
    return factory;
  }

 private:
  std::filesystem::path path_;
  std::unique_ptr<LibraryModule> module_;
};

TEST(ModuleThreadsTest, LocksAndFactoriesOfManyThreads_NoneIsLost) {
  FreshLibrary library;
  const int rounds = Rounds(200);
  RunTogether(kThreads, [&](int) {
    for (int round = 0; round < rounds; ++round) {
      const auto factory = library.Factory(__uuidof(CInstrument));
      EXPECT_EQ(factory->LockServer(TRUE), S_OK);
      EXPECT_EQ(library.module().CanUnloadNow(), S_FALSE);
      EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    }
  });
  EXPECT_EQ(library.module().CanUnloadNow(), S_OK);
  Figure("locks of the module, many threads", static_cast<long>(kThreads) * rounds);
}

// Each thread makes the first object of its class, and asks for the names of its members, at the same moment.
TEST(TypeTableThreadsTest, FirstUseByManyThreads_AllSeeTheWholeTable) {
  const int rounds = std::min(Rounds(2), 20);
  for (int round = 0; round < rounds; ++round) {
    FreshLibrary library;
    const CLSID classes[] = {__uuidof(CInstrument), __uuidof(CInstruments), __uuidof(CKespTCP),
                             __uuidof(CKespIEEE)};
    wchar_t names[][10] = {L"Model", L"Count", L"ReadLine", L"ReadLine"};
    RunTogether(kThreads, [&](int number) {
      const auto kind = static_cast<std::size_t>(number) % std::size(classes);
      const auto factory = library.Factory(classes[kind]);
      ComPtr<IDispatch> object;
      ASSERT_EQ(
          factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(object.GetAddressOf())),
          S_OK);
      LPOLESTR name = names[kind];
      DISPID id = DISPID_UNKNOWN;
      EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &name, 1, 0, &id), S_OK);
      EXPECT_NE(id, DISPID_UNKNOWN);
    });
  }
  Figure("first uses of the type table, many threads", rounds);
}

// Threads that share the pointer itself. Which of them gets in is open, but none sees another one's
// operation.
TEST(GateThreadsTest, PlainPointerOfManyThreads_EachOperationIsCarriedOutWholeOrRefused) {
  const Apartment apartment;
  IeeeClient ieee;
  EXPECT_EQ(ieee.Initialize(), kDone);
  std::atomic<long> done = 0;
  std::atomic<long> refused = 0;
  std::atomic<long> wrong = 0;
  _CKespIEEE* const bare = ieee.object.Get();
  RunTogether(kThreads, [&](int) {
    for (int round = 0; round < Rounds(200); ++round) {
      VARIANT_BOOL answer = 5;
      const HRESULT result = bare->WriteLine(Text(L"SETP 1").get(), &answer);
      const bool is_done = result == S_OK && answer == VARIANT_TRUE;
      const bool is_refused = result == RPC_E_SERVERCALL_RETRYLATER && answer == VARIANT_FALSE;
      ++(is_done ? done : is_refused ? refused : wrong);
    }
  });
  EXPECT_EQ(ieee.Uninitialize(), kDone);
  Figure("operations through one gate", done);
  Figure("refused by the gate", refused);
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(done, 0);
}

}  // namespace
}  // namespace kesp::threads
