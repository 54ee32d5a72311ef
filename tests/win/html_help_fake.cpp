// The jump at the beginning of HTML Help's function, and what comes by it.
#include "html_help_fake.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kesp {

namespace {

HtmlHelpFake* current = nullptr;

// mov (r)ax, target; jmp (r)ax
std::vector<BYTE> JumpTo(const void* target) {
  std::vector<BYTE> code(sizeof(target));
  std::memcpy(code.data(), &target, sizeof(target));
  code.insert(code.begin(), 0xB8);
  if (sizeof(target) == 8) code.insert(code.begin(), 0x48);
  code.insert(code.end(), {0xFF, 0xE0});
  return code;
}

}  // namespace

HtmlHelpFake::HtmlHelpFake()
    : function_(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"hhctrl.ocx"), "HtmlHelpW"))) {
  EXPECT_NE(function_, nullptr) << "the system has no HTML Help";
  const std::vector<BYTE> jump = JumpTo(reinterpret_cast<const void*>(&Record));
  original_.resize(jump.size());
  if (function_ == nullptr) return;
  std::memcpy(original_.data(), function_, original_.size());
  current = this;
  Overwrite(jump);
}

HtmlHelpFake::~HtmlHelpFake() {
  if (function_ != nullptr) Overwrite(original_);
  current = nullptr;
}

void HtmlHelpFake::Overwrite(const std::vector<BYTE>& code) const {
  DWORD protection = 0;
  EXPECT_NE(VirtualProtect(function_, code.size(), PAGE_EXECUTE_READWRITE, &protection), FALSE);
  std::memcpy(function_, code.data(), code.size());
  VirtualProtect(function_, code.size(), protection, &protection);
  FlushInstructionCache(GetCurrentProcess(), function_, code.size());
}

HWND WINAPI HtmlHelpFake::Record(HWND owner, const wchar_t* file, UINT command, DWORD_PTR data) {
  current->calls_.push_back({owner, file, command, data});
  return GetDesktopWindow();
}

}  // namespace kesp
