// The radio modem on the serial line through the transport's interface, and the file that remembers its
// target.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <utility>

#include "tests/clients/private_temporary_folder.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

// Plays a modem with these settings:
constexpr std::pair<const char*, const char*> kAnswers[] = {
    {"+++", "OK\r"},    {"ATSH\r", "13A200\r"}, {"ATSL\r", "40A1B2C3\r"},
    {"ATPL\r", "4\r"},  {"ATID\r", "3332\r"},   {"ATCH\r", "C\r"},
    {"ATMY\r", "1A\r"}, {"ATCT\r", "F\r"},      {"\r", "OK\r"},
};

class SerialModemTest : public SerialFixture {
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
  }
  bool PointAt(short address) {
    EXPECT_EQ(RefusalOf(port_->RFWriteModemInstrAddress(address, &answer_)), Refusal{});
    return Answer();
  }
  // The six settings, which were "kept" before.
  std::vector<std::wstring> ReadSettings() {
    std::array<Text, 6> settings;
    for (Text& setting : settings) *setting.in_out() = SysAllocString(L"kept");
    EXPECT_EQ(RefusalOf(port_->RFReadModemSettings(settings[0].in_out(), settings[1].in_out(),
                                                   settings[2].in_out(), settings[3].in_out(),
                                                   settings[4].in_out(), settings[5].in_out(), &answer_)),
              Refusal{});
    std::vector<std::wstring> found;
    for (const Text& setting : settings) found.push_back(setting.str());
    return found;
  }

  static inline std::unique_ptr<PrivateTemporaryFolder> folder_;
};

TEST_F(SerialModemTest, Address_IsRememberedForOtherObjectsUntilTheEnd) {
  PlayModem();
  MustOpen();
  const DWORD start = GetTickCount();
  EXPECT_TRUE(PointAt(26));
  EXPECT_GE(GetTickCount() - start, 1000U) << "the modem wants a second of silence";
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATDH0\rATDL1A\rATWR\rATCN\r");
  EXPECT_EQ(Remembered(), L"26");
  WritePrivateProfileStringW((L"COM" + SerialPortText()).c_str(), L"InstrAddr", L"12",
                             SettingsPath().c_str());
  EXPECT_TRUE(PointAt(12));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
  port_.Reset();
  EXPECT_EQ(Remembered(), L"-1") << "the next user's modem may be another one";
}

TEST_F(SerialModemTest, Settings_AreReadAndWritten) {
  PlayModem();
  EXPECT_EQ(ReadSettings(),
            (std::vector<std::wstring>{L"13A20040A1B2C3", L"4", L"13106", L"12", L"26", L"1500"}));
  EXPECT_TRUE(Answer()) << "opens the port itself";
  EXPECT_FALSE(IsAvailable()) << "and leaves it open";
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATSH\rATSL\rATPL\rATID\rATCH\rATMY\rATCT\rATCN\r");
  EXPECT_EQ(RefusalOf(port_->RFWriteModemSettings(13106, 12, 26, 1500, VARIANT_TRUE, &answer_)), Refusal{});
  EXPECT_TRUE(Answer());
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATID3332\rATCHC\rATMY1A\rATCTF\rATWR\rATCN\r");
}

TEST_F(SerialModemTest, NoModem_NothingButTheCallIsSent) {
  SetTimeOut(300);
  EXPECT_EQ(ReadSettings(), std::vector<std::wstring>(6, L"kept"));
  EXPECT_FALSE(Answer());
  EXPECT_FALSE(PointAt(12));
  EXPECT_EQ(Remembered(), L"none");
  EXPECT_EQ(RefusalOf(port_->RFWriteModemSettings(13106, 12, 26, 1500, VARIANT_TRUE, &answer_)), Refusal{});
  EXPECT_TRUE(Answer()) << "who wants to be sure reads them back";
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++++++++");
}

}  // namespace
}  // namespace kesp::clients
