// Reads an extended dialog template and writes it anew with another font.
#include "dialogs/dialog_template_win.h"

#include <cstring>
#include <stdexcept>
#include <string>

#include "dialogs/activation_context_win.h"

namespace kesp {

namespace {

// The fixed part of an extended template up to its menu (DLGTEMPLATEEX, which no header declares).
constexpr std::size_t kFixedPart = 26;
// Point size, weight, italic and character set, which stand before the name of the font.
constexpr std::size_t kFontFields = 6;

template <typename Value>
Value ReadAt(const std::uint8_t* at) {
  Value value;
  std::memcpy(&value, at, sizeof(value));
  return value;
}

template <typename Value>
void Append(std::vector<std::uint8_t>& bytes, Value value) {
  const auto* begin = reinterpret_cast<const std::uint8_t*>(&value);
  bytes.insert(bytes.end(), begin, begin + sizeof(value));
}

std::size_t SizeOfText(const std::uint8_t* at) {
  std::size_t size = 2;
  while (ReadAt<std::uint16_t>(at + size - 2) != 0) size += 2;
  return size;
}

// Of the menu or the window class: a text, or 0xFFFF and a number.
std::size_t SizeOfName(const std::uint8_t* at) {
  return ReadAt<std::uint16_t>(at) == 0xFFFF ? 4 : SizeOfText(at);
}

std::size_t Aligned(std::size_t size) {
  return (size + 3) & ~std::size_t{3};
}

LOGFONTW MessageFont() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  return metrics.lfMessageFont;
}

// 0 or less when the system does not tell.
int PointSize(const LOGFONTW& font) {
  const HDC screen = GetDC(nullptr);
  if (screen == nullptr) return 0;
  const int dots_per_inch = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return MulDiv(font.lfHeight < 0 ? -font.lfHeight : font.lfHeight, 72, dots_per_inch);
}

}  // namespace

std::vector<std::uint8_t> DialogInSystemFont(int resource) {
  const HMODULE module = ThisModule();
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(resource), MAKEINTRESOURCEW(5));  // RT_DIALOG
  const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(module, found);
  const auto* old = static_cast<const std::uint8_t*>(loaded == nullptr ? nullptr : LockResource(loaded));
  const std::size_t size = old == nullptr ? 0 : SizeofResource(module, found);
  if (size == 0) throw std::runtime_error("The dialog's resource is missing");

  std::size_t font = kFixedPart;
  font += SizeOfName(old + font);
  font += SizeOfName(old + font);
  font += SizeOfText(old + font);
  const std::size_t controls = Aligned(font + kFontFields + SizeOfText(old + font + kFontFields));

  const LOGFONTW message = MessageFont();
  const int points = PointSize(message);
  // Without the system's font the dialog has its own.
  if (points <= 0) return {old, old + size};
  std::vector<std::uint8_t> bytes(old, old + font);
  Append(bytes, static_cast<std::uint16_t>(points));
  Append(bytes, static_cast<std::uint16_t>(message.lfWeight));
  Append(bytes, message.lfItalic);
  Append(bytes, message.lfCharSet);
  for (const wchar_t* letter = message.lfFaceName; *letter != L'\0'; ++letter) Append(bytes, *letter);
  Append(bytes, L'\0');
  bytes.resize(Aligned(bytes.size()));
  bytes.insert(bytes.end(), old + controls, old + size);
  return bytes;
}

}  // namespace kesp
