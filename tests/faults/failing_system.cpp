// How the system's functions for files, COM ports, the registry and modules fail.
#include <windows.h>
#include <winsock2.h>

#include "tests/faults/functions.h"
#include "tests/faults/hook.h"

namespace kesp::faults {

namespace {

// INVALID_HANDLE_VALUE.
constexpr std::intptr_t kInvalid = -1;

std::vector<Way> NoMemoryOr(std::vector<DWORD> errors) {
  std::vector<Way> ways = {{0, ERROR_NOT_ENOUGH_MEMORY}};
  for (const DWORD error : errors) ways.push_back({0, error});
  return ways;
}

// Functions of the registry return their error.
std::vector<Way> KeyErrors() {
  return {{ERROR_ACCESS_DENIED, 0},
          {ERROR_FILE_NOT_FOUND, 0},
          {ERROR_NOT_ENOUGH_MEMORY, 0},
          {ERROR_KEY_DELETED, 0}};
}

void AddRegistry(std::vector<Import>& functions) {
  functions.push_back(
      Fails<&RegCreateKeyExW>("RegCreateKeyExW", KeyErrors()).Makes(Resource::kKey).ZeroIsSuccess());
  functions.push_back(
      Fails<&RegOpenKeyExW>("RegOpenKeyExW", KeyErrors()).Makes(Resource::kKey).ZeroIsSuccess());
  functions.push_back(Fails<&RegCloseKey>("RegCloseKey", {{ERROR_INVALID_HANDLE, 0}})
                          .TakesBack(Resource::kKey)
                          .ZeroIsSuccess());
  functions.push_back(Fails<&RegDeleteKeyExW>("RegDeleteKeyExW", KeyErrors()));
  functions.push_back(Fails<&RegDeleteTreeW>("RegDeleteTreeW", KeyErrors()));
  functions.push_back(Fails<&RegGetValueW>("RegGetValueW", KeyErrors()));
  functions.push_back(Fails<&RegQueryInfoKeyW>("RegQueryInfoKeyW", KeyErrors()));
  functions.push_back(Fails<&RegSetValueExW>("RegSetValueExW", KeyErrors()));
}

void AddFiles(std::vector<Import>& functions) {
  functions.push_back(Fails<&CreateFileW>("CreateFileW", {{kInvalid, ERROR_FILE_NOT_FOUND},
                                                          {kInvalid, ERROR_ACCESS_DENIED},
                                                          {kInvalid, ERROR_SHARING_VIOLATION},
                                                          {kInvalid, ERROR_TOO_MANY_OPEN_FILES}})
                          .Makes(Resource::kHandle));
  functions.push_back(
      Fails<&CloseHandle>("CloseHandle", {{0, ERROR_INVALID_HANDLE}}).TakesBack(Resource::kHandle));
  functions.push_back(Fails<&ReadFile>("ReadFile", NoMemoryOr({ERROR_IO_DEVICE, ERROR_OPERATION_ABORTED,
                                                               ERROR_ACCESS_DENIED, ERROR_GEN_FAILURE})));
  functions.push_back(Fails<&WriteFile>(
      "WriteFile",
      NoMemoryOr({ERROR_DISK_FULL, ERROR_IO_DEVICE, ERROR_OPERATION_ABORTED, ERROR_GEN_FAILURE})));
  functions.push_back(Fails<&CancelIoEx>("CancelIoEx", {{0, ERROR_NOT_FOUND}, {0, ERROR_INVALID_HANDLE}}));
  functions.push_back(Fails<&GetFileAttributesExW>("GetFileAttributesExW",
                                                   {{0, ERROR_FILE_NOT_FOUND}, {0, ERROR_ACCESS_DENIED}}));
  functions.push_back(Fails<&GetFileType>("GetFileType", {{FILE_TYPE_UNKNOWN, ERROR_INVALID_HANDLE}}));
  functions.push_back(
      Fails<&MoveFileExW>("MoveFileExW", {{0, ERROR_ACCESS_DENIED}, {0, ERROR_FILE_NOT_FOUND}}));
  functions.push_back(Fails<&CopyFileW>(
      "CopyFileW", {{0, ERROR_ACCESS_DENIED}, {0, ERROR_SHARING_VIOLATION}, {0, ERROR_DISK_FULL}}));
  functions.push_back(Fails<&DeleteFileW>("DeleteFileW", {{0, ERROR_ACCESS_DENIED}}));
  functions.push_back(Fails<&SetFileAttributesW>("SetFileAttributesW", {{0, ERROR_ACCESS_DENIED}}));
  functions.push_back(
      Fails<&CreateMutexW>("CreateMutexW", NoMemoryOr({ERROR_ACCESS_DENIED})).Makes(Resource::kHandle));
  functions.push_back(Fails<&WaitForSingleObject>(
      "WaitForSingleObject", {{WAIT_TIMEOUT, 0},
                              {WAIT_ABANDONED, 0},
                              {static_cast<std::intptr_t>(WAIT_FAILED), ERROR_INVALID_HANDLE}}));
  functions.push_back(Fails<&GetTempPathW>("GetTempPathW", NoMemoryOr({ERROR_ENVVAR_NOT_FOUND})));
  // It returns what it was given as the default; its error tells nothing that a client can use.
  functions.push_back(
      Fails<&GetPrivateProfileStringW>("GetPrivateProfileStringW", {{0, ERROR_FILE_NOT_FOUND}}));
  functions.push_back(Fails<&WritePrivateProfileStringW>("WritePrivateProfileStringW",
                                                         {{0, ERROR_ACCESS_DENIED}, {0, ERROR_DISK_FULL}}));
}

void AddPorts(std::vector<Import>& functions) {
  const std::vector<Way> lost = {
      {0, ERROR_ACCESS_DENIED}, {0, ERROR_IO_DEVICE}, {0, ERROR_INVALID_PARAMETER}};
  functions.push_back(Fails<&ClearCommError>("ClearCommError", lost));
  functions.push_back(Fails<&EscapeCommFunction>("EscapeCommFunction", lost));
  functions.push_back(Fails<&GetCommProperties>("GetCommProperties", lost));
  functions.push_back(Fails<&GetCommState>("GetCommState", lost));
  functions.push_back(Fails<&SetCommState>("SetCommState", lost));
  functions.push_back(Fails<&SetCommTimeouts>("SetCommTimeouts", lost));
  functions.push_back(Fails<&SetupComm>("SetupComm", lost));
  functions.push_back(Fails<&PurgeComm>("PurgeComm", lost));
}

void AddModules(std::vector<Import>& functions) {
  functions.push_back(Fails<&GetModuleFileNameW>("GetModuleFileNameW", NoMemoryOr({})));
  functions.push_back(Fails<&GetModuleHandleExW>("GetModuleHandleExW", {{0, ERROR_MOD_NOT_FOUND}}));
  functions.push_back(Fails<&GetModuleHandleW>("GetModuleHandleW", {{0, ERROR_MOD_NOT_FOUND}}));
  functions.push_back(Fails<&GetProcAddress>("GetProcAddress", {{0, ERROR_PROC_NOT_FOUND}}));
  functions.push_back(
      Fails<&LoadLibraryExW>("LoadLibraryExW", NoMemoryOr({ERROR_MOD_NOT_FOUND, ERROR_BAD_EXE_FORMAT}))
          .Makes(Resource::kModule));
  functions.push_back(
      Fails<&LoadLibraryW>("LoadLibraryW", NoMemoryOr({ERROR_MOD_NOT_FOUND})).Makes(Resource::kModule));
  functions.push_back(
      Fails<&FreeLibrary>("FreeLibrary", {{0, ERROR_INVALID_HANDLE}}).TakesBack(Resource::kModule));
  functions.push_back(Fails<&GetSystemDirectoryW>("GetSystemDirectoryW", NoMemoryOr({})));
  functions.push_back(Fails<&FindResourceW>("FindResourceW", {{0, ERROR_RESOURCE_NAME_NOT_FOUND}}));
  functions.push_back(Fails<&LoadResource>("LoadResource", {{0, ERROR_RESOURCE_DATA_NOT_FOUND}}));
  functions.push_back(Fails<&LockResource>("LockResource", {{0, ERROR_INVALID_HANDLE}}));
  functions.push_back(Fails<&SizeofResource>("SizeofResource", {{0, ERROR_RESOURCE_NAME_NOT_FOUND}}));
  functions.push_back(Fails<&CreateActCtxW>("CreateActCtxW", {{kInvalid, ERROR_NOT_ENOUGH_MEMORY},
                                                              {kInvalid, ERROR_SXS_CANT_GEN_ACTCTX}})
                          .Makes(Resource::kContext));
  functions.push_back(Fails<&ReleaseActCtx>("ReleaseActCtx", {}).TakesBack(Resource::kContext));
  functions.push_back(Fails<&ActivateActCtx>("ActivateActCtx", NoMemoryOr({ERROR_INVALID_PARAMETER}))
                          .Makes(Resource::kActiveContext));
  functions.push_back(Fails<&DeactivateActCtx>("DeactivateActCtx", {{0, ERROR_INVALID_PARAMETER}})
                          .TakesBack(Resource::kActiveContext));
}

void AddText(std::vector<Import>& functions) {
  functions.push_back(
      Fails<&MultiByteToWideChar>("MultiByteToWideChar", {{0, ERROR_NO_UNICODE_TRANSLATION}}));
  functions.push_back(
      Fails<&WideCharToMultiByte>("WideCharToMultiByte", {{0, ERROR_NO_UNICODE_TRANSLATION}}));
  functions.push_back(Fails<&CompareStringW>("CompareStringW", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(Fails<&GetCPInfo>("GetCPInfo", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(Fails<&GetLocaleInfoW>("GetLocaleInfoW", {{0, ERROR_INVALID_FLAGS}}));
  functions.push_back(Fails<&GetDateFormatW>("GetDateFormatW", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(Fails<&GetTimeFormatW>("GetTimeFormatW", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(Fails<&FileTimeToSystemTime>("FileTimeToSystemTime", {{0, ERROR_INVALID_PARAMETER}}));
  functions.push_back(
      Fails<&SystemTimeToTzSpecificLocalTime>("SystemTimeToTzSpecificLocalTime", NoMemoryOr({})));
}

void AddThreads(std::vector<Import>& functions) {
  functions.push_back(Fails<&FlsAlloc>(
      "FlsAlloc", {{static_cast<std::intptr_t>(FLS_OUT_OF_INDEXES), ERROR_NOT_ENOUGH_MEMORY}}));
  functions.push_back(Fails<&FlsSetValue>("FlsSetValue", NoMemoryOr({})));
  functions.push_back(Fails<&SetThreadErrorMode>("SetThreadErrorMode", {{0, ERROR_INVALID_PARAMETER}}));
  // Used by the runtime that is linked in: its locks and its data for each thread.
  functions.push_back(Fails<&CreateEventA>("CreateEventA", NoMemoryOr({})).Makes(Resource::kHandle));
  functions.push_back(Fails<&CreateSemaphoreA>("CreateSemaphoreA", NoMemoryOr({})).Makes(Resource::kHandle));
  functions.push_back(Fails<&DuplicateHandle>("DuplicateHandle", NoMemoryOr({})).Makes(Resource::kHandle));
  functions.push_back(Fails<&TlsAlloc>(
      "TlsAlloc", {{static_cast<std::intptr_t>(TLS_OUT_OF_INDEXES), ERROR_NOT_ENOUGH_MEMORY}}));
  functions.push_back(Fails<&TlsSetValue>("TlsSetValue", NoMemoryOr({})));
}

}  // namespace

void AddSystemFunctions(std::vector<Import>& functions) {
  AddRegistry(functions);
  AddFiles(functions);
  AddPorts(functions);
  AddModules(functions);
  AddText(functions);
  AddThreads(functions);
}

}  // namespace kesp::faults
