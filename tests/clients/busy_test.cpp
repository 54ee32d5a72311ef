// Operations that arrive while another caller's operation is under way on the same object.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
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

// A member with its required arguments: r a variable that takes a result, t a text, n a number.
struct Operation {
  const wchar_t* member;
  const char* arguments;
};

using Operations = std::vector<Operation>;

const std::map<std::wstring, Operations> kOperations = {{L"CKespCommObj",
                                                         {{L"Query", "rt"},
                                                          {L"QueryBinary", "rt"},
                                                          {L"Update", "t"},
                                                          {L"DetectInstrument", "r"},
                                                          {L"SetInputMode", "n"},
                                                          {L"Edit", ""}}},
                                                        {L"CKespCOMPort3",
                                                         {{L"OpenPort", ""},
                                                          {L"ClosePort", ""},
                                                          {L"ClearBuffers", ""},
                                                          {L"SetInputMode", "n"},
                                                          {L"WriteLine", "t"},
                                                          {L"ReadLine", "r"},
                                                          {L"ReadLineBinary", "r"},
                                                          {L"Download", "r"},
                                                          {L"AutoDetect", "r"},
                                                          {L"RFReadModemSettings", "rrrrrr"},
                                                          {L"RFWriteModemSettings", "nnnn"},
                                                          {L"RFWriteModemInstrAddress", "n"},
                                                          {L"TestSmartSwitch", ""},
                                                          {L"Edit", ""}}},
                                                        {L"CKespTCP",
                                                         {{L"Initialize", ""},
                                                          {L"Uninitialize", ""},
                                                          {L"WriteLine", "t"},
                                                          {L"ReadLine", "r"},
                                                          {L"ReadLineBinary", "r"},
                                                          {L"AutoDetect", "r"},
                                                          {L"Edit", ""}}},
                                                        {L"CKespIEEE",
                                                         {{L"Initialize", ""},
                                                          {L"Uninitialize", ""},
                                                          {L"AutoDetect", "r"},
                                                          {L"WriteLine", "t"},
                                                          {L"ReadLine", "r"}}}};

Outcome CallWithArguments(const LateObject& object, const Operation& operation) {
  std::vector<Value> values(6);
  std::vector<VARIANT> arguments;
  const Value text(L"*IDN?");
  const Value number(0);
  for (const char* kind = operation.arguments; *kind != '\0'; ++kind) {
    arguments.push_back(*kind == 'r'   ? Variable(values[arguments.size()])
                        : *kind == 't' ? Plain(text)
                                       : Plain(number));
  }
  return object.Call(operation.member, arguments);
}

void ExpectBusy(const Outcome& outcome, const std::wstring& source) {
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, RPC_E_SERVERCALL_RETRYLATER);
  EXPECT_EQ(outcome.source, source);
  EXPECT_EQ(outcome.description, kBusy);
}

void ExpectAllBusy(IDispatch* dispatch, const std::wstring& class_name) {
  const LateObject object(dispatch);
  for (const Operation& operation : kOperations.at(class_name)) {
    SCOPED_TRACE(testing::Message() << class_name << " " << operation.member);
    ExpectBusy(CallWithArguments(object, operation), L"[" + class_name + L" - " + operation.member + L"()]");
  }
  EXPECT_EQ(object.Call(L"GetKey").value.text().size(), 11U) << "what is no operation goes through";
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
  const wchar_t* event;  // of an operation that needs no device
};

const Way kWays[] = {
    {L"CKespCOMPort3", csRS232, __uuidof(CKespCOMPort3), __uuidof(__CKespCOMPort3), L"AutoDetectBegin"},
    {L"CKespTCP", csTCPIP, __uuidof(CKespTCP), __uuidof(__CKespTCP), L"ConnectBegin"},
    {L"CKespIEEE", csIEEE, __uuidof(CKespIEEE), __uuidof(__CKespIEEE), L"AutoDetectBegin"},
};

class BusyTest : public testing::TestWithParam<Way> {
 protected:
  // Runs `work` in the middle of an operation, and has that end early.
  void During(IUnknown* transport, const std::function<void()>& work) {
    recorder_->handlers[GetParam().event] = [&, work](DISPPARAMS&) {
      ++times_;
      work();
    };
    recorder_->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    connection_ = std::make_unique<Connection>(transport, GetParam().events, recorder_.Get());
  }
  void TearDown() override { EXPECT_EQ(times_, 1); }

  Apartment apartment_;
  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(GetParam().events);
  std::unique_ptr<Connection> connection_;
  int times_ = 0;
};

TEST_P(BusyTest, OperationOfTheTransportUnderWay_OthersAreRefusedAndItGoesOn) {
  const auto transport = Create<IDispatch>(GetParam().clsid);
  ComPtr<_CKespTCP> tcp;
  if (SUCCEEDED(transport.As(&tcp))) SetTarget(tcp.Get());
  During(transport.Get(),
         [&] { FromAnotherThread([&] { ExpectAllBusy(transport.Get(), GetParam().transport); }); });
  const LateObject late(transport);
  Value answer;
  if (tcp) {
    EXPECT_TRUE(late.Call(L"Initialize").IsTrue());
  } else {
    EXPECT_EQ(late.Call(L"AutoDetect", {Variable(answer)}).result, S_OK);
    EXPECT_EQ(recorder_->Count(L"AutoDetectEnd"), 1U);
  }
  if (tcp) {
    EXPECT_TRUE(late.Call(L"Uninitialize").IsTrue());
  }
  // Nobody is inside any more.
  FromAnotherThread([&] {
    const auto* closing = tcp ? L"Uninitialize" : L"SetInputMode";
    if (GetParam().style == csIEEE) closing = L"Uninitialize";
    const Value text_mode(0);
    const std::vector<VARIANT> arguments =
        GetParam().style == csRS232 ? std::vector<VARIANT>{Plain(text_mode)} : std::vector<VARIANT>{};
    EXPECT_EQ(LateObject(transport).Call(closing, arguments).result, S_OK);
  });
}

TEST_P(BusyTest, OperationOfTheCommunicationObjectUnderWay_OthersAreRefusedOnItAndOnItsTransport) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  UseInstrument(comm.Get());
  EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, GetParam().style), S_OK);
  const ComPtr<IDispatch> transport = ReadObject(comm, &_CKespCommObj::get_CommObject);
  During(transport.Get(), [&] {
    FromAnotherThread([&] {
      ExpectAllBusy(comm.Get(), L"CKespCommObj");
      ExpectBusy(LateObject(comm).Put(L"CommStyle", Plain(Value(csNone))), L"[CKespCommObj - CommStyle]");
      ExpectAllBusy(transport.Get(), GetParam().transport);
    });
  });
  Text result;
  VARIANT_BOOL answer = VARIANT_FALSE;
  if (GetParam().style == csTCPIP) {
    EXPECT_EQ(comm->Query(result.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
    EXPECT_EQ(result.str(), L"KESP,TORTURE,SIM00666,1.0") << "the first operation is not disturbed";
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommError), cfrSuccess);
  } else {
    EXPECT_EQ(comm->DetectInstrument(result.in_out(), dlAllCommands, &answer), S_OK);
  }
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommStyle), GetParam().style);
}

TEST_P(BusyTest, OperationOfTheTransportUnderWay_TheCommunicationObjectIsRefused) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  UseInstrument(comm.Get());
  EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, GetParam().style), S_OK);
  const ComPtr<IDispatch> transport = ReadObject(comm, &_CKespCommObj::get_CommObject);
  During(transport.Get(), [&] {
    FromAnotherThread([&] {
      ExpectBusy(LateObject(comm).Call(L"Update", {Plain(Value(L"*RST"))}), L"[CKespCommObj - Update()]");
    });
  });
  Value answer;
  const LateObject late(transport);
  if (GetParam().style == csTCPIP) {
    EXPECT_TRUE(late.Call(L"Initialize").IsTrue());
  } else {
    EXPECT_EQ(late.Call(L"AutoDetect", {Variable(answer)}).result, S_OK);
  }
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
  std::atomic<bool> is_second_done = false;
  std::thread quick;
  recorder->handlers[L"SendCompleteEnd"] = [&](DISPPARAMS&) {
    quick = std::thread([&] {
      const Apartment own;
      const auto proxy = second.Arrive();
      Text reply(L"before");
      VARIANT_BOOL answer = VARIANT_TRUE;
      EXPECT_EQ(proxy->Query(reply.in_out(), Text(L"ECHO 2").get(), nullptr, nullptr, &answer),
                RPC_E_SERVERCALL_RETRYLATER);
      EXPECT_FALSE(is_first_done) << "at once";
      is_second_done = true;
    });
  };
  Passage<_CKespCommObj> first(comm.Get());
  RunElsewhere(COINIT_APARTMENTTHREADED, [&] {
    Text reply;
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(first.Arrive()->Query(reply.in_out(), Text(L"SLOW?").get(), nullptr, nullptr, &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_TRUE);
    EXPECT_EQ(reply.str(), L"SLOW 1.0");
    is_first_done = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return is_second_done.load(); }));
  if (quick.joinable()) quick.join();
}

class HandlerElsewhereTest : public TcpFixture, public testing::WithParamInterface<DWORD> {};

// The handler is part of the operation that raised the event, on whatever thread it runs.
TEST_P(HandlerElsewhereTest, CallsBack_IsLetIn) {
  Passage<_CKespTCP> passage(tcp_.Get());
  RunElsewhere(GetParam(), [&] {
    const auto tcp = passage.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    HRESULT called_back = E_FAIL;
    recorder->handlers[L"ConnectEnd"] = [&](DISPPARAMS&) {
      VARIANT_BOOL answer = VARIANT_FALSE;
      called_back = tcp->WriteLine(Text(L"*IDN?").get(), &answer);
    };
    Connection connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get());
    EXPECT_TRUE(CallsTrue(tcp, &_CKespTCP::Initialize));
    EXPECT_EQ(called_back, S_OK);
  });
}

// The operation itself is called in the object's own apartment.
TEST_P(HandlerElsewhereTest, CallsBackIntoADirectCall_IsLetIn) {
  Passage<_CKespTCP> passage(tcp_.Get());
  std::atomic<bool> is_connected = false;
  std::atomic<bool> is_over = false;
  HRESULT called_back = E_FAIL;
  std::thread elsewhere([&] {
    const Apartment own(GetParam());
    const auto tcp = passage.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    recorder->handlers[L"ConnectEnd"] = [&](DISPPARAMS&) {
      VARIANT_BOOL answer = VARIANT_FALSE;
      called_back = tcp->WriteLine(Text(L"*IDN?").get(), &answer);
    };
    Connection connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get());
    is_connected = true;
    EXPECT_TRUE(PumpUntil([&] { return is_over.load(); }, 30000));
    connection.Disconnect();
  });
  EXPECT_TRUE(PumpUntil([&] { return is_connected.load(); }));
  EXPECT_TRUE(Initialize());
  is_over = true;
  EXPECT_EQ(called_back, S_OK);
  std::atomic<bool> is_joined = false;
  std::thread joiner([&] {
    elsewhere.join();
    is_joined = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return is_joined.load(); }, 30000));
  joiner.join();
}

INSTANTIATE_TEST_SUITE_P(Kinds, HandlerElsewhereTest,
                         testing::Values(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED),
                         [](const auto& info) {
                           return info.param == COINIT_MULTITHREADED ? "Multithreaded" : "SingleThreaded";
                         });

}  // namespace
}  // namespace kesp::clients
