// Settings files as Windows itself reads and writes them.
#pragma once

#include "support/settings_files.h"

namespace kesp {

// On the system's own functions for initialization files, which take care of several programs writing at the
// same time. Reads 255 characters of a text at the most. A path without a folder names no file.
class SettingsFilesWin final : public SettingsFiles {
 public:
  std::wstring Read(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                    const std::wstring& otherwise) override;
  bool Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
             const std::wstring& value) override;
};

}  // namespace kesp
