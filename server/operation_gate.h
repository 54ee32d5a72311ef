// One caller at a time: who may carry out an operation of an object.
#pragma once

#include "server/com_headers.h"

namespace kesp {

// Stands before the operations of one object: the members that send, receive, wait or show a dialog. An
// operation handles the messages of its thread while it waits, and with them come calls from other
// apartments; such a call would read the reply to the command that is under way. Threads that share the
// object's pointer without marshalling are kept apart as well.
class OperationGate {
 public:
  // Lets the caller in, through a gate or (null) where there is none, for the length of its life. A caller is
  // a logical thread: a handler that calls back is the one whose operation raised the event, whatever
  // apartment it lives in, and gets in again.
  //
  // Throws Failure (RPC_E_SERVERCALL_RETRYLATER, with the source "[CKespTCP - ReadLine()]", for example)
  // while another caller is inside; its operation goes on undisturbed.
  class Passage {
   public:
    Passage(OperationGate* gate, const wchar_t* class_name, const wchar_t* member);
    ~Passage();
    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;

   private:
    OperationGate* gate_;
  };

 private:
  bool TryEnter() noexcept;
  void Leave() noexcept;

  SRWLOCK lock_ = SRWLOCK_INIT;
  GUID caller_{};
  int depth_ = 0;
};

}  // namespace kesp
