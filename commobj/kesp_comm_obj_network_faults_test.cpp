// Unit tests of what Query, QueryBinary and Update make of the network transport's failures.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "commobj/kesp_comm_obj_fixture.h"
#include "network/socket_errors.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

// Runs an action when a line of the trace is written: the one moment between two steps of an exchange.
class FilesWithWatcher final : public Files {
 public:
  explicit FilesWithWatcher(Files& files) : files_(files) {}

  std::string watched_text;
  std::function<void()> action = [] {};

  bool Exists(const std::wstring& path) override { return files_.Exists(path); }
  std::optional<CalendarDate> LastModified(const std::wstring& path) override {
    return files_.LastModified(path);
  }
  bool Append(const std::wstring& path, std::string_view bytes) override {
    if (!watched_text.empty() && bytes.find(watched_text) != std::string_view::npos) action();
    return files_.Append(path, bytes);
  }
  bool Rename(const std::wstring& from, const std::wstring& to) override { return files_.Rename(from, to); }
  std::wstring TemporaryFolder() override { return files_.TemporaryFolder(); }
  std::wstring LibraryFile() override { return files_.LibraryFile(); }

 private:
  Files& files_;
};

class FaultFixture : public KespCommObjFixture {
 public:
  FaultFixture() {
    comm_ = std::make_unique<CKespCommObj>(environment_, Transports());
    UseNetwork();
    StartTrace();
  }

  CKespTCP& network() { return comm_->network(); }
  SocketControlFake& socket() { return *socket_; }

  void ConnectThen(std::function<void(SocketControlFake&)> more) {
    Script([more = std::move(more)](SocketControlFake& socket) { more(socket.ThenConnects()); });
  }
  // The pumping that would deliver the next step raises that number instead.
  void Raise(std::int32_t number) const { throw Failure(number, L"[Source]", L"Description"); }
  void BeforeWriting(std::function<void()> action) {
    files_.watched_text = "TCP: WriteLine(";
    files_.action = std::move(action);
  }

 protected:
  FilesWithWatcher files_{fakes_.files};
  Environment environment_{fakes_.clock, fakes_.pump, files_, fakes_.settings, fakes_.guids, fakes_.user};
};

// A fault, how it comes about, and what is left for the client to read.
struct Fault {
  const char* name;
  std::function<void(FaultFixture&)> arrange;
  ECommError status;
  std::wstring source;  // {} stands for the name of the read
  std::wstring description;
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.name;
}

std::wstring SourceOf(const Fault& fault, const std::wstring& read) {
  std::wstring source = fault.source;
  if (const std::size_t place = source.find(L"{}"); place != std::wstring::npos) {
    source.replace(place, 2, read);
  }
  return source;
}

std::wstring InfoLine(const std::wstring& operation, const Fault& fault) {
  return L"TCP: ** " + operation + L" Error info: Source- " + SourceOf(fault, operation) +
         L"  Description- " + fault.description + L" **";
}

Fault RaisedWhileConnecting(const char* name, std::int32_t number, ECommError status) {
  return {name,
          [number](FaultFixture& stage) {
            stage.socket().on_connect = [&stage, number] {
              stage.socket().Then([&stage, number] { stage.Raise(number); });
            };
          },
          status, L"[Source]", L"Description"};
}

std::vector<Fault> InitializeFaults() {
  const wchar_t* const source = L"[CKespTCP - Initialize()]";
  return {
      {"NoAddress", [](FaultFixture& stage) { stage.network().SetIPAddress(L"0.0.0.0"); },
       ECommError::cfrInvalidIPAddress, source, L"Invalid IP Address"},
      {"CannotStart",
       [](FaultFixture& stage) { stage.socket().on_connect = [] { throw SocketFailure(10013); }; },
       ECommError::cfrInitializeFailed, source,
       L"Unable to establish connection (10013 - " + SocketErrorDescription(10013) + L")"},
      {"Refused",
       [](FaultFixture& stage) { stage.socket().on_connect = [&stage] { stage.socket().ThenFails(10061); }; },
       ECommError::cfrInitializeFailed, source, L"Timeout - unable to establish connection"},
      {"Unanswered", [](FaultFixture&) {}, ECommError::cfrInitializeFailed, source,
       L"Timeout - unable to establish connection"},
      RaisedWhileConnecting("Connecting", tcp_error::ERR_CONNECTING, ECommError::cfrInitializeFailed),
      RaisedWhileConnecting("InvalidPort", tcp_error::ERR_INVALID_PORT, ECommError::cfrInvalidPort),
      RaisedWhileConnecting("NumberOfAnotherClass", com_port_error::ERR_INVALID_COM_PORT,
                            ECommError::cfrInitializeFailed),
  };
}

std::vector<Fault> WriteFaults() {
  const wchar_t* const source = L"[CKespTCP - WriteLine()]";
  return {
      {"CannotSend",
       [](FaultFixture& stage) {
         stage.ConnectThen([](SocketControlFake&) {});
         stage.socket().FailCall(3, 10054);  // SetProtocol, Connect, SendData
       },
       ECommError::cfrWriteFailed, source,
       L"Unable to send data (10054 - " + SocketErrorDescription(10054) + L")"},
      {"NotInitialized",
       [](FaultFixture& stage) {
         stage.ConnectThen([](SocketControlFake&) {});
         stage.BeforeWriting([&stage] { stage.network().Uninitialize(); });
       },
       ECommError::cfrInitializeFailed, source, L"Socket not initialized"},
      {"NoConnection",
       [](FaultFixture& stage) {
         stage.ConnectThen([](SocketControlFake&) {});
         stage.BeforeWriting([&stage] { stage.socket().ThenPeerCloses().Deliver(); });
       },
       ECommError::cfrNoConnection, source, L"Socket not connected"},
  };
}

// The write's own pumping delivers the first step behind the connection, the read's the second.
Fault RaisedWhileReading(const char* name, std::int32_t number, ECommError status) {
  return {name,
          [number](FaultFixture& stage) {
            stage.ConnectThen([&stage, number](SocketControlFake& socket) {
              socket.ThenNothing().Then([&stage, number] { stage.Raise(number); });
            });
          },
          status, L"[Source]", L"Description"};
}

std::vector<Fault> ReadFaults() {
  const wchar_t* const source = L"[CKespTCP - {}]";
  return {
      {"Silent", [](FaultFixture& stage) { stage.ConnectThen([](SocketControlFake&) {}); },
       ECommError::cfrTimeout, source, L"Timeout"},
      {"PartOfAReply",
       [](FaultFixture& stage) {
         stage.ConnectThen([](SocketControlFake& socket) { socket.ThenReceives("1."); });
       },
       ECommError::cfrTimeout, source, L"Timeout"},
      {"ClosedByPeer",
       [](FaultFixture& stage) {
         stage.ConnectThen([](SocketControlFake& socket) { socket.ThenPeerCloses(); });
       },
       ECommError::cfrNoConnection, source, L"Socket not connected"},
      {"Uninitialized",
       [](FaultFixture& stage) {
         stage.ConnectThen([&stage](SocketControlFake& socket) {
           socket.Then([&stage] { stage.network().Uninitialize(); });
         });
       },
       ECommError::cfrInitializeFailed, source, L"Socket not initialized"},
      {"TooMuch",
       [](FaultFixture& stage) {
         stage.ConnectThen([](SocketControlFake& socket) { socket.ThenNothing().ThenOverruns(); });
       },
       ECommError::cfrReadFailed, source,
       L"Unable to get data (10055 - " + SocketErrorDescription(10055) + L")"},
      RaisedWhileReading("NumberOfAnotherClass", com_port_error::ERR_READ_TIMEOUT, ECommError::cfrReadFailed),
  };
}

class FaultTest : public FaultFixture, public testing::WithParamInterface<Fault> {
 protected:
  FaultTest() { GetParam().arrange(*this); }

  bool Query() { return comm_->Query(result_, L"t"); }
  bool QueryBinary() { return comm_->QueryBinary(bytes_, L"t"); }
  bool Update() { return comm_->Update(L"t"); }

  // The failure is told by the status alone, and no connection is left.
  void ExpectFailed(const std::wstring& read = {}) {
    EXPECT_EQ(comm_->CommError(), GetParam().status);
    EXPECT_EQ(comm_->CommErrorSource(), SourceOf(GetParam(), read));
    EXPECT_EQ(comm_->CommErrorDescr(), GetParam().description);
    EXPECT_EQ(result_, L"before");
    EXPECT_EQ(bytes_, BinaryValue());
    EXPECT_TRUE(fakes_.user.boxes().empty());
    EXPECT_EQ(RaisedBy([&] { network().WriteLine(L"x"); }).number, tcp_error::ERR_NOT_INITIALIZED);
  }

  std::wstring result_ = L"before";
  BinaryValue bytes_;
};

const auto kFaultName = [](const testing::TestParamInfo<Fault>& info) { return info.param.name; };

class InitializeFaultTest : public FaultTest {};

TEST_P(InitializeFaultTest, Query_StatusAndTrace) {
  EXPECT_FALSE(Query());
  ExpectFailed();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"TCP: Initialize()",
                            InfoLine(L"Initialize()", GetParam()), L"TCP: Uninitialize()",
                            L"Exiting Query()...(command: t)"}));
}

TEST_P(InitializeFaultTest, QueryBinary_StatusAndTrace) {
  EXPECT_FALSE(QueryBinary());
  ExpectFailed();
  EXPECT_EQ(Trace(),
            (Lines{L"TCP: Initialize()", InfoLine(L"Initialize()", GetParam()), L"TCP: Uninitialize()"}));
}

TEST_P(InitializeFaultTest, Update_StatusAndTraceWithALineOfItsOwn) {
  EXPECT_FALSE(Update());
  ExpectFailed();
  const Lines trace = Trace();
  ASSERT_EQ(trace.size(), 6u);
  EXPECT_TRUE(trace[2].starts_with(L"TCP: Initialize failed!! (-21472212")) << testing::PrintToString(trace);
  EXPECT_TRUE(trace[2].ends_with(L"-" + GetParam().description + L")")) << testing::PrintToString(trace);
  EXPECT_EQ(trace, (Lines{L"Beginning Update()...(command: t)", L"TCP: Initialize()", trace[2],
                          InfoLine(L"Initialize()", GetParam()), L"TCP: Uninitialize()",
                          L"Exiting Update()...(command: t)"}));
}

INSTANTIATE_TEST_SUITE_P(All, InitializeFaultTest, testing::ValuesIn(InitializeFaults()), kFaultName);

class WriteFaultTest : public FaultTest {};

TEST_P(WriteFaultTest, Query_StatusAndTrace) {
  EXPECT_FALSE(Query());
  ExpectFailed();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"TCP: Initialize()", L"TCP: WriteLine(t)",
                            InfoLine(L"WriteLine()", GetParam()), L"TCP: Uninitialize()",
                            L"Exiting Query()...(command: t)"}));
}

TEST_P(WriteFaultTest, QueryBinary_StatusAndTrace) {
  EXPECT_FALSE(QueryBinary());
  ExpectFailed();
  EXPECT_EQ(Trace(), (Lines{L"TCP: Initialize()", L"TCP: WriteLine(t)", InfoLine(L"WriteLine()", GetParam()),
                            L"TCP: Uninitialize()"}));
}

TEST_P(WriteFaultTest, Update_StatusAndTrace) {
  EXPECT_FALSE(Update());
  ExpectFailed();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Update()...(command: t)", L"TCP: Initialize()", L"TCP: WriteLine(t)",
                            InfoLine(L"WriteLine()", GetParam()), L"TCP: Uninitialize()",
                            L"Exiting Update()...(command: t)"}));
}

INSTANTIATE_TEST_SUITE_P(All, WriteFaultTest, testing::ValuesIn(WriteFaults()), kFaultName);

class ReadFaultTest : public FaultTest {};

TEST_P(ReadFaultTest, Query_StatusAndTrace) {
  EXPECT_FALSE(Query());
  ExpectFailed(L"ReadLine()");
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"TCP: Initialize()", L"TCP: WriteLine(t)",
                            L"TCP: ReadLine()", InfoLine(L"ReadLine()", GetParam()), L"TCP: Uninitialize()",
                            L"Exiting Query()...(command: t)"}));
}

TEST_P(ReadFaultTest, QueryBinary_StatusAndTrace) {
  EXPECT_FALSE(QueryBinary());
  ExpectFailed(L"ReadLineBinary()");
  EXPECT_EQ(Trace(), (Lines{L"TCP: Initialize()", L"TCP: WriteLine(t)", L"TCP: ReadLineBinary()",
                            InfoLine(L"ReadLineBinary()", GetParam()), L"TCP: Uninitialize()"}));
}

TEST_P(ReadFaultTest, Update_DoesNotReadAndSucceeds) {
  EXPECT_TRUE(Update());
  EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  EXPECT_EQ(Trace().size(), 5u);
}

INSTANTIATE_TEST_SUITE_P(All, ReadFaultTest, testing::ValuesIn(ReadFaults()), kFaultName);

class InvalidDataTest : public FaultTest {};

// The transport itself raises another number for refused characters; this one has a status and a line too.
TEST_P(InvalidDataTest, Query_HasALineOfItsOwn) {
  EXPECT_FALSE(Query());
  ExpectFailed();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: t)", L"TCP: Initialize()", L"TCP: WriteLine(t)",
                            L"TCP: ReadLine()", L"TCP: ** ReadLine() invalid characters **",
                            InfoLine(L"ReadLine()", GetParam()), L"TCP: Uninitialize()",
                            L"Exiting Query()...(command: t)"}));
}

TEST_P(InvalidDataTest, QueryBinary_HasALineOfItsOwn) {
  EXPECT_FALSE(QueryBinary());
  ExpectFailed();
  const Lines trace = Trace();
  ASSERT_EQ(trace.size(), 6u);
  EXPECT_EQ(trace[3], L"TCP: ** ReadLineBinary() invalid characters **");
}

INSTANTIATE_TEST_SUITE_P(All, InvalidDataTest,
                         testing::Values(RaisedWhileReading("InvalidData",
                                                            tcp_error::ERR_TCP_INVALID_CHARACTERS,
                                                            ECommError::cfrInvalidData)),
                         kFaultName);

}  // namespace
}  // namespace kesp
