// Operations that arrive while another caller's operation is under way on the same object.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/late_object.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kBusy[] = L"The object is busy with an operation of another caller. Try again later.";

// Methods that are no operations: anybody may call them meanwhile.
const std::set<std::wstring> kNoOperations = {L"GetKey", L"GetSettings", L"BaudRateName", L"PortExists",
                                              L"IsPortAvailable"};

// An argument for a parameter of that type: a variable that takes a result, a text, or a number.
VARIANT ArgumentFor(const TYPEDESC& type, Value& variable) {
  static const Value text(L"*IDN?");
  if (type.vt == VT_PTR) return Variable(variable);
  return type.vt == VT_BSTR ? Plain(text) : Plain(Value(0));
}

// Calls each method of the object's class, or that of the name alone, with its required arguments.
void ForEachMethod(IDispatch* dispatch, const std::function<void(const std::wstring&, const Outcome&)>& look,
                   const std::wstring& only = {}) {
  const LateObject object(dispatch);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(dispatch->GetTypeInfo(0, 0, &info), S_OK);
  FUNCDESC* function = nullptr;
  for (UINT i = 0; info->GetFuncDesc(i, &function) == S_OK; ++i) {
    Text name;
    info->GetDocumentation(function->memid, name.out(), nullptr, nullptr, nullptr);
    std::vector<Value> variables(static_cast<std::size_t>(function->cParams));
    std::vector<VARIANT> arguments;
    for (std::size_t n = 0; n < variables.size(); ++n) {
      const ELEMDESC& parameter = function->lprgelemdescParam[n];
      if ((parameter.paramdesc.wParamFlags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0) break;
      arguments.push_back(ArgumentFor(parameter.tdesc, variables[n]));
    }
    const bool is_own_method = function->memid < 0x60000000 && function->invkind == INVOKE_FUNC;
    info->ReleaseFuncDesc(function);
    if (is_own_method && (only.empty() || name.str() == only))
      look(name.str(), object.Call(name.str(), arguments));
  }
}

// The outcome of the one method of that name.
Outcome CallWithArguments(IDispatch* object, const std::wstring& method) {
  Outcome outcome;
  outcome.result = E_FAIL;
  ForEachMethod(
      object, [&](const std::wstring&, const Outcome& called) { outcome = called; }, method);
  return outcome;
}

void ExpectBusy(const Outcome& outcome, const std::wstring& source) {
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, RPC_E_SERVERCALL_RETRYLATER);
  EXPECT_EQ(outcome.source, source);
  EXPECT_EQ(outcome.description, kBusy);
}

void ExpectAllBusy(IDispatch* object, const std::wstring& class_name) {
  int operations = 0;
  ForEachMethod(object, [&](const std::wstring& method, const Outcome& outcome) {
    SCOPED_TRACE(testing::PrintToString(class_name + L" " + method));
    if (kNoOperations.contains(method)) {
      EXPECT_EQ(outcome.result, S_OK);
      return;
    }
    ++operations;
    ExpectBusy(outcome, L"[" + class_name + L" - " + method + L"()]");
  });
  EXPECT_GE(operations, 5);
}

// Another caller, while this one is held in the middle of its operation. It has the pointer itself, not a
// proxy.
void FromAnotherThread(const std::function<void()>& work) {
  std::thread([&] {
    const Apartment apartment(COINIT_MULTITHREADED);
    work();
  }).join();
}

// Each transport, and the communication object with the transport that it works through.
struct Way {
  const wchar_t* transport;
  ECommStyle style;
  const CLSID& clsid;
  const IID& events;
  const wchar_t* operation;  // one that needs no device but that of the network
  const wchar_t* event;      // which is raised in it
  const wchar_t* closing;    // an operation that works without a device, for afterwards
};

const Way kWays[] = {
    {L"CKespCOMPort3", csRS232, __uuidof(CKespCOMPort3), __uuidof(__CKespCOMPort3), L"AutoDetect",
     L"AutoDetectBegin", L"SetInputMode"},
    {L"CKespTCP", csTCPIP, __uuidof(CKespTCP), __uuidof(__CKespTCP), L"Initialize", L"ConnectBegin",
     L"Uninitialize"},
    {L"CKespIEEE", csIEEE, __uuidof(CKespIEEE), __uuidof(__CKespIEEE), L"AutoDetect", L"AutoDetectBegin",
     L"Uninitialize"},
};

class BusyTest : public testing::TestWithParam<Way> {
 protected:
  // Runs `work` on another thread in the middle of an operation of the transport, and has that end early.
  void During(IUnknown* transport, const std::function<void()>& work) {
    recorder_->handlers[GetParam().event] = [&, work](DISPPARAMS&) {
      ++times_;
      FromAnotherThread(work);
    };
    recorder_->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    connection_ = std::make_unique<Connection>(transport, GetParam().events, recorder_.Get());
  }
  // A communication object that uses the transport, which is returned.
  ComPtr<IDispatch> UseTransport() {
    UseInstrument(comm_.Get());
    EXPECT_EQ(WriteByReference(comm_, &_CKespCommObj::put_CommStyle, GetParam().style), S_OK);
    return ReadObject(comm_, &_CKespCommObj::get_CommObject);
  }
  void TearDown() override { EXPECT_EQ(times_, 1); }

  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(GetParam().events);
  std::unique_ptr<Connection> connection_;
  int times_ = 0;
};

TEST_P(BusyTest, OperationOfTheTransportUnderWay_OthersAreRefusedAndItGoesOn) {
  const auto transport = Create<IDispatch>(GetParam().clsid);
  ComPtr<_CKespTCP> tcp;
  if (SUCCEEDED(transport.As(&tcp))) SetTarget(tcp.Get());
  During(transport.Get(), [&] { ExpectAllBusy(transport.Get(), GetParam().transport); });
  EXPECT_EQ(CallWithArguments(transport.Get(), GetParam().operation).result, S_OK);
  // Nobody is inside any more.
  EXPECT_EQ(CallWithArguments(transport.Get(), GetParam().closing).result, S_OK);
  FromAnotherThread([&] { EXPECT_EQ(CallWithArguments(transport.Get(), GetParam().closing).result, S_OK); });
}

TEST_P(BusyTest, OperationOfTheCommunicationObjectUnderWay_OthersAreRefusedOnItAndOnItsTransport) {
  const auto transport = UseTransport();
  During(transport.Get(), [&] {
    ExpectAllBusy(comm_.Get(), L"CKespCommObj");
    ExpectBusy(LateObject(comm_).Put(L"CommStyle", Plain(Value(csNone))), L"[CKespCommObj - CommStyle]");
    ExpectAllBusy(transport.Get(), GetParam().transport);
  });
  if (GetParam().style == csTCPIP) {
    OtherCommObj client(comm_);
    EXPECT_TRUE(client.Query(L"*IDN?"));
    EXPECT_EQ(client.reply_.str(), kIdentity) << "the first operation is not disturbed";
    client.ExpectStatus(cfrSuccess);
  } else {
    EXPECT_EQ(CallWithArguments(comm_.Get(), L"DetectInstrument").result, S_OK);
  }
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommStyle), GetParam().style);
}

TEST_P(BusyTest, OperationOfTheTransportUnderWay_TheCommunicationObjectIsRefused) {
  const auto transport = UseTransport();
  During(transport.Get(),
         [&] { ExpectBusy(CallWithArguments(comm_.Get(), L"Update"), L"[CKespCommObj - Update()]"); });
  EXPECT_EQ(CallWithArguments(transport.Get(), GetParam().operation).result, S_OK);
}

INSTANTIATE_TEST_SUITE_P(Transports, BusyTest, testing::ValuesIn(kWays), [](const auto& info) {
  const std::wstring name = info.param.transport;
  return std::string(name.begin(), name.end());
});

// Through marshalling: the wait of the first query handles the messages by which the second one arrives. The
// threads start one after the other, because Wine may hang where several set up COM at once.
TEST(SharedObjectTest, SecondThreadsQuery_IsRefusedAndTheFirstGetsItsOwnReply) {
  const Apartment apartment;
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  const auto tcp = UseInstrument(comm.Get());
  const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get());
  Passage<_CKespCommObj> second(comm.Get());
  std::atomic<bool> is_first_done = false;
  std::unique_ptr<OtherApartment> quick;
  recorder->handlers[L"SendCompleteEnd"] = [&](DISPPARAMS&) {
    quick = std::make_unique<OtherApartment>(COINIT_APARTMENTTHREADED, [&] {
      Text reply(L"before");
      VARIANT_BOOL answer = VARIANT_TRUE;
      EXPECT_EQ(second.Arrive()->Query(reply.in_out(), Text(L"ECHO 2").get(), nullptr, nullptr, &answer),
                RPC_E_SERVERCALL_RETRYLATER);
      EXPECT_FALSE(is_first_done) << "at once";
    });
  };
  Passage<_CKespCommObj> first(comm.Get());
  RunElsewhere(COINIT_APARTMENTTHREADED, [&] {
    OtherCommObj client(first.Arrive());
    EXPECT_TRUE(client.Query(L"SLOW?"));
    EXPECT_EQ(client.reply_.str(), L"SLOW 1.0");
    is_first_done = true;
  });
  ASSERT_NE(quick, nullptr);
  quick->Join();
}

// The handler is part of the operation that raised the event, on whatever thread it runs. The connection is
// closed before the handler's apartment ends: the arrival of the reply would be told to it just then, and
// Wine never answers a call to an apartment that ends.
class HandlerElsewhereTest : public TcpFixture, public testing::WithParamInterface<DWORD> {
 protected:
  // Connects a handler that calls back in, and does that work.
  void ListenElsewhere(const std::function<void(const ComPtr<_CKespTCP>&)>& work) {
    const auto tcp = passage_.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    recorder->handlers[L"ConnectEnd"] = [&](DISPPARAMS&) {
      VARIANT_BOOL answer = VARIANT_FALSE;
      called_back_ = tcp->WriteLine(Text(L"*IDN?").get(), &answer);
    };
    const Connection connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get());
    work(tcp);
  }

  Passage<_CKespTCP> passage_{tcp_.Get()};
  std::atomic<HRESULT> called_back_ = E_FAIL;
};

TEST_P(HandlerElsewhereTest, CallsBack_IsLetIn) {
  RunElsewhere(GetParam(), [&] {
    ListenElsewhere([](const auto& tcp) {
      EXPECT_TRUE(CallsTrue(tcp, &_CKespTCP::Initialize));
      EXPECT_TRUE(CallsTrue(tcp, &_CKespTCP::Uninitialize));
    });
  });
  EXPECT_EQ(called_back_, S_OK);
}

// The operation itself is called in the object's own apartment.
TEST_P(HandlerElsewhereTest, CallsBackIntoADirectCall_IsLetIn) {
  std::atomic<bool> is_connected = false;
  std::atomic<bool> is_over = false;
  OtherApartment elsewhere(GetParam(), [&] {
    ListenElsewhere([&](const auto&) {
      is_connected = true;
      EXPECT_TRUE(PumpUntil([&] { return is_over.load(); }, 30000));
    });
  });
  EXPECT_TRUE(PumpUntil([&] { return is_connected.load(); }));
  EXPECT_TRUE(Initialize());
  EXPECT_TRUE(Uninitialize());
  is_over = true;
  EXPECT_EQ(called_back_, S_OK);
}

INSTANTIATE_TEST_SUITE_P(Kinds, HandlerElsewhereTest, ApartmentKinds(), ApartmentKindName);

}  // namespace
}  // namespace kesp::clients
