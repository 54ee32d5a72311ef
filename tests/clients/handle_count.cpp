// Counting in the system's table of all handles: Wine answers GetProcessHandleCount with 0.
#include "tests/clients/handle_count.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace kesp::clients {

namespace {

// A row of the table, as NtQuerySystemInformation gives it: SYSTEM_HANDLE_TABLE_ENTRY_INFO_EX.
struct HandleRow {
  void* object;
  ULONG_PTR process;
  ULONG_PTR handle;
  ULONG access;
  USHORT creator;
  USHORT type;
  ULONG attributes;
  ULONG reserved;
};

// Before the rows.
struct TableHead {
  ULONG_PTR rows;
  ULONG_PTR reserved;
};

using Query = LONG(NTAPI*)(ULONG what, void* answer, ULONG size, ULONG* needed);

Query SystemQuery() {
  const auto found =
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation"));
  if (found == nullptr) throw std::runtime_error("the system has no table of handles");
  return reinterpret_cast<Query>(found);
}

}  // namespace

long CountHandles() {
  static const Query query = SystemQuery();
  constexpr ULONG kExtendedHandles = 64;
  constexpr auto kTooSmall = static_cast<LONG>(0xC0000004);
  constexpr std::size_t kFirstRows = 4096;
  thread_local std::vector<std::byte> table(sizeof(TableHead) + kFirstRows * sizeof(HandleRow));
  LONG status = kTooSmall;
  while ((status = query(kExtendedHandles, table.data(), static_cast<ULONG>(table.size()), nullptr)) ==
         kTooSmall)
    table.resize(2 * table.size());
  if (status < 0) throw std::runtime_error("the system does not tell its handles");
  const auto* head = reinterpret_cast<const TableHead*>(table.data());
  const auto* rows = reinterpret_cast<const HandleRow*>(head + 1);
  long count = 0;
  for (ULONG_PTR row = 0; row < head->rows; ++row) {
    if (rows[row].process == GetCurrentProcessId()) ++count;
  }
  if (count == 0) throw std::runtime_error("the system tells no handles of this process");
  return count;
}

}  // namespace kesp::clients
