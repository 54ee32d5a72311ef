// The settings-file seam: texts under a section and a key in INI-style files.
#pragma once

#include <string>

namespace kesp {

// A file looks like this; upper and lower case of sections and keys count alike:
//   [COM3]
//   InstrAddr=12
class SettingsFiles {
 public:
  virtual ~SettingsFiles() = default;

  // The text under the key; `otherwise` when the file, the section or the key is missing.
  virtual std::wstring Read(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                            const std::wstring& otherwise) = 0;

  // Stores the text and leaves everything else in the file as it was; the file is made when missing. False on
  // any failure.
  virtual bool Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                     const std::wstring& value) = 0;
};

}  // namespace kesp
