// The port of the serial transport: opening, closing, availability, buffers, and the infrared adapter.
#include <gtest/gtest.h>

#include "support/lines_fixture.h"
#include "tests/clients/modem_lines.h"
#include "tests/clients/serial_fixture.h"
#include "tests/clients/temporary_file.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialPortTest : public SerialFixture {
 protected:
  void StartLog() {
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_LogFilename, log_.path()), S_OK);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_TRUE), S_OK);
  }
  bool Exists(short number) {
    VARIANT_BOOL exists = VARIANT_FALSE;
    EXPECT_EQ(port_->PortExists(number, &exists), S_OK);
    return exists == VARIANT_TRUE;
  }
  bool IsFree(short number) {
    VARIANT_BOOL available = VARIANT_FALSE;
    EXPECT_EQ(port_->IsPortAvailable(number, &available), S_OK);
    return available == VARIANT_TRUE;
  }

  TemporaryFile log_;
};

TEST_F(SerialPortTest, OpenedAgain_IsReopenedWithTheSettingsOfNow) {
  StartLog();
  MustOpen();
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br19200), S_OK);
  EXPECT_EQ(WriteByReference(port_, &_CKespCOMPort3::put_Parity, PARITY_EVEN), S_OK);
  MustOpen();
  EXPECT_EQ(port_->ClosePort(), S_OK);
  const std::wstring number = SerialPortText();
  EXPECT_EQ(log_.Messages(), (Lines{L"Opening COM port " + number + L" with settings 9600,N,8,1",
                                    L"Opening COM port " + number + L" with settings 19200,E,8,1",
                                    L"Closing COM port " + number, L"Closed COM port " + number}));
}

TEST_F(SerialPortTest, OpenedAgain_BytesPass) {
  MustOpen();
  MustOpen();
  wire_.OnBytes("?\r").Reply("!\r\n");
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(ReadLine(), S_OK);
  EXPECT_EQ(reply_.str(), L"!");
}

TEST_F(SerialPortTest, ClosedPort_ClosingItLogsNothing) {
  StartLog();
  EXPECT_EQ(port_->ClosePort(), S_OK);
  EXPECT_EQ(port_->ClosePort(), S_OK);
  EXPECT_FALSE(log_.Exists());
}

TEST_F(SerialPortTest, OpenPort_IsDeniedToOthersUntilItsEnd) {
  MustOpen();
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(port_->ClosePort(), S_OK);
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS});
  MustOpen();
  port_.Reset();
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS}) << "the object's end closes it";
}

TEST_F(SerialPortTest, MissingPort_NeitherExistsNorIsAvailable) {
  for (const short number : {kMissingPort, short{0}, short{-1}, short{257}, short{32767}}) {
    EXPECT_FALSE(Exists(number)) << number;
    EXPECT_FALSE(IsFree(number)) << number;
  }
}

TEST_F(SerialPortTest, HeldPort_ExistsAndIsNotAvailable) {
  const short number = SerialPortNumber();
  EXPECT_TRUE(Exists(number));
  EXPECT_TRUE(IsFree(number));
  EXPECT_TRUE(IsFree(number)) << "asking does not keep it";
  {
    const BarePort other(SerialWire::PortName());
    EXPECT_TRUE(Exists(number));
    EXPECT_FALSE(IsFree(number));
  }
  MustOpen();
  EXPECT_TRUE(Exists(number));
  EXPECT_FALSE(IsFree(number)) << "held by the object itself";
}

// Nobody can tell when bytes have arrived, so they are given more and more time.
TEST_F(SerialPortTest, ClearBuffers_DiscardsWhatWaits) {
  MustOpen();
  HRESULT read = S_OK;
  for (DWORD on_their_way = 25; on_their_way < 2000 && read == S_OK; on_their_way *= 2) {
    wire_.Send("junk\r\n");
    Sleep(on_their_way);
    EXPECT_EQ(port_->ClearBuffers(), S_OK);
    read = ReadLine();
  }
  EXPECT_EQ(read, ERR_READ_TIMEOUT);
  EXPECT_EQ(reply_.str(), L"");
}

struct AdapterRate {
  EKespBaudRate3 rate;
  int pulses;
};

class InfraredAdapterTest : public SerialFixture, public testing::WithParamInterface<AdapterRate> {
 protected:
  // The changes of the lines that opening the port makes.
  std::vector<LineChange> ChangesOfOpening() {
    const std::size_t before = LineChanges().size();
    MustOpen();
    std::vector<LineChange> changes = LineChanges();
    changes.erase(changes.begin(), changes.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_EQ(port_->ClosePort(), S_OK);
    return changes;
  }
  static std::string HistoryOf(const std::vector<LineChange>& changes) {
    std::string history;
    for (const LineChange& change : changes) {
      history += std::string(" ") + (change.dtr ? "D" : "") + (change.rts ? "R" : "");
    }
    return history;
  }
};

INSTANTIATE_TEST_SUITE_P(Rates, InfraredAdapterTest,
                         testing::Values(AdapterRate{br9600, 0}, AdapterRate{br19200, 1},
                                         AdapterRate{br57600, 2}, AdapterRate{br115200, 3},
                                         AdapterRate{br38400, 4}, AdapterRate{br300, 0}),
                         [](const auto& info) { return "Rate" + std::to_string(info.param.rate); });

// A pulse lasts 10 ms, and so does the pause behind it.
TEST_P(InfraredAdapterTest, Opening_PulsesDtrOnceAndRtsByTheRate) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, GetParam().rate), S_OK);
  const std::size_t opened = ChangesOfOpening().size();
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseIRDongle, VARIANT_TRUE), S_OK);
  std::vector<LineChange> changes = ChangesOfOpening();
  ASSERT_GE(changes.size(), opened);
  ASSERT_GE(opened, 1U);
  // From the last change that merely opening makes.
  changes.erase(changes.begin(), changes.begin() + static_cast<std::ptrdiff_t>(opened - 1));
  std::string expected = " DR R DR";
  for (int pulse = 0; pulse < GetParam().pulses; ++pulse) expected += " D DR";
  EXPECT_EQ(HistoryOf(changes), expected);
  for (std::size_t i = 2; i < changes.size(); ++i) {
    EXPECT_GE(changes[i].time - changes[i - 1].time, std::chrono::milliseconds(10)) << i;
  }
}

}  // namespace
}  // namespace kesp::clients
