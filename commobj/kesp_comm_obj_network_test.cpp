// Unit tests of Query, QueryBinary and Update over the network: what is common to all outcomes, and success.
#include <gtest/gtest.h>

#include "commobj/kesp_comm_obj_fixture.h"
#include "support/lines_fixture.h"

namespace kesp {
namespace {

class CKespCommObjNetworkTest : public KespCommObjFixture {
 protected:
  CKespCommObjNetworkTest() {
    UseNetwork();
    StartTrace();
  }

  bool Query(const std::wstring& cmd = L"t") { return comm_->Query(result_, cmd); }
  bool QueryBinary(const std::wstring& cmd = L"t") { return comm_->QueryBinary(bytes_, cmd); }

  void ExpectSuccess() {
    EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
    EXPECT_EQ(comm_->CommErrorSource(), L"");
    EXPECT_EQ(comm_->CommErrorDescr(), L"");
    EXPECT_TRUE(IsClosed());
  }

  void Replies(const std::string& reply) {
    Script([reply](SocketControlFake& socket) { socket.ThenConnects().ThenReceives(reply); });
  }

  std::wstring result_ = L"before";
  BinaryValue bytes_;
};

TEST_F(CKespCommObjNetworkTest, Query_Reply_IsReturnedTracedAndTheConnectionClosedWhateverAutoCloseSays) {
  comm_->SetAutoClose(false);
  Replies("1.0\r\n2.0\r\n");
  EXPECT_TRUE(Query(L"MEAS?"));
  EXPECT_EQ(result_, L"1.0  2.0");
  EXPECT_EQ(socket_->sent, "MEAS?\r");
  ExpectSuccess();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Query()... (command: MEAS?)", L"TCP: Initialize()",
                            L"TCP: WriteLine(MEAS?)", L"TCP: ReadLine()", L"TCP: result- 1.0  2.0",
                            L"TCP: Uninitialize()", L"Exiting Query()...(command: MEAS?)"}));
}

TEST_F(CKespCommObjNetworkTest, QueryBinary_Reply_IsReturnedAsBytesAndTracedWithoutFrame) {
  Replies("\x01\xFF\r");
  EXPECT_TRUE(QueryBinary(L"DUMP?"));
  EXPECT_EQ(bytes_, BinaryValue(Bytes{1, 255, 13}));
  ExpectSuccess();
  EXPECT_EQ(Trace(), (Lines{L"TCP: Initialize()", L"TCP: WriteLine(DUMP?)", L"TCP: ReadLineBinary()",
                            L"TCP: Uninitialize()"}));
}

TEST_F(CKespCommObjNetworkTest, QueryBinary_QuietGap_IsBinaryTimeoutms) {
  comm_->network().SetTerminateOnEOS(false);
  comm_->SetBinaryTimeoutms(450);
  Replies("abc");
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_TRUE(QueryBinary());
  // Connecting and the arrival take a pumping of 100 ms each; then more than 450 ms of silence.
  EXPECT_EQ(fakes_.clock.tick() - start, 700);
}

TEST_F(CKespCommObjNetworkTest, Update_Sent_IsASuccessWithoutReading) {
  Replies("ignored\r");
  EXPECT_TRUE(comm_->Update(L"SETP 20"));
  EXPECT_EQ(socket_->sent, "SETP 20\r");
  ExpectSuccess();
  EXPECT_EQ(Trace(), (Lines{L"Beginning Update()...(command: SETP 20)", L"TCP: Initialize()",
                            L"TCP: WriteLine(SETP 20)", L"TCP: Uninitialize()",
                            L"Exiting Update()...(command: SETP 20)"}));
}

TEST_F(CKespCommObjNetworkTest, Query_InvalidCharacters_IsAReadFailureThatLeavesTheReply) {
  Replies("1\x81\r");
  EXPECT_FALSE(Query());
  // The transport raises the serial list's number for this, which is none of the network list's.
  EXPECT_EQ(comm_->CommError(), ECommError::cfrReadFailed);
  EXPECT_EQ(comm_->CommErrorSource(), L"CKespTCP - ReadLine()");
  EXPECT_EQ(comm_->CommErrorDescr(), L"Invalid characters received on IP address 10.0.0.7.");
  EXPECT_EQ(result_, SystemCodePage().FromBytes("1\x81\r"));
  EXPECT_EQ(Trace(),
            (Lines{L"Beginning Query()... (command: t)", L"TCP: Initialize()", L"TCP: WriteLine(t)",
                   L"TCP: ReadLine()",
                   L"TCP: ** ReadLine() Error info: Source- CKespTCP - ReadLine()  Description- Invalid "
                   L"characters received on IP address 10.0.0.7. **",
                   L"TCP: Uninitialize()", L"Exiting Query()...(command: t)"}));
}

TEST_F(CKespCommObjNetworkTest, HandlerDuringOperation_SeesOtherErrorAndEmptyTexts) {
  EXPECT_FALSE(Query());
  EXPECT_NE(comm_->CommErrorDescr(), L"");
  Replies("1.0\r");
  std::vector<ECommError> seen;
  events_.handlers[L"ConnectBegin"] = [&] {
    seen.push_back(comm_->CommError());
    EXPECT_EQ(comm_->CommErrorSource(), L"");
    EXPECT_EQ(comm_->CommErrorDescr(), L"");
  };
  events_.handlers[L"DataArrivalEnd"] = [&] { seen.push_back(comm_->CommError()); };
  EXPECT_TRUE(Query());
  EXPECT_EQ(seen, (std::vector<ECommError>{ECommError::cfrOtherError, ECommError::cfrOtherError}));
  ExpectSuccess();
}

// A handler's own operation on the same object fails; the one it interrupted succeeds all the same.
TEST_F(CKespCommObjNetworkTest, OperationWithinAnOperation_OuterOneTellsItsOwnOutcome) {
  Replies("1.0\r");
  events_.handlers[L"ConnectBegin"] = [&] {
    comm_->network().SetIPAddress(L"0.0.0.0");
    EXPECT_FALSE(comm_->Update(L"inner"));
    EXPECT_EQ(comm_->CommError(), ECommError::cfrInvalidIPAddress);
  };
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"1.0");
  ExpectSuccess();
}

TEST_F(CKespCommObjNetworkTest, CannotClose_OutcomeStays) {
  Replies("1.0\r");
  socket_->FailCall(4, 10038);  // SetProtocol, Connect, SendData, Close
  EXPECT_TRUE(Query());
  EXPECT_EQ(socket_->calls.back(), "Close");
  EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  EXPECT_EQ(comm_->CommErrorDescr(), L"");
  EXPECT_TRUE(fakes_.user.boxes().empty());
}

TEST_F(CKespCommObjNetworkTest, DebuggingOff_NothingIsWritten) {
  comm_->SetDebugging(false);
  Replies("1.0\r");
  EXPECT_TRUE(Query());
  EXPECT_TRUE(comm_->Update(L"t"));
  comm_->network().SetIPAddress(L"0.0.0.0");
  EXPECT_FALSE(QueryBinary());
  EXPECT_TRUE(fakes_.files.files().empty());
}

TEST_F(CKespCommObjNetworkTest, TraceCannotBeWritten_ChangesNothing) {
  fakes_.files.Refuse(FilesFake::Operation::kAppend);
  Replies("1.0\r");
  EXPECT_TRUE(Query());
  EXPECT_EQ(result_, L"1.0");
}

TEST_F(CKespCommObjNetworkTest, TraceOfYesterday_IsRolledOver) {
  fakes_.files.Put(comm_->DebugFilename(), "old\r\n", {2024, 5, 16});
  Replies("1.0\r");
  EXPECT_TRUE(Query());
  EXPECT_EQ(fakes_.files.Content(comm_->DebugFilename() + L" 2024-05-16"), "old\r\n");
  EXPECT_EQ(Trace().size(), 7u);
}

TEST_F(CKespCommObjNetworkTest, TransportLogOn_BothWriteIntoOneFileInOrder) {
  comm_->SetDebugging(true);
  comm_->network().SetIPAddress(L"0.0.0.0");
  EXPECT_FALSE(comm_->Update(L"t"));
  EXPECT_EQ(
      Trace(),
      (Lines{L"Beginning Update()...(command: t)", L"TCP: Initialize()", L"Initialize()",
             L"Check IP Address...", L"TCP: Initialize failed!! (-2147221264-Invalid IP Address)",
             L"TCP: ** Initialize() Error info: Source- [CKespTCP - Initialize()]  Description- Invalid IP "
             L"Address **",
             L"TCP: Uninitialize()", L"Exiting Update()...(command: t)"}));
}

}  // namespace
}  // namespace kesp
