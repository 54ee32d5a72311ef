// The one place that turns what the library throws into what COM clients see.
#pragma once

#include <utility>

#include "server/com_headers.h"

namespace kesp {

// The HRESULT of an error number: the library's own numbers (negative) as they are, a bare number such as
// 8005 by the automation convention for a control's error (facility control, 0x800A0000 plus the number), so
// that a script reads 8005.
HRESULT ResultOfNumber(long number);

// To be called in a catch block: sets the thread's error information (description and source, for the
// interface iid) and returns the HRESULT to be handed to the client.
HRESULT ReportException(REFIID iid) noexcept;

// The same for a late-bound call that failed outside of any member: what the client sees is in `exception`,
// which may be null.
HRESULT ReportLateException(EXCEPINFO* exception) noexcept;

// Returns the HRESULT after clearing the thread's error information, so that the client does not read that of
// an earlier call.
HRESULT FailWithoutInfo(HRESULT result) noexcept;

// The body of every published member: checks the out pointers, keeps the object alive while the call runs (a
// handler may drop the last reference), and lets no exception through.
template <class Object, class Body, class... OutPointers>
HRESULT Guarded(Object* object, REFIID iid, Body&& body, OutPointers*... out) noexcept {
  if (((out == nullptr) || ...)) return FailWithoutInfo(E_POINTER);
  object->AddRef();
  HRESULT result = S_OK;
  try {
    std::forward<Body>(body)();
  } catch (...) {
    result = ReportException(iid);
  }
  object->Release();
  return result;
}

}  // namespace kesp
