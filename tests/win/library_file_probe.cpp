// A DLL that tells which file its own copy of the support room takes for the library's.
#include <cwchar>

#include "support/files_win.h"

// Copies the path, cut off at `size` characters, closing NUL included.
extern "C" __declspec(dllexport) void CopyLibraryFile(wchar_t* path, std::size_t size) {
  std::wcsncpy(path, kesp::FilesWin().LibraryFile().c_str(), size - 1);
  path[size - 1] = L'\0';
}
