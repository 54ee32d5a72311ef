// A part of the screen, written as a PNG file by the system's own encoder.
#include "window_picture.h"

// clang-format off
#include <objidl.h>
#include <gdiplus.h>
// clang-format on

namespace kesp {

namespace {

// The encoder for PNG files (documented with the Image class of GDI+).
constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

HBITMAP CopyOfScreen(const RECT& area) {
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY);
  SelectObject(memory, before);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return bitmap;
}

}  // namespace

bool PictureWindow(HWND window, const std::wstring& file) {
  RECT area{};
  GetWindowRect(window, &area);
  ULONG_PTR token = 0;
  const Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return false;
  const HBITMAP copy = CopyOfScreen(area);
  bool written = false;
  {
    Gdiplus::Bitmap picture(copy, nullptr);
    written = picture.Save(file.c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
  }
  DeleteObject(copy);
  Gdiplus::GdiplusShutdown(token);
  return written;
}

}  // namespace kesp
