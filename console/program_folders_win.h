// The folders of this program, of Windows and of the other width, and the files in them.
#pragma once

#include <optional>
#include <string>

namespace kesp::console {

// In UTF-8, with a "\" behind.
std::string OwnFolder();
// The folder of the other width's edition beside that of this one: "...\win32\" beside "...\win64\". Empty
// where this one is no folder in a folder.
std::string OtherFolder();
std::string WindowsFolder();
// The system folder for programs of that width, as 64-bit programs name it: "C:\Windows\SysWOW64\" for 32.
std::string SystemFolder(int bits);

inline constexpr int kProgramBits = sizeof(void*) == 8 ? 64 : 32;
// Of Windows itself.
int WindowsBits();
// Whether programs of both widths run here.
bool RunsBothWidths();

// The bytes of a file, by the name under which 64-bit programs know it; nothing where it cannot be read.
std::optional<std::string> BytesOf(const std::string& path);
bool IsFile(const std::string& path);
// Opens a file that is there; else makes it, and deletes it.
bool CanAppendTo(const std::string& path);

}  // namespace kesp::console
