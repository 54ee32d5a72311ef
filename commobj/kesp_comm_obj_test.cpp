// Unit tests of the communication object's settings, status and life.
#include "commobj/kesp_comm_obj.h"

#include <gtest/gtest.h>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kNotSupported[] = L"The selected communication style is currently not supported";

class CKespCommObjTest : public KespCommObjFixture {
 protected:
  Lines LogFilenames() const {
    return {comm_->serial().LogFilename(), comm_->network().LogFilename(), comm_->ieee().LogFilename()};
  }
  std::vector<bool> LogsOn() const {
    return {comm_->serial().CreateLogFile(), comm_->network().CreateLogFile(), comm_->ieee().CreateLogFile()};
  }
};

TEST_F(CKespCommObjTest, Created_HasItsDefaults) {
  EXPECT_EQ(comm_->CommStyle(), ECommStyle::csRS232);
  EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  EXPECT_EQ(comm_->CommErrorSource(), L"");
  EXPECT_EQ(comm_->CommErrorDescr(), L"");
  EXPECT_TRUE(comm_->AutoClose());
  EXPECT_FALSE(comm_->CRBeforeCommand());
  EXPECT_FALSE(comm_->Debugging());
  EXPECT_EQ(comm_->BinaryTimeoutms(), 100);
}

TEST_F(CKespCommObjTest, Created_MakesItsKeyAndThenSerialNetworkIeee) {
  EXPECT_EQ(made_, (std::vector<std::string>{"serial", "network", "ieee"}));
  EXPECT_EQ(comm_->GetKey(), L"0000000100K");
  EXPECT_EQ(comm_->serial().GetKey(), L"0000000200K");
  EXPECT_EQ(comm_->network().GetKey(), L"0000000300K");
  EXPECT_EQ(comm_->ieee().GetKey(), L"0000000400K");
}

TEST_F(CKespCommObjTest, Created_SerialTransportAllows300To57600AndHas57600) {
  EXPECT_EQ(comm_->serial().MinBaudRate(), EKespBaudRate3::br300);
  EXPECT_EQ(comm_->serial().MaxBaudRate(), EKespBaudRate3::br57600);
  EXPECT_EQ(comm_->serial().BaudRate(), EKespBaudRate3::br57600);
}

TEST_F(CKespCommObjTest, Created_TraceFileLiesInTheFolderOfTheLibrary) {
  const std::wstring expected = L"C:\\Kesp\\commobjout.log";
  EXPECT_EQ(comm_->DebugFilename(), expected);
  EXPECT_EQ(LogFilenames(), Lines(3, expected));
  EXPECT_EQ(LogsOn(), std::vector<bool>(3, false));
}

TEST_F(CKespCommObjTest, CreatedWithoutGuidOrLibraryFolder_KeyIsKAndTraceFileABareName) {
  fakes_.guids.Fail();
  fakes_.files.Refuse(FilesFake::Operation::kLibraryFile);
  const CKespCommObj comm(fakes_.environment, Transports());
  EXPECT_EQ(comm.GetKey(), L"K");
  EXPECT_EQ(comm.DebugFilename(), L"commobjout.log");
}

TEST_F(CKespCommObjTest, DebuggingSet_AllTransportsTakeIt) {
  comm_->SetDebugFilename(L"D:\\trace.txt");
  EXPECT_EQ(comm_->DebugFilename(), L"D:\\trace.txt");
  EXPECT_EQ(LogFilenames(), Lines(3, L"D:\\trace.txt"));
  for (const bool on : {true, false}) {
    comm_->SetDebugging(on);
    EXPECT_EQ(comm_->Debugging(), on);
    EXPECT_EQ(LogsOn(), std::vector<bool>(3, on));
  }
}

TEST_F(CKespCommObjTest, TransportLoggingChanged_FacadeKeepsItsOwn) {
  comm_->network().SetCreateLogFile(true);
  comm_->network().SetLogFilename(L"net.log");
  EXPECT_FALSE(comm_->Debugging());
  EXPECT_EQ(comm_->DebugFilename(), L"C:\\Kesp\\commobjout.log");
}

TEST_F(CKespCommObjTest, PlainSettings_AreKeptAsGiven) {
  comm_->SetAutoClose(false);
  comm_->SetCRBeforeCommand(true);
  comm_->SetBinaryTimeoutms(-5);
  EXPECT_FALSE(comm_->AutoClose());
  EXPECT_TRUE(comm_->CRBeforeCommand());
  EXPECT_EQ(comm_->BinaryTimeoutms(), -5);
}

TEST_F(CKespCommObjTest, CommStyle_IsTakenWithinItsRangeAndLeftAsItWasOutside) {
  const CKespTCP* const network = &comm_->network();
  for (const std::int32_t style : {-1, 1, 2, 0}) {
    comm_->SetCommStyle(static_cast<ECommStyle>(style));
    EXPECT_EQ(static_cast<std::int32_t>(comm_->CommStyle()), style);
  }
  for (const std::int32_t style : {3, -2, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(RaisedBy([&] { comm_->SetCommStyle(static_cast<ECommStyle>(style)); }),
              (Raised{-2147221304, L"[CKespCommObj - CommStyle]", kNotSupported}));
    EXPECT_EQ(comm_->CommStyle(), ECommStyle::csRS232);
  }
  EXPECT_EQ(&comm_->network(), network) << "the transports stay the same";
  EXPECT_EQ(made_.size(), 3u);
}

TEST_F(CKespCommObjTest, Released_TransportsGoInTheOrderSerialNetworkIeee) {
  std::vector<std::string> gone;
  const auto tell = [&gone](const char* name) {
    return [&gone, name](auto* transport) {
      gone.push_back(name);
      delete transport;
    };
  };
  const TransportFactory transports{
      .make_serial =
          [&] {
            return std::shared_ptr<CKespCOMPort3>(new CKespCOMPort3(fakes_.environment, ports_),
                                                  tell("serial"));
          },
      .make_network =
          [&] {
            return std::shared_ptr<CKespTCP>(
                new CKespTCP(fakes_.environment, SocketFactory(), MakeInstrument, &events_), tell("network"));
          },
      .make_ieee =
          [&] { return std::shared_ptr<CKespIEEE>(new CKespIEEE(fakes_.environment, gpib_), tell("ieee")); }};
  comm_ = std::make_unique<CKespCommObj>(fakes_.environment, transports);
  EXPECT_TRUE(gone.empty());
  comm_.reset();
  EXPECT_EQ(gone, (std::vector<std::string>{"serial", "network", "ieee"}));
}

// One of the operations, to show that they share their rules.
struct Operation {
  const wchar_t* source;
  const char* name;
  std::function<bool(CKespCommObj&)> call;
};

void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

class OperationTest : public KespCommObjFixture, public testing::WithParamInterface<Operation> {};

TEST_P(OperationTest, StyleNone_RaisesNoCommObjectAndTouchesNothing) {
  StartTrace();
  comm_->SetCommStyle(ECommStyle::csNone);
  EXPECT_EQ(RaisedBy([&] { GetParam().call(*comm_); }),
            (Raised{-2147221303, GetParam().source, L"Communications object not initialized"}));
  EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  EXPECT_TRUE(Trace().empty());
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

TEST_P(OperationTest, OptionalArgumentsGiven_NetworkIgnoresThem) {
  UseNetwork();
  Script([](SocketControlFake& socket) { socket.ThenConnects().ThenReceives("1.0\r"); });
  EXPECT_TRUE(GetParam().call(*comm_));
  EXPECT_EQ(socket_->sent, "t\r");
}

INSTANTIATE_TEST_SUITE_P(All, OperationTest,
                         testing::Values(Operation{L"[CKespCommObj - Query()]", "Query",
                                                   [](CKespCommObj& comm) {
                                                     std::wstring result;
                                                     return comm.Query(result, L"t", L"01", L"2.5");
                                                   }},
                                         Operation{L"[CKespCommObj - QueryBinary()]", "QueryBinary",
                                                   [](CKespCommObj& comm) {
                                                     BinaryValue result;
                                                     return comm.QueryBinary(result, L"t", L"01", L"2.5");
                                                   }},
                                         Operation{L"[CKespCommObj - Update()]", "Update",
                                                   [](CKespCommObj& comm) {
                                                     return comm.Update(L"t", L"01", L"2.5");
                                                   }}),
                         [](const testing::TestParamInfo<Operation>& info) { return info.param.name; });

}  // namespace
}  // namespace kesp
