// Unit tests of Edit on each transport.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "commobj/kesp_comm_obj_fixture.h"

namespace kesp {
namespace {

using testing::IsEmpty;

constexpr wchar_t kHelpFile[] = L"C:\\help\\lab.hlp";

class CKespCommObjEditingTest : public KespCommObjFixture {
 protected:
  CKespCommObjEditingTest() {
    fakes_.clock.SetStepPerReading(1);
    ports_.line.Answer("t\r", "20.5\r\n");
  }

  bool Edit(std::int32_t flags = 0, const std::wstring& help_file = {}, std::int32_t help_context = 0) {
    return comm_->Edit(static_cast<EEditCommFlags>(flags), help_file, help_context);
  }
  bool Query() {
    result_.clear();
    return comm_->Query(result_, L"t");
  }
  // A query that leaves the serial port open.
  void LeavePortOpen() {
    comm_->SetAutoClose(false);
    ASSERT_TRUE(Query());
    ASSERT_TRUE(ports_.line.open);
  }
  void ExpectQueryOpensThePort() {
    EXPECT_FALSE(ports_.line.open);
    EXPECT_TRUE(Query());
    EXPECT_EQ(result_, L"20.5");
    EXPECT_EQ(comm_->CommError(), ECommError::cfrSuccess);
  }

  // A dialog that fails, told in a box that fails, too, the first time.
  void FailWithItsBox() {
    serial_dialog_.on_show = [](CKespCOMPort3&) { throw Failure(5, L"", L"odd"); };
    network_dialog_.on_show = [](CKespTCP&) { throw Failure(5, L"", L"odd"); };
    fakes_.user.on_box = [this] {
      fakes_.user.on_box = nullptr;
      throw std::runtime_error("no box");
    };
  }

  std::wstring result_;
};

TEST_F(CKespCommObjEditingTest, AllArgumentsAndTheAnswer_AreHandedOn) {
  for (const bool answer : {true, false}) {
    comm_->SetCommStyle(ECommStyle::csRS232);
    serial_dialog_.answer = answer;
    EXPECT_EQ(Edit(5, kHelpFile, 4711), answer);
    comm_->SetCommStyle(ECommStyle::csTCPIP);
    network_dialog_.answer = answer;
    EXPECT_EQ(Edit(8, L"other.hlp", 4712), answer);
  }
  ASSERT_EQ(serial_dialog_.shown.size(), 2u);
  EXPECT_TRUE(serial_dialog_.shown[0].show_extended_page);
  EXPECT_FALSE(serial_dialog_.shown[0].show_smart_switch_page);
  EXPECT_TRUE(serial_dialog_.shown[0].show_ir_dongle);
  EXPECT_EQ(serial_dialog_.shown[0].help_context, 4711);
  ASSERT_EQ(network_dialog_.shown.size(), 2u);
  EXPECT_TRUE(network_dialog_.shown[0].show_extended_page);
  EXPECT_EQ(network_dialog_.shown[0].help_context, 4712);
  EXPECT_EQ(fakes_.user.help_file(), L"other.hlp");
}

TEST_F(CKespCommObjEditingTest, ArgumentsLeftOut_ShowTheFirstPageOnly) {
  EXPECT_TRUE(comm_->Edit());
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  EXPECT_TRUE(comm_->Edit());
  ASSERT_EQ(serial_dialog_.shown.size(), 1u);
  EXPECT_FALSE(serial_dialog_.shown[0].show_extended_page);
  EXPECT_FALSE(serial_dialog_.shown[0].show_smart_switch_page);
  EXPECT_FALSE(serial_dialog_.shown[0].show_ir_dongle);
  EXPECT_EQ(serial_dialog_.shown[0].help_context, 0);
  ASSERT_EQ(network_dialog_.shown.size(), 1u);
  EXPECT_FALSE(network_dialog_.shown[0].show_extended_page);
  EXPECT_EQ(network_dialog_.shown[0].help_context, 0);
  EXPECT_EQ(fakes_.user.help_file(), L"");
}

TEST_F(CKespCommObjEditingTest, Dialogs_WorkOnTheObjectsOwnTransports) {
  serial_dialog_.on_show = [](CKespCOMPort3& port) { port.SetPort(9); };
  network_dialog_.on_show = [](CKespTCP& tcp) { tcp.SetPort(502); };
  EXPECT_TRUE(Edit());
  EXPECT_EQ(comm_->serial().Port(), 9);
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  EXPECT_TRUE(Edit());
  EXPECT_EQ(comm_->network().Port(), 502);
}

TEST_F(CKespCommObjEditingTest, IeeeOrNoTransport_FalseOrRaisedWithoutADialog) {
  comm_->SetCommStyle(ECommStyle::csIEEE);
  EXPECT_FALSE(Edit(15, kHelpFile, 3));
  comm_->SetCommStyle(ECommStyle::csNone);
  EXPECT_EQ(RaisedBy([&] { Edit(15, kHelpFile, 3); }),
            (Raised{-2147221303, L"[CKespCommObj - Edit()]", L"Communications object not initialized"}));
  EXPECT_TRUE(serial_dialog_.shown.empty());
  EXPECT_TRUE(network_dialog_.shown.empty());
  EXPECT_TRUE(bus_.heard.empty());
  EXPECT_EQ(fakes_.user.help_file(), L"");
  EXPECT_EQ(fakes_.user.TakeBoxes(), Boxes{});
}

TEST_F(CKespCommObjEditingTest, Serial_PortThatAQueryLeftOpen_TheNextQueryOpensItAgain) {
  for (const bool answer : {true, false}) {
    LeavePortOpen();
    serial_dialog_.answer = answer;
    EXPECT_EQ(Edit(), answer);
    ExpectQueryOpensThePort();
  }
}

TEST_F(CKespCommObjEditingTest, Serial_DialogFails_TheNextQueryOpensThePortAgain) {
  LeavePortOpen();
  serial_dialog_.on_show = [](CKespCOMPort3&) { throw std::runtime_error("no window"); };
  EXPECT_FALSE(Edit());
  ExpectQueryOpensThePort();
}

// A timer of the client's goes on while a modal dialog is shown.
TEST_F(CKespCommObjEditingTest, Serial_QueryBehindTheDialog_OpensThePortAndSoDoesTheNext) {
  LeavePortOpen();
  serial_dialog_.on_show = [this](CKespCOMPort3&) {
    ExpectQueryOpensThePort();
    EXPECT_TRUE(ports_.line.open);
  };
  EXPECT_TRUE(Edit());
  ExpectQueryOpensThePort();
}

// What even the transport cannot show, this object shows under words of its own.
TEST_F(CKespCommObjEditingTest, Failure_IsShownOnce) {
  for (const auto& [style, settings] :
       {std::pair{ECommStyle::csRS232, L"COM port"}, {ECommStyle::csTCPIP, L"TCP/IP"}}) {
    comm_->SetCommStyle(style);
    FailWithItsBox();
    const MessageBoxRequest own = ErrorBox(std::wstring(L"edit ") + settings + L" settings", L"5 - odd");
    EXPECT_FALSE(Edit());
    EXPECT_EQ(fakes_.user.TakeBoxes(),
              (Boxes{own, ErrorBox(L"edit communication settings",
                                   L"51 - Internal error (no box)\r\n(KespCommObj)")}));
    EXPECT_FALSE(Edit());
    EXPECT_EQ(fakes_.user.TakeBoxes(), Boxes{own});
  }
}

TEST_F(CKespCommObjEditingTest, BoxFails_TheNextQueryOpensThePortAllTheSame) {
  LeavePortOpen();
  FailWithItsBox();
  serial_dialog_.on_show = [this](CKespCOMPort3&) {
    EXPECT_TRUE(Query());
    throw Failure(5, L"", L"odd");
  };
  EXPECT_FALSE(Edit());
  int openings = 0;
  ports_.line.record = [&](const std::string& call) { openings += call.starts_with("Open ") ? 1 : 0; };
  EXPECT_TRUE(Query());
  ports_.line.record = [](const std::string&) {};
  EXPECT_EQ(openings, 1);
}

TEST_F(CKespCommObjEditingTest, Status_StaysAsItWas) {
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  EXPECT_FALSE(Query());
  const auto fails = [](auto&) { throw std::runtime_error("no window"); };
  for (const ECommStyle style : {ECommStyle::csRS232, ECommStyle::csTCPIP, ECommStyle::csIEEE}) {
    comm_->SetCommStyle(style);
    Edit();
    serial_dialog_.on_show = fails;
    network_dialog_.on_show = fails;
    Edit();
    serial_dialog_.on_show = nullptr;
    network_dialog_.on_show = nullptr;
    EXPECT_EQ(comm_->CommError(), ECommError::cfrInvalidIPAddress);
    EXPECT_EQ(comm_->CommErrorSource(), L"[CKespTCP - Initialize()]");
    EXPECT_EQ(comm_->CommErrorDescr(), L"Invalid IP Address");
  }
}

TEST_F(CKespCommObjEditingTest, Trace_HasNoLinesOfEditing) {
  StartTrace();
  comm_->serial().SetCreateLogFile(false);
  EXPECT_TRUE(Edit());
  comm_->SetCommStyle(ECommStyle::csTCPIP);
  EXPECT_TRUE(Edit());
  EXPECT_THAT(Trace(), IsEmpty());
}

}  // namespace
}  // namespace kesp
