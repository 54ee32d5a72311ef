// Host look-ups by the system's asynchronous database routines.
#include "network/host_lookup_win.h"

#include <cstring>

namespace kesp {

HostLookup::~HostLookup() {
  Cancel();
  for (auto& [task, buffer] : under_way_) static_cast<void>(buffer.release());
}

int HostLookup::Start(HWND window, UINT message, const std::string& name) {
  auto buffer = std::make_unique<Buffer>();
  const HANDLE task = WSAAsyncGetHostByName(window, message, name.c_str(), buffer->bytes,
                                            static_cast<int>(sizeof buffer->bytes));
  if (task == nullptr) return WSAGetLastError();
  current_ = task;
  under_way_[task] = std::move(buffer);
  return 0;
}

void HostLookup::Cancel() {
  if (current_ != nullptr) WSACancelAsyncRequest(current_);
  current_ = nullptr;
}

HostLookup::Result HostLookup::Finish(WPARAM wparam, LPARAM lparam) {
  const auto task = reinterpret_cast<HANDLE>(wparam);
  if (task == current_) current_ = nullptr;
  const auto found = under_way_.find(task);
  if (found == under_way_.end()) return {WSAHOST_NOT_FOUND, 0};
  const std::unique_ptr<Buffer> buffer = std::move(found->second);
  under_way_.erase(found);
  if (const int error = WSAGETASYNCERROR(lparam)) return {error, 0};
  const auto* const host = reinterpret_cast<const hostent*>(buffer->bytes);
  if (host->h_addrtype != AF_INET || host->h_addr_list[0] == nullptr) return {WSANO_DATA, 0};
  Result result;
  std::memcpy(&result.address, host->h_addr_list[0], sizeof result.address);
  return result;
}

}  // namespace kesp
