// Unit tests of what Query, QueryBinary and Update make of the network transport's failures.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <tuple>

#include "commobj/kesp_comm_obj_fixture.h"
#include "network/socket_errors.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

enum class Step { kInitialize, kWrite, kRead };
enum class Operation { kQuery, kQueryBinary, kUpdate };

class NetworkFaultFixture : public KespCommObjFixture {
 public:
  NetworkFaultFixture() {
    UseNetwork();
    StartTrace();
  }

  CKespTCP& network() { return comm_->network(); }
  SocketControlFake& socket() { return *socket_; }

  void ConnectThen(const std::function<void()>& more = [] {}) {
    socket_->on_connect = [this, more] {
      socket_->ThenConnects();
      more();
    };
  }
  // The pumping that works off this step raises that number instead.
  void ThenRaises(std::int32_t number) {
    socket_->Then([number] { throw Failure(number, L"[Source]", L"Description"); });
  }
  // The one moment between two steps of an exchange: when the line of the second is traced.
  void BeforeWriting(const std::function<void()>& action) {
    ConnectThen();
    fakes_.files.OnAppend([action](const std::wstring&, std::string_view line) {
      if (line.find("TCP: WriteLine(") != std::string_view::npos) action();
    });
  }
};

// A step that fails, how that comes about, what is raised, and the status that is left for the client to
// read.
struct Fault {
  const char* name;
  Step step;
  std::function<void(NetworkFaultFixture&)> arrange;
  std::int32_t number;
  ECommError status;
  std::wstring description;
  std::wstring source = {};  // empty for that of the step
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.name;
}

Fault RaisedWhileConnecting(const char* name, std::int32_t number, ECommError status) {
  return {name,
          Step::kInitialize,
          [number](NetworkFaultFixture& stage) {
            stage.socket().on_connect = [&stage, number] { stage.ThenRaises(number); };
          },
          number,
          status,
          L"Description",
          L"[Source]"};
}

// The write's own pumping delivers the first step behind the connection, the read's the second.
Fault RaisedWhileReading(const char* name, std::int32_t number, ECommError status) {
  return {name,
          Step::kRead,
          [number](NetworkFaultFixture& stage) {
            stage.ConnectThen([&stage, number] {
              stage.socket().ThenNothing();
              stage.ThenRaises(number);
            });
          },
          number,
          status,
          L"Description",
          L"[Source]"};
}

using Stage = NetworkFaultFixture;

const Fault kFaults[] = {
    {"NoAddress", Step::kInitialize, [](Stage& stage) { stage.network().SetIPAddress(L"0.0.0.0"); },
     tcp_error::ERR_INVALID_IP_ADDRESS, ECommError::cfrInvalidIPAddress, L"Invalid IP Address"},
    {"CannotStart", Step::kInitialize,
     [](Stage& stage) { stage.socket().on_connect = [] { throw SocketFailure(10013); }; },
     tcp_error::ERR_CONNECTING, ECommError::cfrInitializeFailed,
     L"Unable to establish connection (10013 - " + SocketErrorDescription(10013) + L")"},
    {"Unanswered", Step::kInitialize, [](Stage&) {}, tcp_error::ERR_TIMEOUT, ECommError::cfrInitializeFailed,
     L"Timeout - unable to establish connection"},
    RaisedWhileConnecting("InvalidPort", tcp_error::ERR_INVALID_PORT, ECommError::cfrInvalidPort),
    RaisedWhileConnecting("ConnectingWithANumberOfAnotherClass", com_port_error::ERR_INVALID_COM_PORT,
                          ECommError::cfrInitializeFailed),
    {"CannotSend", Step::kWrite,
     [](Stage& stage) {
       stage.ConnectThen();
       stage.socket().FailCall(3, 10054);  // SetProtocol, Connect, SendData
     },
     tcp_error::ERR_SEND_DATA, ECommError::cfrWriteFailed,
     L"Unable to send data (10054 - " + SocketErrorDescription(10054) + L")"},
    {"WritingUninitialized", Step::kWrite,
     [](Stage& stage) { stage.BeforeWriting([&stage] { stage.network().Uninitialize(); }); },
     tcp_error::ERR_NOT_INITIALIZED, ECommError::cfrInitializeFailed, L"Socket not initialized"},
    {"WritingUnconnected", Step::kWrite,
     [](Stage& stage) { stage.BeforeWriting([&stage] { stage.socket().ThenPeerCloses().Deliver(); }); },
     tcp_error::ERR_NO_CONNECTION, ECommError::cfrNoConnection, L"Socket not connected"},
    {"Silent", Step::kRead, [](Stage& stage) { stage.ConnectThen(); }, tcp_error::ERR_TIMEOUT,
     ECommError::cfrTimeout, L"Timeout"},
    {"PartOfAReply", Step::kRead,
     [](Stage& stage) { stage.ConnectThen([&stage] { stage.socket().ThenReceives("1."); }); },
     tcp_error::ERR_TIMEOUT, ECommError::cfrTimeout, L"Timeout"},
    {"ClosedByPeer", Step::kRead,
     [](Stage& stage) { stage.ConnectThen([&stage] { stage.socket().ThenPeerCloses(); }); },
     tcp_error::ERR_NO_CONNECTION, ECommError::cfrNoConnection, L"Socket not connected"},
    {"ReadingUninitialized", Step::kRead,
     [](Stage& stage) {
       stage.ConnectThen([&stage] { stage.socket().Then([&stage] { stage.network().Uninitialize(); }); });
     },
     tcp_error::ERR_NOT_INITIALIZED, ECommError::cfrInitializeFailed, L"Socket not initialized"},
    {"TooMuch", Step::kRead,
     [](Stage& stage) { stage.ConnectThen([&stage] { stage.socket().ThenNothing().ThenOverruns(); }); },
     tcp_error::ERR_GET_DATA, ECommError::cfrReadFailed,
     L"Unable to get data (10055 - " + SocketErrorDescription(10055) + L")"},
    RaisedWhileReading("ReadingWithANumberOfAnotherClass", com_port_error::ERR_READ_TIMEOUT,
                       ECommError::cfrReadFailed),
    // The transport itself raises another number for refused characters; this one has a line of its own, too.
    RaisedWhileReading("InvalidData", tcp_error::ERR_TCP_INVALID_CHARACTERS, ECommError::cfrInvalidData),
};

class NetworkFaultTest : public NetworkFaultFixture,
                         public testing::WithParamInterface<std::tuple<Fault, Operation>> {
 protected:
  const Fault& fault() const { return std::get<Fault>(GetParam()); }
  Operation operation() const { return std::get<Operation>(GetParam()); }

  bool Operate() {
    switch (operation()) {
      case Operation::kQuery:
        return comm_->Query(result_, L"t");
      case Operation::kQueryBinary:
        return comm_->QueryBinary(bytes_, L"t");
      default:
        return comm_->Update(L"t");
    }
  }
  std::wstring ReadName() const {
    return operation() == Operation::kQueryBinary ? L"ReadLineBinary()" : L"ReadLine()";
  }
  std::wstring StepName() const {
    if (fault().step == Step::kRead) return ReadName();
    return fault().step == Step::kWrite ? L"WriteLine()" : L"Initialize()";
  }
  std::wstring Source() const {
    return fault().source.empty() ? L"[CKespTCP - " + StepName() + L"]" : fault().source;
  }

  // The lines of an exchange as far as it came; an update that does not fail has no reading.
  Lines ExpectedTrace(bool fails) const {
    Lines trace{L"TCP: Initialize()"};
    if (fault().step == Step::kInitialize && operation() == Operation::kUpdate) {
      trace.push_back(L"TCP: Initialize failed!! (" + std::to_wstring(fault().number) + L"-" +
                      fault().description + L")");
    }
    if (fault().step != Step::kInitialize) trace.push_back(L"TCP: WriteLine(t)");
    if (fault().step == Step::kRead && fails) trace.push_back(L"TCP: " + ReadName());
    if (fault().status == ECommError::cfrInvalidData && fails) {
      trace.push_back(L"TCP: ** " + ReadName() + L" invalid characters **");
    }
    if (fails) {
      trace.push_back(L"TCP: ** " + StepName() + L" Error info: Source- " + Source() + L"  Description- " +
                      fault().description + L" **");
    }
    trace.push_back(L"TCP: Uninitialize()");
    if (operation() == Operation::kQueryBinary) return trace;
    const bool is_query = operation() == Operation::kQuery;
    trace.insert(trace.begin(),
                 is_query ? L"Beginning Query()... (command: t)" : L"Beginning Update()...(command: t)");
    trace.push_back(is_query ? L"Exiting Query()...(command: t)" : L"Exiting Update()...(command: t)");
    return trace;
  }

  std::wstring result_ = L"before";
  BinaryValue bytes_;
};

// The failure is told by the status alone, and no connection is left.
TEST_P(NetworkFaultTest, StatusAndTrace) {
  fault().arrange(*this);
  const bool fails = fault().step != Step::kRead || operation() != Operation::kUpdate;
  EXPECT_EQ(Operate(), !fails);
  EXPECT_EQ(comm_->CommError(), fails ? fault().status : ECommError::cfrSuccess);
  EXPECT_EQ(comm_->CommErrorSource(), fails ? Source() : L"");
  EXPECT_EQ(comm_->CommErrorDescr(), fails ? fault().description : L"");
  EXPECT_EQ(Trace(), ExpectedTrace(fails));
  EXPECT_EQ(result_, L"before");
  EXPECT_EQ(bytes_, BinaryValue());
  EXPECT_TRUE(fakes_.user.boxes().empty());
  EXPECT_EQ(RaisedBy([&] { network().WriteLine(L"x"); }).number, tcp_error::ERR_NOT_INITIALIZED);
}

std::string NameOf(const testing::TestParamInfo<std::tuple<Fault, Operation>>& info) {
  const char* const operations[] = {"Query", "QueryBinary", "Update"};
  return std::string(std::get<Fault>(info.param).name) + "_" +
         operations[static_cast<int>(std::get<Operation>(info.param))];
}

INSTANTIATE_TEST_SUITE_P(All, NetworkFaultTest,
                         testing::Combine(testing::ValuesIn(kFaults),
                                          testing::Values(Operation::kQuery, Operation::kQueryBinary,
                                                          Operation::kUpdate)),
                         NameOf);

}  // namespace
}  // namespace kesp
