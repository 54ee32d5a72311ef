// The radio modem on the serial line: its command mode, its settings, and where it points.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <utility>

#include "tests/clients/private_temporary_folder.h"
#include "tests/clients/serial_fixture.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {
namespace {

// Plays a modem with these settings:
constexpr std::pair<const char*, const char*> kAnswers[] = {
    {"+++", "OK\r"},      {"ATSH\r", "13A200\r"}, {"ATSL\r", "40A1B2C3\r"}, {"ATPL\r", "4\r"},
    {"ATID\r", "3332\r"}, {"ATCH\r", "C\r"},      {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"},
};

class SerialModemTest : public SerialEventsFixture {
 protected:
  static void SetUpTestSuite() { folder_ = std::make_unique<PrivateTemporaryFolder>(); }
  static void TearDownTestSuite() {
    DeleteFileW(SettingsPath().c_str());
    folder_.reset();
  }
  SerialModemTest() {
    DeleteFileW(SettingsPath().c_str());
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRFModem, VARIANT_TRUE), S_OK);
  }

  static std::wstring SettingsPath() { return folder_->FilePath(L"RFModem.ini"); }
  // Where the settings file says that the modem on the test's port points.
  static std::wstring Remembered() {
    std::array<wchar_t, 64> text{};
    GetPrivateProfileStringW((L"COM" + SerialPortText()).c_str(), L"InstrAddr", L"none", text.data(),
                             static_cast<DWORD>(text.size()), SettingsPath().c_str());
    return text.data();
  }
  void PlayModem() {
    for (const auto& [command, answer] : kAnswers) wire_.OnBytes(command).Reply(answer);
    wire_.OnBytes("\r").Reply("OK\r");
  }
  bool PointAt(short address) {
    EXPECT_EQ(RefusalOf(port_->RFWriteModemInstrAddress(address, &answer_)), Refusal{});
    return Answer();
  }
  bool ReadSettings() {
    EXPECT_EQ(RefusalOf(port_->RFReadModemSettings(settings_[0].in_out(), settings_[1].in_out(),
                                                   settings_[2].in_out(), settings_[3].in_out(),
                                                   settings_[4].in_out(), settings_[5].in_out(), &answer_)),
              Refusal{});
    return Answer();
  }
  bool WriteSettings(VARIANT_BOOL keep) {
    EXPECT_EQ(RefusalOf(port_->RFWriteModemSettings(13106, 12, 26, 1500, keep, &answer_)), Refusal{});
    return Answer();
  }
  void ExpectSettings(const std::vector<std::wstring>& expected) {
    std::vector<std::wstring> found;
    for (const Text& setting : settings_) found.push_back(setting.str());
    EXPECT_EQ(found, expected);
  }
  void ExpectStyleRestored() {
    EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_ControllerStyle), CS_KESP);
    EXPECT_EQ(Read(port_, &_CKespCOMPort3::GetSettings), L"9600,E,8,1") << "without the style's preset";
  }
  void SetUp() override {
    EXPECT_EQ(WriteByReference(port_, &_CKespCOMPort3::put_Parity, PARITY_EVEN), S_OK);
  }

  static inline std::unique_ptr<PrivateTemporaryFolder> folder_;
  std::array<Text, 6> settings_;
};

TEST_F(SerialModemTest, PointedTwice_TheSecondTimeNothingIsSent) {
  PlayModem();
  MustOpen();
  DWORD first_written = 0;
  recorder_->handlers[L"WriteBegin"] = [&](DISPPARAMS&) {
    recorder_->handlers.clear();
    first_written = GetTickCount();
  };
  const DWORD start = GetTickCount();
  EXPECT_TRUE(PointAt(26));
  EXPECT_GE(first_written - start, 1000U) << "the modem wants a second of silence";
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATDH0\rATDL1A\rATWR\rATCN\r");
  EXPECT_EQ(Remembered(), L"26");
  EXPECT_TRUE(PointAt(26));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
  ExpectStyleRestored();
  connection_.Disconnect();
  port_.Reset();
  EXPECT_EQ(Remembered(), L"-1") << "the next user's modem may be another one";
}

TEST_F(SerialModemTest, RememberedAddress_CountsForOtherObjectsToo) {
  WritePrivateProfileStringW((L"COM" + SerialPortText()).c_str(), L"InstrAddr", L"12",
                             SettingsPath().c_str());
  MustOpen();
  EXPECT_TRUE(PointAt(12));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

TEST_F(SerialModemTest, NothingConfirmed_AllIsSentAllTheSame) {
  wire_.OnBytes("+++").Reply("x").Reply("O").Reply("K\r").After(Milliseconds(30));
  MustOpen();
  EXPECT_TRUE(PointAt(10));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATDH0\rATDLA\rATWR\rATCN\r");
}

TEST_F(SerialModemTest, ReadSettings_ValuesOfTheModemInDecimal) {
  PlayModem();
  EXPECT_TRUE(ReadSettings()) << "opens the port itself";
  ExpectSettings({L"13A20040A1B2C3", L"4", L"13106", L"12", L"26", L"1500"});
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATSH\rATSL\rATPL\rATID\rATCH\rATMY\rATCT\rATCN\r");
  ExpectStyleRestored();
  EXPECT_FALSE(IsAvailable()) << "the port is left open";
}

TEST_F(SerialModemTest, ReadSettings_AnswerMissing_LeavesCommandModeAndTheArguments) {
  wire_.OnBytes("+++").Reply("OK\r");
  wire_.OnBytes("ATCN\r").Reply("OK\r");
  for (Text& setting : settings_) *setting.in_out() = SysAllocString(L"kept");
  EXPECT_FALSE(ReadSettings());
  ExpectSettings(std::vector<std::wstring>(6, L"kept"));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATSH\rATCN\r");
  ExpectStyleRestored();
}

TEST_F(SerialModemTest, WriteSettings_HexadecimalWithoutZerosAndKeptOnDemand) {
  PlayModem();
  MustOpen();
  EXPECT_TRUE(WriteSettings(VARIANT_FALSE));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATID3332\rATCHC\rATMY1A\rATCTF\rATCN\r");
  EXPECT_TRUE(WriteSettings(VARIANT_TRUE));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATID3332\rATCHC\rATMY1A\rATCTF\rATWR\rATCN\r");
  ExpectStyleRestored();
}

TEST_F(SerialModemTest, NoModem_NothingButTheCallIsSent) {
  for (Text& setting : settings_) *setting.in_out() = SysAllocString(L"kept");
  EXPECT_FALSE(ReadSettings());
  ExpectSettings(std::vector<std::wstring>(6, L"kept"));
  EXPECT_FALSE(PointAt(12));
  EXPECT_EQ(Remembered(), L"none");
  EXPECT_TRUE(WriteSettings(VARIANT_TRUE)) << "who wants to be sure reads them back";
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++++++++");
  ExpectStyleRestored();
}

TEST_F(SerialModemTest, AutoDetect_PointsTheModemAndTriesOneRateOnly) {
  PlayModem();
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_InstrAddr, 12), S_OK);
  EXPECT_EQ(port_->AutoDetect(reply_.in_out(), dlSCPIOnly, Text(L"").get(), &answer_), S_OK);
  EXPECT_TRUE(Answer());
  EXPECT_EQ(reply_.str(), L"OK") << "the modem's answer to everything else";
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATDH0\rATDLC\rATWR\rATCN\r*IDN?\r");
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 1U);
}

// A communication object points the modem before each query.
class SerialModemQueryTest : public SerialModemTest {
 protected:
  SerialModemQueryTest() {
    connection_.Disconnect();
    port_ = SerialTransport(comm_);
    UseSerialLine(port_);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRFModem, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_InstrAddr, 12), S_OK);
  }
  bool Query(const std::wstring& cmd) {
    EXPECT_EQ(comm_->Query(reply_.in_out(), Text(cmd).get(), nullptr, nullptr, &answer_), S_OK);
    return Answer();
  }

  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
};

TEST_F(SerialModemQueryTest, ModemIsPointedOnce_AndTheLogNamesTheAddress) {
  const TemporaryFile log;
  wire_.OnBytes("t\r").Reply("21.5\r");
  PlayModem();
  EXPECT_TRUE(Query(L"t"));
  EXPECT_EQ(reply_.str(), L"21.5");
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_LogFilename, log.path()), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_TRUE), S_OK);
  EXPECT_TRUE(Query(L"t"));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATDH0\rATDLC\rATWR\rATCN\rt\rt\r");
  const std::wstring number = SerialPortText();
  const std::wstring suffix = L" (RF address 12)";
  EXPECT_EQ(log.Messages(),
            (std::vector<std::wstring>{
                L"Opening COM port " + number + L" with settings 9600,E,8,1" + suffix,
                L"WriteLine..." + suffix, L"Clearing buffers..." + suffix,
                L"Sending 't\r' on COM port " + number + suffix, L"ReadLine..." + suffix,
                L"Received '21.5\r' (raw) on COM" + number + L"(Asc: 50 49 46 53 13 )" + suffix,
                L"Received '21.5' (filtered) on COM" + number + suffix,
                L"Closing COM port " + number + suffix, L"Closed COM port " + number + suffix}));
}

TEST_F(SerialModemQueryTest, NoModem_QueryFailsWithoutAStatusOfItsOwn) {
  EXPECT_FALSE(Query(L"t"));
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommError), cfrOtherError);
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommErrorSource), L"");
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++");
  EXPECT_TRUE(IsAvailable());
}

}  // namespace
}  // namespace kesp::clients
