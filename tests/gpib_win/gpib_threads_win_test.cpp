// The data that the driver binding keeps for each thread: threads, fibers, and the end of the process.
#include "gpib/gpib_threads_win.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace kesp {
namespace {

// The threads on which the driver was told to forget the cells.
std::vector<DWORD> unregistered;

int KESP_GPIB_CALL Unregister() {
  unregistered.push_back(GetCurrentThreadId());
  return 0;
}

int KESP_GPIB_CALL NeverReturn() {
  Sleep(INFINITE);
  return 0;
}

GpibEntryPoints table{};

void MarkAsRegistered(GpibThread& thread, int(KESP_GPIB_CALL* unregister)() = &Unregister) {
  table.UnregisterGpibGlobalsForThread = unregister;
  thread.registered = true;
  thread.entry_points = &table;
}

class GpibThreadDataTest : public testing::Test {
 protected:
  GpibThreadDataTest() { unregistered.clear(); }

  GpibThreadsWin threads_;
};

TEST_F(GpibThreadDataTest, EachThread_HasDataOfItsOwnAndKeepsIt) {
  GpibThread* const own = &threads_.Current();
  std::thread([&] { EXPECT_NE(&threads_.Current(), own); }).join();
  EXPECT_EQ(&threads_.Current(), own);
}

TEST_F(GpibThreadDataTest, RegisteredThreadEnds_IsUnregisteredOnIt) {
  DWORD id = 0;
  std::thread([&] {
    id = GetCurrentThreadId();
    MarkAsRegistered(threads_.Current());
  }).join();
  EXPECT_EQ(unregistered, (std::vector{id}));
}

TEST_F(GpibThreadDataTest, ThreadThatIsNotRegisteredEnds_DriverIsNotCalled) {
  std::thread([&] { threads_.Current(); }).join();
  EXPECT_TRUE(unregistered.empty());
}

// What a fiber is to do, and the fiber that goes on then.
struct FiberTask {
  const std::function<void()>& work;
  void* back;
};

void WINAPI RunFiber(void* parameter) {
  const auto* task = static_cast<FiberTask*>(parameter);
  task->work();
  SwitchToFiber(task->back);
}

// Runs the work on a new fiber of this thread, whose present fiber is `own`. The fiber is the caller's to
// delete.
void* RunOnNewFiber(void* own, const std::function<void()>& work) {
  FiberTask task{work, own};
  void* fiber = CreateFiber(0, &RunFiber, &task);
  EXPECT_NE(fiber, nullptr);
  SwitchToFiber(fiber);
  return fiber;
}

TEST_F(GpibThreadDataTest, SecondFiber_SharesTheThreadsData) {
  GpibThread* first = nullptr;
  GpibThread* second = nullptr;
  std::thread([&] {
    void* own = ConvertThreadToFiber(nullptr);
    first = &threads_.Current();
    MarkAsRegistered(*first);
    DeleteFiber(RunOnNewFiber(own, [&] { second = &threads_.Current(); }));
    EXPECT_TRUE(unregistered.empty());
    ConvertFiberToThread();
  }).join();
  EXPECT_EQ(second, first);
  EXPECT_EQ(unregistered.size(), 1u);
}

TEST_F(GpibThreadDataTest, FiberThatBroughtTheDataIsDeleted_ThreadIsUnregisteredAndBeginsAnew) {
  bool was_registered = true;
  std::thread([&] {
    void* own = ConvertThreadToFiber(nullptr);
    DeleteFiber(RunOnNewFiber(own, [&] { MarkAsRegistered(threads_.Current()); }));
    EXPECT_EQ(unregistered.size(), 1u);
    was_registered = threads_.Current().registered;
    ConvertFiberToThread();
  }).join();
  EXPECT_FALSE(was_registered);
  EXPECT_EQ(unregistered.size(), 1u);
}

// The driver can still write into the data of the thread that goes on.
TEST_F(GpibThreadDataTest, FiberThatBroughtTheDataIsDeletedElsewhere_DataStays) {
  std::thread([&] {
    void* own = ConvertThreadToFiber(nullptr);
    void* fiber = RunOnNewFiber(own, [&] { MarkAsRegistered(threads_.Current()); });
    std::thread([&] { DeleteFiber(fiber); }).join();
    EXPECT_TRUE(unregistered.empty());
    EXPECT_TRUE(threads_.Current().registered);
    ConvertFiberToThread();
  }).join();
}

// Runs one of the disabled tests below, none of which is a test, in a process of its own. Returns its exit
// code; STILL_ACTIVE when it does not end.
DWORD RunInProcessOfItsOwn(const std::wstring& name) {
  std::array<wchar_t, 32768> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  std::wstring command = L"\"" + std::wstring(path.data()) +
                         L"\" --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_" + name;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                             &process));
  DWORD code = STILL_ACTIVE;
  if (WaitForSingleObject(process.hProcess, 30'000) == WAIT_OBJECT_0) {
    GetExitCodeProcess(process.hProcess, &code);
  } else {
    TerminateProcess(process.hProcess, 1);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

TEST_F(GpibThreadDataTest, DISABLED_EndRegistered) {
  MarkAsRegistered(threads_.Current(), &NeverReturn);
}

TEST_F(GpibThreadDataTest, ProcessEndsOnARegisteredThread_DoesNotWaitForTheDriver) {
  EXPECT_EQ(RunInProcessOfItsOwn(L"EndRegistered"), 0u);
}

// Holds the loader's lock of this process, which the end of a process takes before it ends the other threads.
void TakeLoadersLock() {
  using LockLoader = LONG(NTAPI*)(ULONG, ULONG*, ULONG_PTR*);
  const auto lock_loader = reinterpret_cast<LockLoader>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "LdrLockLoaderLock")));
  ULONG_PTR cookie = 0;
  ASSERT_EQ(lock_loader(0, nullptr, &cookie), 0);
}

// The other thread is about to end when it finds the lock taken, and goes no further.
TEST_F(GpibThreadDataTest, DISABLED_EndWhileAnotherThreadEnds) {
  MarkAsRegistered(threads_.Current());
  std::atomic<bool> is_registered = false;
  std::atomic<bool> may_end = false;
  std::thread([&] {
    MarkAsRegistered(threads_.Current());
    is_registered = true;
    while (!may_end) Sleep(1);
  }).detach();
  while (!is_registered) Sleep(1);
  TakeLoadersLock();
  may_end = true;
  Sleep(200);
  ExitProcess(0);
}

TEST_F(GpibThreadDataTest, ProcessEndsWhileAnotherRegisteredThreadEnds_WaitsForNothingOfThatThread) {
  EXPECT_EQ(RunInProcessOfItsOwn(L"EndWhileAnotherThreadEnds"), 0u);
}

}  // namespace
}  // namespace kesp
