// The trace file: its lines, their order, and when there is none.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/lines_fixture.h"
#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {
namespace {

class TraceTest : public CommObjFixture {
 protected:
  // The communication object's own lines alone, unless the transport is to write too.
  void Start(VARIANT_BOOL transport = VARIANT_FALSE) {
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, file_.path()), S_OK);
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_CreateLogFile, transport), S_OK);
  }
  void LoseAddress() { EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"0.0.0.0"), S_OK); }

  TemporaryFile file_;
  const std::wstring no_address_ =
      L"TCP: ** Initialize() Error info: Source- [CKespTCP - Initialize()]  Description- Invalid IP Address "
      L"**";
};

TEST_F(TraceTest, DebuggingOff_NoFile) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, file_.path()), S_OK);
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_TRUE(Update(L"t"));
  EXPECT_FALSE(file_.Exists());
}

TEST_F(TraceTest, Query_Success) {
  Start();
  EXPECT_TRUE(Query(L"*IDN?"));
  EXPECT_EQ(file_.Messages(),
            (Lines{L"Beginning Query()... (command: *IDN?)", L"TCP: Initialize()", L"TCP: WriteLine(*IDN?)",
                   L"TCP: ReadLine()", L"TCP: result- KESP,TORTURE,SIM00666,1.0", L"TCP: Uninitialize()",
                   L"Exiting Query()...(command: *IDN?)"}));
}

TEST_F(TraceTest, Query_Failure) {
  Start();
  LoseAddress();
  EXPECT_FALSE(Query(L"t"));
  EXPECT_EQ(file_.Messages(), (Lines{L"Beginning Query()... (command: t)", L"TCP: Initialize()", no_address_,
                                     L"TCP: Uninitialize()", L"Exiting Query()...(command: t)"}));
}

TEST_F(TraceTest, QueryBinary_SuccessAndFailure) {
  Start();
  EXPECT_TRUE(QueryBinary(L"*IDN?"));
  LoseAddress();
  EXPECT_FALSE(QueryBinary(L"t"));
  EXPECT_EQ(file_.Messages(),
            (Lines{L"TCP: Initialize()", L"TCP: WriteLine(*IDN?)", L"TCP: ReadLineBinary()",
                   L"TCP: Uninitialize()", L"TCP: Initialize()", no_address_, L"TCP: Uninitialize()"}));
}

TEST_F(TraceTest, Update_SuccessAndFailure) {
  Start();
  EXPECT_TRUE(Update(L"SETP 20"));
  LoseAddress();
  EXPECT_FALSE(Update(L"t"));
  EXPECT_EQ(file_.Messages(),
            (Lines{L"Beginning Update()...(command: SETP 20)", L"TCP: Initialize()",
                   L"TCP: WriteLine(SETP 20)", L"TCP: Uninitialize()",
                   L"Exiting Update()...(command: SETP 20)", L"Beginning Update()...(command: t)",
                   L"TCP: Initialize()", L"TCP: Initialize failed!! (-2147221264-Invalid IP Address)",
                   no_address_, L"TCP: Uninitialize()", L"Exiting Update()...(command: t)"}));
}

TEST_F(TraceTest, OperationIsRefused_LeavesNoLine) {
  Start();
  VARIANT_BOOL answer = VARIANT_TRUE;
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csNone);
  EXPECT_EQ(comm_->Update(Text(L"t").get(), nullptr, nullptr, &answer), ERR_NO_COMM_OBJECT);
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csIEEE);
  Value bytes(5);
  EXPECT_EQ(comm_->QueryBinary(bytes.get(), Text(L"t").get(), nullptr, nullptr, &answer),
            ERR_COMM_STYLE_NOT_SUPPORTED);
  WriteByReference(comm_, &_CKespCommObj::put_CommStyle, csTCPIP);
  comm_->Update(Text(L"t").get(), nullptr, nullptr, &answer);
  const Lines messages = file_.Messages();
  ASSERT_FALSE(messages.empty());
  EXPECT_EQ(messages.front(), L"Beginning Update()...(command: t)");
  EXPECT_EQ(messages[1], L"TCP: Initialize()");
}

TEST_F(TraceTest, TransportWritesIntoTheSameFileInOrder) {
  Start(VARIANT_TRUE);
  EXPECT_TRUE(Query(L"ECHO x"));
  const Lines messages = file_.Messages();
  const std::wstring peer = InstrumentHost() + L":" + std::to_wstring(InstrumentPort());
  const Lines beginning = {
      L"Beginning Query()... (command: ECHO x)",
      L"TCP: Initialize()",
      L"Initialize()",
      L"Check IP Address...",
      L"Check Port...",
      L"Connecting to " + InstrumentHost() + L" on port " + std::to_wstring(InstrumentPort()) + L"...",
      L"Waiting for connection to be established...",
      L"Connect (" + peer + L")",
      L"Initialize() Done...",
      L"TCP: WriteLine(ECHO x)"};
  ASSERT_GT(messages.size(), beginning.size() + 5);
  EXPECT_EQ(Lines(messages.begin(), messages.begin() + static_cast<std::ptrdiff_t>(beginning.size())),
            beginning);
  EXPECT_EQ(messages.back(), L"Exiting Query()...(command: ECHO x)");
  const auto is_there = [&](const std::wstring& message) {
    return std::find(messages.begin(), messages.end(), message) != messages.end();
  };
  EXPECT_TRUE(is_there(L"Send complete (" + peer + L")"));
  EXPECT_TRUE(is_there(L"DataArrival (" + peer + L") Bytes: 7"));
  EXPECT_NE(
      file_.Content().find("Socket Data arrived: <ECHO x\r> (length: 7  last byte: 13 EOS: 13 EOS?: True)"),
      std::string::npos);
}

TEST_F(TraceTest, FileOfAnEarlierDay_GetsItsDateAndANewOneIsBegun) {
  const std::wstring date = file_.WriteDaysAgo(3, "old line\r\n");
  const TemporaryFile old(file_.path() + L" " + date);
  Start();
  EXPECT_TRUE(Update(L"t"));
  EXPECT_EQ(old.Content(), "old line\r\n");
  EXPECT_EQ(file_.Messages().size(), 5u);
}

TEST_F(TraceTest, FileCannotBeWritten_ChangesNothing) {
  for (const std::wstring& path :
       {std::wstring(L"Z:\\no such folder\\trace.log"), std::wstring(L"C:\\windows"), std::wstring(L""),
        std::wstring(L"bad|name?*<>")}) {
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_DebugFilename, path), S_OK);
    EXPECT_EQ(Write(comm_, &_CKespCommObj::put_Debugging, VARIANT_TRUE), S_OK);
    EXPECT_TRUE(Query(L"*IDN?")) << testing::PrintToString(path);
    ExpectStatus(cfrSuccess);
  }
}

}  // namespace
}  // namespace kesp::clients
