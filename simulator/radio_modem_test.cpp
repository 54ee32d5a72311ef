// The radio modem: command mode and its silences, registers, and the instruments behind it.
#include "simulator/radio_modem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/description.h"
#include "simulator/played_device.h"

namespace kesp::simulator {
namespace {

using testing::Contains;
using testing::ElementsAre;

std::unique_ptr<Device> Named(const std::string& name) {
  return std::make_unique<PlayedDevice>(ReadInstrument(
      R"({"commands": {"N?": [{"send": ")" + name + R"("}], "S?": [{"wait_ms": 500}, {"send": "slow"}]}})"));
}

class RadioModemTest : public testing::Test {
 protected:
  RadioModem Modem(ModemAnswers answers = ModemAnswers::kWhole) {
    RadioModemSetup setup;
    setup.answers = answers;
    setup.write = [this](const ModemRegisters& registers) { written_ = registers; };
    setup.behind[0] = Named("zero");
    setup.behind[0x1A] = Named("twenty-six");
    return RadioModem(std::move(setup));
  }

  std::string At(int now, std::string_view bytes = {}) { return modem_.Take(bytes, Moment(now)).bytes; }

  // Command mode from 0 on, 50 ms later.
  void Enter() {
    At(0, "+++");
    EXPECT_EQ(At(50), "OK\r");
  }

  ModemRegisters written_;
  RadioModem modem_{Modem()};
};

TEST_F(RadioModemTest, OutsideCommandMode_TheAddressedInstrumentAnswers) {
  EXPECT_EQ(At(0, "N?\r"), "zero\r");
  EXPECT_EQ(modem_.Due(), std::nullopt);
}

TEST_F(RadioModemTest, PlusesBetweenSilences_StartCommandMode) {
  At(0, "x\r");
  EXPECT_EQ(At(1000, "+"), "");
  EXPECT_EQ(At(1001, "++"), "");
  EXPECT_EQ(modem_.Due(), Moment(1051));
  EXPECT_EQ(At(1050), "");
  const Deeds deeds = modem_.Take({}, Moment(1051));
  EXPECT_EQ(deeds.bytes, "OK\r");
  EXPECT_THAT(deeds.events, ElementsAre("command mode begins"));
}

TEST_F(RadioModemTest, PlusesWithoutSilenceBefore_GoToTheInstrument) {
  At(0, "x\r");
  const Deeds deeds = modem_.Take("+++\r", Moment(999));
  EXPECT_THAT(deeds.events, ElementsAre("address 0: command \"+++\""));
  EXPECT_EQ(At(5000), "");
}

TEST_F(RadioModemTest, PlusesWithAByteTooSoonAfter_GoToTheInstrument) {
  At(0, "+++");
  EXPECT_THAT(modem_.Take("\r", Moment(49)).events, ElementsAre("address 0: command \"+++\""));
  At(2000, "++++");
  EXPECT_THAT(modem_.Take("\r", Moment(2060)).events, ElementsAre("address 0: command \"++++\""));
}

TEST_F(RadioModemTest, TooFewPluses_GoToTheInstrumentAfterTheGuardTime) {
  At(0, "++");
  EXPECT_EQ(modem_.Due(), Moment(1000));
  At(1000);
  EXPECT_THAT(modem_.Take("\r", Moment(1001)).events, ElementsAre("address 0: command \"++\""));
}

TEST_F(RadioModemTest, GuardTime_IsThatOfTheSetup) {
  RadioModemSetup setup;
  setup.guard = std::chrono::milliseconds(10);
  RadioModem quick(std::move(setup));
  quick.Take("x", Moment(0));
  quick.Take("+++", Moment(10));
  EXPECT_EQ(quick.Take({}, Moment(60)).bytes, "OK\r");
}

TEST_F(RadioModemTest, Registers_AreReadAndSet) {
  Enter();
  const std::pair<const char*, const char*> cases[] = {
      {"ATSH\r", "13A200\r"},  {"ATSL\r", "40A1B2C3\r"},
      {"ATPL\r", "4\r"},       {"ATID\r", "3332\r"},
      {"ATCH\r", "C\r"},       {"ATMY\r", "0\r"},
      {"ATCT\r", "64\r"},      {"ATDH\r", "0\r"},
      {"ATDL\r", "0\r"},       {"ATDLffff\r", "OK\r"},
      {"ATDL\r", "FFFF\r"},    {"ATMY1\r", "OK\r"},
      {"ATMY\r", "1\r"},       {"ATDL123456789\r", "ERROR\r"},
      {"ATDLxy\r", "ERROR\r"}, {"ATXX\r", "ERROR\r"},
      {"AT\r", "ERROR\r"},     {"\r", "ERROR\r"},
      {"N?\r", "ERROR\r"},     {"ATDL\r", "FFFF\r"},
  };
  for (const auto& [command, answer] : cases) EXPECT_EQ(At(100, command), answer) << command;
}

TEST_F(RadioModemTest, Write_HandsOverAllRegisters) {
  Enter();
  EXPECT_EQ(At(60, "ATDL1A\rATWR\r"), "OK\rOK\r");
  EXPECT_EQ(written_.at("DL"), 0x1AU);
  EXPECT_EQ(written_.size(), 9U);
}

TEST_F(RadioModemTest, DestinationAddress_SelectsTheInstrument) {
  Enter();
  EXPECT_EQ(At(60, "ATDL1A\rATCN\rN?\r"), "OK\rOK\rtwenty-six\r");
  At(2000, "+++");
  EXPECT_EQ(At(2050, "ATDL7\rATCN\r"), "OK\rOK\rOK\r");
  EXPECT_THAT(modem_.Take("N", Moment(2060)).events,
              ElementsAre("lost \"N\", there is nothing at address 7"));
}

TEST_F(RadioModemTest, TimeWithoutCommand_EndsCommandMode) {
  Enter();
  EXPECT_EQ(At(60, "ATCTA\r"), "OK\r");
  EXPECT_EQ(modem_.Due(), Moment(1060));
  EXPECT_EQ(At(1059, "ATDL"), "");
  EXPECT_THAT(modem_.Take({}, Moment(1060)).events, ElementsAre("command mode ends: no command in time"));
  EXPECT_EQ(At(1061, "N?\r"), "zero\r");
}

TEST_F(RadioModemTest, Command_StartsTheTimeAnew) {
  Enter();
  At(60, "ATCTA\r");
  EXPECT_EQ(At(1059, "ATMY\r"), "0\r");
  EXPECT_EQ(modem_.Due(), Moment(2059));
}

TEST_F(RadioModemTest, RepliesDuringCommandMode_ComeAfterIt) {
  RadioModemSetup setup;
  setup.guard = std::chrono::milliseconds(10);
  setup.behind[0] = Named("zero");
  modem_ = RadioModem(std::move(setup));
  At(0, "S?\r");
  At(10, "+++");
  EXPECT_EQ(At(60), "OK\r");
  EXPECT_EQ(At(600, "ATMY\r"), "0\r");
  EXPECT_EQ(At(601, "ATCN\r"), "OK\rslow\r");
}

TEST_F(RadioModemTest, FaultyAnswers_AreAsAsked) {
  const std::pair<ModemAnswers, const char*> cases[] = {{ModemAnswers::kNone, ""},
                                                        {ModemAnswers::kHalfOk, "O0\rERROR\r"},
                                                        {ModemAnswers::kNoCarriageReturn, "OK0ERROR"}};
  for (const auto& [answers, expected] : cases) {
    modem_ = Modem(answers);
    At(0, "+++");
    EXPECT_EQ(At(50, "ATMY\rx\r"), expected);
    EXPECT_THAT(modem_.Take("ATCN\r", Moment(60)).events, Contains("command mode ends: as told"));
    EXPECT_EQ(At(70, "N?\r"), "zero\r");
  }
}

}  // namespace
}  // namespace kesp::simulator
