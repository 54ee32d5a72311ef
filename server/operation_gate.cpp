// One caller at a time.
#include "server/operation_gate.h"

#include <string>

#include "support/failure.h"

namespace kesp {

namespace {

constexpr wchar_t kBusy[] = L"The object is busy with an operation of another caller. Try again later.";

// The logical thread of the call that is being carried out. A thread without COM, which only a client that
// shares pointers can bring here, is known by its number.
GUID CurrentCaller() noexcept {
  GUID caller{};
  if (FAILED(CoGetCurrentLogicalThreadId(&caller))) caller = GUID{GetCurrentThreadId(), 0, 0, {}};
  return caller;
}

}  // namespace

OperationGate::Passage::Passage(OperationGate* gate, const wchar_t* class_name, const wchar_t* member)
    : gate_(gate) {
  if (gate == nullptr || gate->TryEnter()) return;
  throw Failure(RPC_E_SERVERCALL_RETRYLATER, std::wstring(L"[") + class_name + L" - " + member + L"]", kBusy);
}

OperationGate::Passage::~Passage() {
  if (gate_ != nullptr) gate_->Leave();
}

bool OperationGate::TryEnter() noexcept {
  const GUID caller = CurrentCaller();
  AcquireSRWLockExclusive(&lock_);
  const bool may_enter = depth_ == 0 || caller == caller_;
  if (may_enter) {
    caller_ = caller;
    ++depth_;
  }
  ReleaseSRWLockExclusive(&lock_);
  return may_enter;
}

void OperationGate::Leave() noexcept {
  AcquireSRWLockExclusive(&lock_);
  --depth_;
  ReleaseSRWLockExclusive(&lock_);
}

}  // namespace kesp
