// Lists all that is registered below HKLM\Software\Classes, in both views where the program is a 64-bit one.
#include <cstdio>
#include <string>

#include "tests/clients/registry_view.h"

namespace {

std::string Utf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(text.size() * 3, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(),
                                       static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

}  // namespace

int main() {
  using kesp::clients::Hive;
  using kesp::clients::ValuesBelow;
  std::string all;
  for (const auto& [name, value] : ValuesBelow(Hive::kMachine, L"")) {
    all += Utf8(name) + " = " + Utf8(value) + "\n";
  }
  // One write, because each is a call of the server.
  std::fwrite(all.data(), 1, all.size(), stdout);
}
