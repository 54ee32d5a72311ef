// Wine answers 0 to some of the questions; there everything that can have a number is asked for one by one.
#include "tests/soak/resources_win.h"

#include <windows.h>
// Needs the types of the one above.
#include <tlhelp32.h>

#include <cstdlib>

#include "tests/clients/handle_count.h"

namespace kesp::soak {

namespace {

// The system gives the lowest numbers first, so growth is seen long before these.
constexpr ULONG_PTR kHighestUserObject = 0x4000;
constexpr ULONG_PTR kHighestGdiObject = 0xFFFF;

std::int64_t CountGdiObjects() {
  if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); counted != 0) return counted;
  std::int64_t count = 0;
  for (ULONG_PTR number = 1; number <= kHighestGdiObject; ++number) {
    if (GetObjectType(reinterpret_cast<HGDIOBJ>(number)) != 0) ++count;
  }
  return count;
}

bool IsOwnWindow(ULONG_PTR number) {
  auto* window = reinterpret_cast<HWND>(number);
  DWORD process = 0;
  return IsWindow(window) != FALSE && GetWindowThreadProcessId(window, &process) != 0 &&
         process == GetCurrentProcessId();
}

bool IsIcon(ULONG_PTR number) {
  ICONINFO icon{};
  if (GetIconInfo(reinterpret_cast<HICON>(number), &icon) == FALSE) return false;
  DeleteObject(icon.hbmMask);
  if (icon.hbmColor != nullptr) DeleteObject(icon.hbmColor);
  return true;
}

// Windows, menus, icons and pointers.
std::int64_t CountUserObjects() {
  if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS); counted != 0)
    return counted;
  constexpr ULONG_PTR kFirst = 0x20;
  std::int64_t count = 0;
  for (ULONG_PTR number = kFirst; number <= kHighestUserObject; number += 2) {
    const bool is_menu = IsMenu(reinterpret_cast<HMENU>(number)) != FALSE;
    if (is_menu || IsIcon(number) || IsOwnWindow(number)) ++count;
  }
  return count;
}

void AddHeap(HANDLE heap, std::int64_t& blocks, std::int64_t& bytes) {
  HeapLock(heap);
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry) != FALSE) {
    if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
    ++blocks;
    bytes += entry.cbData;
  }
  HeapUnlock(heap);
}

void AddHeaps(Resources& total) {
  constexpr DWORD kMostHeaps = 256;
  HANDLE heaps[kMostHeaps];
  const DWORD count = GetProcessHeaps(kMostHeaps, heaps);
  void* of_runtime = std::malloc(1);
  for (DWORD index = 0; index < count && index < kMostHeaps; ++index) {
    if (HeapValidate(heaps[index], 0, of_runtime) != FALSE) {
      AddHeap(heaps[index], total.runtime_blocks, total.runtime_bytes);
    } else {
      AddHeap(heaps[index], total.system_blocks, total.system_bytes);
    }
  }
  std::free(of_runtime);
}

std::int64_t CountPrivateBytes() {
  std::int64_t bytes = 0;
  MEMORY_BASIC_INFORMATION area{};
  for (const char* at = nullptr; VirtualQuery(at, &area, sizeof(area)) != 0;) {
    if (area.State == MEM_COMMIT && area.Type == MEM_PRIVATE)
      bytes += static_cast<std::int64_t>(area.RegionSize);
    const char* next = static_cast<const char*>(area.BaseAddress) + area.RegionSize;
    if (next <= at) break;
    at = next;
  }
  return bytes;
}

std::int64_t CountThreads() {
  HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  std::int64_t count = 0;
  THREADENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL found = Thread32First(snapshot, &entry); found != FALSE; found = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  CloseHandle(snapshot);
  return count;
}

}  // namespace

Resources ReadResources() {
  Resources now;
  now.handles = clients::CountHandles();
  now.gdi_objects = CountGdiObjects();
  now.user_objects = CountUserObjects();
  now.threads = CountThreads();
  now.private_bytes = CountPrivateBytes();
  AddHeaps(now);
  return now;
}

}  // namespace kesp::soak
