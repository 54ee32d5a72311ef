// Joining and splitting of path texts.
#include "support/paths.h"

namespace kesp {

namespace {

constexpr wchar_t kSeparators[] = L"\\/";

bool IsSeparator(wchar_t c) {
  return c == L'\\' || c == L'/';
}

std::wstring Join(const std::wstring& folder, const std::wstring& name) {
  if (folder.empty() || name.empty()) return folder + name;
  if (IsSeparator(folder.back())) return folder + name.substr(IsSeparator(name.front()) ? 1 : 0);
  if (IsSeparator(name.front()) || folder.back() == L':') return folder + name;
  return folder + L"\\" + name;
}

std::wstring LastComponent(const std::wstring& path) {
  const std::size_t root = path.size() >= 2 && path[1] == L':' ? 2 : 0;
  const std::size_t last = path.find_last_not_of(kSeparators);
  if (last == std::wstring::npos || last < root) return {};
  const std::size_t separator = path.find_last_of(kSeparators, last);
  const std::size_t first = separator == std::wstring::npos ? root : separator + 1;
  return path.substr(first, last - first + 1);
}

// The result of a step that may run out of memory, or an empty text.
template <typename Step>
std::wstring OrEmpty(Step step) noexcept {
  try {
    return step();
  } catch (...) {
    return {};
  }
}

}  // namespace

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) noexcept {
  return OrEmpty([&] { return Join(folder, name); });
}

std::wstring FolderOfPath(const std::wstring& path) noexcept {
  // Without a "\" npos + 1 is 0: an empty folder.
  return OrEmpty([&] { return path.substr(0, path.rfind(L'\\') + 1); });
}

std::wstring FileNameOfPath(const std::wstring& path) noexcept {
  return OrEmpty([&] { return LastComponent(path); });
}

}  // namespace kesp
