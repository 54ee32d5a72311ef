// Calls by name, with references and arrays; and a handler that calls back.
#include <vector>

#include "tests/clients/late_object.h"
#include "tests/faults/scenarios.h"
#include "tests/faults/tcp_stage.h"

namespace kesp::faults {

namespace {

using clients::Plain;
using clients::Reference;
using clients::Variable;

// A call by name as a script makes it; false when it failed.
bool Call(IDispatch* object, const wchar_t* name, WORD flags, std::vector<VARIANT> arguments, Value& result,
          Verdict& verdict) {
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<LPOLESTR>(name);
  const HRESULT found = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  if (!verdict.SucceededBarely(found, "GetIDsOfNames")) return false;
  DISPID put = DISPID_PROPERTYPUT;
  const bool is_put = (flags & DISPATCH_PROPERTYPUT) != 0;
  DISPPARAMS given{.rgvarg = arguments.data(),
                   .rgdispidNamedArgs = is_put ? &put : nullptr,
                   .cArgs = static_cast<UINT>(arguments.size()),
                   .cNamedArgs = is_put ? 1u : 0u};
  EXCEPINFO exception{};
  UINT bad = 0;
  const HRESULT called =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &given, result.get(), &exception, &bad);
  if (called == DISP_E_EXCEPTION) verdict.Expect(FAILED(exception.scode), "an exception without its number");
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return verdict.SucceededBarely(called, "Invoke");
}

bool IsTrue(const Value& answer, Verdict& verdict) {
  return verdict.Answered(S_OK, answer.type() == VT_BOOL ? V_BOOL(answer.get()) : kUnset, "a call by name");
}

class LateCalls : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    Property(verdict);
    ReplyInVariable(verdict);
    ReplyInText(verdict);
    ReplyInArray(verdict);
  }

 private:
  void Property(Verdict& verdict) const {
    Value none;
    const Value new_value(250);
    if (!Call(comm_.Get(), L"BinaryTimeoutms", DISPATCH_PROPERTYPUT, {Plain(new_value)}, none, verdict))
      return;
    Value read;
    if (!Call(comm_.Get(), L"BinaryTimeoutms", DISPATCH_PROPERTYGET, {}, read, verdict)) return;
    verdict.Expect(read.type() == VT_I4 && V_I4(read.get()) == 250, "the property has another value");
    Value held;
    if (!Call(comm_.Get(), L"CommObject", DISPATCH_PROPERTYGET, {}, held, verdict)) return;
    verdict.Expect(held.type() == VT_DISPATCH && V_DISPATCH(held.get()) != nullptr, "there is no transport");
  }

  // As VBScript does: a variable that holds anything.
  void ReplyInVariable(Verdict& verdict) const {
    Value reply(L"before");
    const Value command(L"*IDN?");
    Value answer;
    if (!Call(comm_.Get(), L"Query", DISPATCH_METHOD, {Plain(command), Variable(reply)}, answer, verdict))
      return;
    verdict.Expect(!IsTrue(answer, verdict) || reply.text() == kTcpIdentity,
                   "Query by name gives another reply");
    Value bytes;
    if (!Call(comm_.Get(), L"QueryBinary", DISPATCH_METHOD, {Plain(command), Variable(bytes)}, answer,
              verdict)) {
      return;
    }
    verdict.Expect(!IsTrue(answer, verdict) || BytesIn(*bytes.get()) == "KESP,TORTURE,SIM00666,1.0\r",
                   "QueryBinary by name gives other bytes");
  }

  // As VBA does: a typed variable.
  void ReplyInText(Verdict& verdict) const {
    Text reply(L"before");
    const Value command(L"*IDN?");
    Value answer;
    if (!Call(comm_.Get(), L"Query", DISPATCH_METHOD, {Plain(command), Reference(reply.in_out())}, answer,
              verdict)) {
      return;
    }
    verdict.Expect(!IsTrue(answer, verdict) || reply.str() == kTcpIdentity,
                   "Query by name gives another reply");
  }

  void ReplyInArray(Verdict& verdict) const {
    Value bytes;
    V_VT(bytes.get()) = VT_ARRAY | VT_UI1;
    V_ARRAY(bytes.get()) = SafeArrayCreateVector(VT_UI1, 0, 3);
    const Value command(L"ECHO a");
    Value answer;
    if (!Call(comm_.Get(), L"QueryBinary", DISPATCH_METHOD,
              {Plain(command), Reference(&V_ARRAY(bytes.get()))}, answer, verdict)) {
      return;
    }
    verdict.Expect(!IsTrue(answer, verdict) || BytesIn(*bytes.get()) == "ECHO a\r",
                   "QueryBinary gives other bytes");
  }
};

// A handler that asks the object that raised the event for something.
class Events : public TcpScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    if (!verdict.SucceededBarely(sink_.Connect(transport_.Get(), __uuidof(__CKespTCP)), "Advise")) return;
    ComPtr<IEnumConnections> connections;
    const HRESULT listed = sink_.point()->EnumConnections(connections.GetAddressOf());
    if (verdict.SucceededBarely(listed, "EnumConnections")) {
      CONNECTDATA connection{};
      ULONG fetched = 0;
      if (connections->Next(1, &connection, &fetched) == S_OK) connection.pUnk->Release();
    }
    QueryGives(comm_.Get(), L"*IDN?", kTcpIdentity, verdict);
  }

  void WorkAgain(Verdict& verdict) override {
    const int before = sink_.heard();
    TcpScenario::WorkAgain(verdict);
    if (sink_.is_connected()) verdict.Expect(sink_.heard() > before, "the handler hears no more events");
  }

 private:
  void Ask() const {
    EKespTCPState state = sckClosed;
    transport_->get_State(&state);
    Text address;
    transport_->get_IPAddress(address.out());
  }

  clients::BareSink sink_{[this] { Ask(); }};
};

}  // namespace

std::unique_ptr<Scenario> MakeLateCalls() {
  return std::make_unique<LateCalls>();
}

std::unique_ptr<Scenario> MakeEvents() {
  return std::make_unique<Events>();
}

}  // namespace kesp::faults
