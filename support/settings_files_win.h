// Settings files as Windows itself reads and writes them.
#pragma once

#include "support/settings_files.h"

namespace kesp {

// On the system's own functions for initialization files. Reads 255 characters of a text at the most. A path
// without a folder names no file.
//
// Programs of one session change a file one after the other, unless a change takes longer than 50 ms, and
// each change puts a whole new file in place of the old one: a program that ends in the middle of it leaves
// one or the other, and perhaps the new one beside it with ".new" behind its name, which the next change
// takes away. Where the file cannot be replaced, it is written in place. A text that is there already is not
// written.
class SettingsFilesWin final : public SettingsFiles {
 public:
  std::wstring Read(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                    const std::wstring& otherwise) override;
  bool Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
             const std::wstring& value) override;
};

}  // namespace kesp
