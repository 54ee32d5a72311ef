// Files of the tests: in the temporary folder, and gone afterwards.
#pragma once

#include <string>

#include "support/lines_fixture.h"

namespace kesp::clients {

// The path of a file that does not exist yet. The file is removed at the end, whoever made it.
class TemporaryFile {
 public:
  TemporaryFile();
  explicit TemporaryFile(const std::wstring& path);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::wstring& path() const { return path_; }
  bool Exists() const;
  // Writes the file as one last changed that many days ago; returns that day as YYYY-MM-DD.
  std::wstring WriteDaysAgo(int days, const std::string& content) const;
  std::string Content() const;
  // Of each line of a log (date, TAB, tick count, TAB, message) the message.
  Lines Messages() const;

 private:
  std::wstring path_;
};

}  // namespace kesp::clients
