// Handlers that act on the serial transport that calls them: calling back in, disconnecting, letting the last
// reference go.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/clients/serial_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialHandlersTest : public SerialEventsFixture {
 protected:
  void SetUp() override {
    wire_.OnBytes("?\r").Reply("12").Reply("345\r\n").After(Milliseconds(100));
    MustOpen();
  }
  void On(const std::wstring& event, std::function<void()> action) {
    recorder_->handlers[event] = [action = std::move(action)](DISPPARAMS&) { action(); };
  }
  void Exchange() {
    SetTimeOut(5000);
    EXPECT_EQ(RefusalOf(WriteLine(L"?")), Refusal{});
    EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
    EXPECT_EQ(reply_.str(), L"12345");
  }
};

TEST_F(SerialHandlersTest, ReadsAndChangesProperties) {
  On(L"ReadBegin", [&] {
    EXPECT_EQ(Read(port_, &_CKespCOMPort3::GetSettings), L"9600,N,8,1");
    EXPECT_FALSE(IsAvailable());
  });
  On(L"ReadUpdate", [&] { EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_StripCRLF, VARIANT_FALSE), S_OK); });
  SetTimeOut(5000);
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(ReadLine(), S_OK);
  EXPECT_EQ(reply_.str(), L"12345\r\n") << "the setting counts from then on";
}

TEST_F(SerialHandlersTest, ReadsTheReplyItself) {
  Text taken;
  On(L"WriteEnd", [&] {
    recorder_->handlers.clear();
    SetTimeOut(5000);
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(port_->ReadLine(taken.in_out(), &answer), S_OK);
    SetTimeOut(kSerialTimeOut);
  });
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(ReadLine(), ERR_READ_TIMEOUT) << "the reply is gone";
  EXPECT_EQ(taken.str(), L"12345");
}

TEST_F(SerialHandlersTest, ExchangesAnotherLineInTheMiddleOfAWrite) {
  wire_.OnBytes("t\r").Reply("21.5\r\n");
  On(L"WriteBegin", [&] {
    recorder_->handlers.clear();
    Text inner;
    VARIANT_BOOL answer = VARIANT_FALSE;
    SetTimeOut(5000);
    EXPECT_EQ(WriteLine(L"t"), S_OK);
    EXPECT_EQ(port_->ReadLine(inner.in_out(), &answer), S_OK);
    EXPECT_EQ(inner.str(), L"21.5");
  });
  Exchange();
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "t\r?\r");
}

TEST_F(SerialHandlersTest, ClosesThePort_TheReadFails) {
  On(L"ReadUpdate", [&] { EXPECT_EQ(port_->ClosePort(), S_OK); });
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ControlError(8018), L"CKespCOMPort3 - ReadLine() [commCOMControl]",
                     L"Operation valid only when the port is open"}));
  EXPECT_EQ(reply_.str(), L"12");
  EXPECT_TRUE(IsAvailable());
}

TEST_F(SerialHandlersTest, ReopensThePort_TheWriteGoesOn) {
  On(L"WriteBegin", [&] { EXPECT_EQ(OpenPort(), S_OK); });
  Exchange();
}

TEST_F(SerialHandlersTest, Fails_NothingChanges) {
  recorder_->result = E_FAIL;
  Exchange();
}

TEST_F(SerialHandlersTest, DisconnectsItself) {
  On(L"WriteBegin", [&] { connection_.Disconnect(); });
  Exchange();
  EXPECT_EQ(journal(), Lines{Entry(L"WriteBegin", L"?")});
}

TEST_F(SerialHandlersTest, DisconnectsTheNext_WhichIsNotCalledAnyMore) {
  const auto second = EventRecorder::Make(__uuidof(__CKespCOMPort3));
  Connection connection(port_.Get(), __uuidof(__CKespCOMPort3), second.Get());
  On(L"WriteBegin", [&] { connection.Disconnect(); });
  Exchange();
  EXPECT_EQ(second->journal, Lines{});
  EXPECT_EQ(second->references(), 1U);
}

TEST_F(SerialHandlersTest, ConnectsAnother_WhichHearsFromTheNextEventOn) {
  const auto second = EventRecorder::Make(__uuidof(__CKespCOMPort3));
  std::unique_ptr<Connection> connection;
  On(L"WriteEnd", [&] {
    connection = std::make_unique<Connection>(port_.Get(), __uuidof(__CKespCOMPort3), second.Get());
  });
  Exchange();
  EXPECT_EQ(second->journal,
            (Lines{Entry(L"ReadBegin"), Entry(L"ReadUpdate", L"2"), Entry(L"ReadUpdate", L"7")}));
}

// The object lives as long as the call that is on its way, and closes its port behind it.
class SerialLastReferenceTest : public testing::Test {
 protected:
  SerialLastReferenceTest() {
    UseSerialLine(port_);
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(port_->OpenPort(&answer), S_OK);
    Connection(port_.Get(), __uuidof(__CKespCOMPort3), recorder_.Get()).Abandon();
  }

  // Lets go of the object at the event. The raw pointer stays good for the call on its way.
  _CKespCOMPort3* ReleaseAt(const std::wstring& event) {
    recorder_->handlers[event] = [this](DISPPARAMS&) {
      released_ = true;
      port_.Reset();
    };
    return port_.Get();
  }
  void ExpectGone() {
    EXPECT_TRUE(released_);
    EXPECT_EQ(recorder_->references(), 1U);
    const BarePort free(SerialWire::PortName());
    EXPECT_EQ(free.error(), DWORD{ERROR_SUCCESS});
  }

  Apartment apartment_;
  SerialWire wire_;
  ComPtr<_CKespCOMPort3> port_ = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespCOMPort3));
  bool released_ = false;
  VARIANT_BOOL answer_ = VARIANT_FALSE;
};

TEST_F(SerialLastReferenceTest, ReleasedDuringWriteLine) {
  EXPECT_EQ(
      ReleaseAt(L"WriteUpdate")->WriteLine(Text(L"*IDN?").get(), nullptr, nullptr, VARIANT_FALSE, &answer_),
      S_OK);
  EXPECT_EQ(answer_, VARIANT_TRUE);
  EXPECT_EQ(wire_.Receive(6), "*IDN?\r");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, ReleasedDuringReadLine) {
  Text reply;
  wire_.Send("12.345\r\n");
  EXPECT_EQ(ReleaseAt(L"ReadUpdate")->ReadLine(reply.in_out(), &answer_), S_OK);
  EXPECT_EQ(reply.str(), L"12.345");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, ReleasedJustBeforeAnError) {
  Text reply;
  EXPECT_EQ(RefusalOf(ReleaseAt(L"ReadTimeOut")->ReadLine(reply.in_out(), &answer_)).source,
            L"CKespCOMPort3 - ReadLine()");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, ReleasedDuringDownload) {
  Text data;
  wire_.Send("data");
  EXPECT_EQ(ReleaseAt(L"DownloadUpdate")->Download(data.in_out(), &answer_), S_OK);
  EXPECT_EQ(answer_, VARIANT_TRUE);
  EXPECT_EQ(data.str(), L"data");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, ReleasedDuringAutoDetect) {
  Text answer;
  EXPECT_EQ(port_->ClosePort(), S_OK);
  wire_.OnBytes("*IDN?\r").Reply("KESP\r\n");
  EXPECT_EQ(
      ReleaseAt(L"AutoDetectUpdate")->AutoDetect(answer.in_out(), dlSCPIOnly, Text(L"").get(), &answer_),
      S_OK);
  EXPECT_EQ(answer_, VARIANT_TRUE);
  EXPECT_EQ(answer.str(), L"KESP");
  ExpectGone();
}

TEST_F(SerialLastReferenceTest, FacadeAndTransportReleasedDuringAQuery) {
  EXPECT_EQ(port_->ClosePort(), S_OK);
  released_ = true;
  port_.Reset();
  auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  auto port = SerialTransport(comm);
  UseSerialLine(port);
  auto connection = std::make_unique<Connection>(port.Get(), __uuidof(__CKespCOMPort3), recorder_.Get());
  recorder_->handlers[L"ReadBegin"] = [&](DISPPARAMS&) {
    connection.reset();
    port.Reset();
    comm.Reset();
  };
  wire_.OnBytes("*IDN?\r").Reply("KESP\r\n");
  Text reply;
  _CKespCommObj* const called = comm.Get();
  EXPECT_EQ(called->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer_), S_OK);
  EXPECT_EQ(answer_, VARIANT_TRUE);
  EXPECT_EQ(reply.str(), L"KESP");
  EXPECT_EQ(comm, nullptr);
  ExpectGone();
}

}  // namespace
}  // namespace kesp::clients
