// What is told of a process that does not end.
#include "tests/threads/stacks.h"

#include <gtest/gtest.h>

#include "tests/threads/client_process.h"
#include "tests/threads/ending_process.h"

namespace kesp::threads {
namespace {

TEST(StacksTest, ProcessThatRuns_FunctionsOfItsThreadsAreTold) {
  const WorkingFolder folder;
  // It talks until it is ended.
  const ClientProcess process(L"ending_process.exe", std::to_wstring(static_cast<int>(Way::kTerminated)) +
                                                         L" 0 \"" + folder.path() + L"\" 0");
  // It makes this file when it has begun.
  const std::wstring talking = folder.File(L"talking");
  for (int i = 0; i < 30000 && GetFileAttributesW(talking.c_str()) == INVALID_FILE_ATTRIBUTES; ++i) Sleep(1);
  const std::vector<Stack> stacks = StacksOf(process.handle());
  EXPECT_GE(stacks.size(), 3u);
  EXPECT_NE(Text(stacks).find("!BaseThreadInitThunk+"), std::string::npos) << Text(stacks);
  EXPECT_FALSE(IsLostByWine(stacks)) << Text(stacks);
}

TEST(StacksTest, LastThreadGoesRoundAtALockOfWine_ProcessIsLost) {
  EXPECT_TRUE(IsLostByWine({{"ntdll!RtlWakeAddressSingle+0x52", "ntdll!RtlpUnWaitCriticalSection+0x50"}}));
  EXPECT_TRUE(IsLostByWine({{"ntdll!RtlWaitOnAddress+0x31"}}));
}

TEST(StacksTest, AnyOtherProcess_IsNot) {
  EXPECT_FALSE(IsLostByWine({}));
  EXPECT_FALSE(IsLostByWine({{}}));
  // It waits for a lock of the program.
  EXPECT_FALSE(IsLostByWine({{"ntdll!NtWaitForAlertByThreadId+0x14", "ntdll!RtlWaitOnAddress+0x1bc"}}));
  EXPECT_FALSE(IsLostByWine({{"ntdll!RtlWakeAddressSingle+0x52"}, {"ntdll!NtDelayExecution+0x14"}}));
}

}  // namespace
}  // namespace kesp::threads
