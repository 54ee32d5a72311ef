// Keeps the 32-bit start-up code from registering our unwind tables in somebody else's DLL.
//
// The compiler's start-up code asks Windows for the compiler's shared runtime, libgcc_s_dw2-1.dll, and where
// a host has loaded it, registers the tables for exceptions there. Our unwinder is linked in and looks in its
// own list only: it would find nothing, and end the host at the first exception. So that code does not get to
// see the DLL. The linker sends all calls of GetModuleHandleA here (kesp_own_unwinder in
// cmake/KespOptions.cmake); the image then does not import that function, which tools/check-image looks at.

#include <windows.h>

namespace {

constexpr char kSharedRuntime[] = "libgcc_s_dw2-1.dll";

// GetModuleHandleA without that one name. It runs before anything of ours is set up.
HMODULE WINAPI FindModule(LPCSTR name) {
  if (name == nullptr) return GetModuleHandleW(nullptr);
  if (lstrcmpiA(name, kSharedRuntime) == 0) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  wchar_t wide_name[MAX_PATH];
  if (MultiByteToWideChar(CP_ACP, 0, name, -1, wide_name, MAX_PATH) == 0) return nullptr;
  return GetModuleHandleW(wide_name);
}

}  // namespace

// What the start-up code takes for the import's address.
extern "C" {
extern HMODULE(WINAPI* const kesp_find_module)(LPCSTR) __asm__("___wrap__imp__GetModuleHandleA@4");
HMODULE(WINAPI* const kesp_find_module)(LPCSTR) = &FindModule;
}
