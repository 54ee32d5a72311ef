// Counting calls, letting one fail, and telling who made it.
#include "tests/faults/injector.h"

#include <cstdio>

namespace kesp::faults {

const char* NameOf(Resource resource) {
  constexpr const char* kNames[] = {"nothing",       "handles of the library",
                                    "sockets",       "uses of Winsock",
                                    "registry keys", "modules",
                                    "local memory",  "memory DCs",
                                    "window DCs",    "saved DCs",
                                    "GDI objects",   "image lists",
                                    "icons",         "themes",
                                    "contexts",      "active contexts",
                                    "window classes"};
  static_assert(std::size(kNames) == static_cast<std::size_t>(Resource::kCount));
  return kNames[static_cast<std::size_t>(resource)];
}

Import Import::Makes(Resource resource) && {
  state_->made = resource;
  return std::move(*this);
}

Import Import::TakesBack(Resource resource) && {
  state_->taken_back = resource;
  return std::move(*this).WorksAnyway();
}

Import Import::WorksAnyway() && {
  state_->works_anyway = true;
  return std::move(*this);
}

Import Import::ZeroIsSuccess() && {
  state_->zero_is_success = true;
  return std::move(*this);
}

void Injector::Begin(std::vector<Import> functions) {
  functions_ = std::move(functions);
  for (std::size_t i = 0; i < functions_.size(); ++i) functions_[i].state().number = i;
}

void Injector::Arm(const Fault* fault) {
  armed_ = false;
  injected_ = false;
  for (std::atomic<unsigned>& calls : calls_) calls = 0;
  stack_.clear();
  way_ = nullptr;
  if (fault != nullptr) {
    fault_ = *fault;
    way_ = &functions_[fault->function].ways()[fault->way];
  }
  armed_ = true;
}

const Way* Injector::Ask(std::size_t function) {
  if (!armed_) return nullptr;
  const unsigned call = ++calls_[function];
  if (way_ == nullptr || function != fault_.function || call != fault_.nth) return nullptr;
  injected_ = true;
  if (keeps_stacks) stack_ = StackHere();
  if (tells_stacks) {
    // At once, since the library may never return.
    for (const void* address : StackHere()) std::printf("    fails at %s\n", PlaceOf(address).c_str());
    std::fflush(stdout);
  }
  return way_;
}

Injector& TheInjector() {
  static Injector injector;
  return injector;
}

std::vector<void*> StackHere() {
  constexpr ULONG kMost = 40;
  std::vector<void*> stack(kMost);
  const DWORD error = GetLastError();
  stack.resize(RtlCaptureStackBackTrace(1, kMost, stack.data(), nullptr));
  SetLastError(error);
  return stack;
}

std::string PlaceOf(const void* address) {
  HMODULE module = nullptr;
  char path[MAX_PATH] = "?";
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     static_cast<const char*>(address), &module);
  if (module != nullptr) GetModuleFileNameA(module, path, sizeof path);
  const std::string whole = path;
  const std::size_t slash = whole.find_last_of('\\');
  char text[64];
  std::snprintf(text, sizeof text, "+0x%llx",
                static_cast<unsigned long long>(static_cast<const char*>(address) -
                                                reinterpret_cast<const char*>(module)));
  return whole.substr(slash == std::string::npos ? 0 : slash + 1) + text;
}

}  // namespace kesp::faults
