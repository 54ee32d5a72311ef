// Texts of COM, and its error information.
#include "console/com_calls_win.h"

#include "console/error_names_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {
std::string SystemText(HRESULT result) {
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::wstring_view said(text, length);
  while (!said.empty() && (said.back() == L'\n' || said.back() == L'\r' || said.back() == L'.'))
    said.remove_suffix(1);
  std::string utf8 = ToUtf8(said);
  LocalFree(text);
  return utf8.empty() ? "The call failed" : utf8;
}

ComText::ComText(std::string_view utf8) {
  const std::wstring wide = ToWide(utf8);
  text_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::string ComText::str() const {
  return ToUtf8({text_, SysStringLen(text_)});
}

void Check(HRESULT result) {
  if (SUCCEEDED(result)) return;
  ComText source;
  ComText description;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, &info) == S_OK) {
    info->GetSource(source.out());
    info->GetDescription(description.out());
  }
  const std::string said = description.str();
  throw LibraryError(ErrorName(result), source.str(), said.empty() ? SystemText(result) : said);
}

}  // namespace kesp::console
