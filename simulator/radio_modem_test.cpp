// The radio modem: command mode and its silences, registers, and the instruments behind it.
#include "simulator/radio_modem.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "simulator/description_error.h"
#include "simulator/device_scenes.h"

namespace kesp::simulator {
namespace {

using Scenes = std::vector<Scene>;

std::string Modem(const std::string& members = "") {
  return R"({"device": "radio_modem", "behind": {"0": {"commands": {
    "N?": "zero", "S?": [{"wait_ms": 500}, {"send": "slow"}]}}, "1a": {"default": "twenty-six"}})" +
         members + "}";
}
constexpr char kQuick[] = R"(, "guard_ms": 10)";

TEST(RadioModem, Pluses_StartCommandModeBetweenSilencesOnly) {
  const Scenes cases[] = {
      {{0, "x\r", ""},
       {1000, "+", ""},
       {1001, "++", ""},
       {1050, "", ""},
       {1051, "", "OK\r", "command mode begins"}},
      {{0, "N?\r", "zero\r"}, {999, "+++\r", "", "address 0: command \"+++\""}, {5000, "", ""}},
      {{0, "+++", ""}, {49, "\r", "", "address 0: command \"+++\""}},
      {{2000, "++++", ""}, {2060, "\r", "", "address 0: command \"++++\""}},
      {{0, "++", ""}, {1000, "", ""}, {1001, "\r", "", "address 0: command \"++\""}},
  };
  for (const Scenes& scenes : cases) Perform(Modem(), scenes);
  Perform(Modem(kQuick), {{0, "x", ""}, {10, "+++", ""}, {30, "", ""}, {60, "", "OK\r"}});
}

TEST(RadioModem, Due_IsTheNextMomentAtWhichSomethingChanges) {
  const auto modem = DeviceOf(ReadDescription(Modem(), "d"));
  const auto due_after = [&modem](int at, const std::string& in) {
    Heard(*modem, at, in);
    return modem->Due().value_or(Moment(-1)).count();
  };
  EXPECT_EQ(due_after(0, "+"), 1000);
  EXPECT_EQ(due_after(1, "++"), 51);
  EXPECT_EQ(due_after(51, ""), 51 + 10'000);
  EXPECT_EQ(due_after(60, "ATCTA\r"), 1060);
  EXPECT_EQ(due_after(1059, "ATMY\r"), 2059);
  EXPECT_EQ(due_after(2059, ""), -1);
  EXPECT_EQ(due_after(2100, "S?\r"), 2600);
}

TEST(RadioModem, Registers_AreReadAndSet) {
  const auto modem = DeviceOf(ReadDescription(Modem(R"(, "registers": {"MY": "a"})"), "d"));
  Perform(*modem, {{0, "+++", ""}, {50, "", "OK\r"}});
  const std::pair<const char*, const char*> cases[] = {
      {"ATSH", "13A200"}, {"ATSL", "40A1B2C3"}, {"ATPL", "4"},     {"ATID", "3332"},
      {"ATCH", "C"},      {"ATMY", "A"},        {"ATCT", "64"},    {"ATDH", "0"},
      {"ATDL", "0"},      {"ATDLffff", "OK"},   {"ATDL", "FFFF"},  {"ATMY1", "OK"},
      {"ATMY", "1"},      {"ATDLxy", "ERROR"},  {"ATXX", "ERROR"}, {"AT", "ERROR"},
      {"", "ERROR"},      {"N?", "ERROR"},      {"ATWR", "OK"},    {"ATDL123456789", "ERROR"},
      {"ATDL", "FFFF"},
  };
  for (const auto& [command, answer] : cases)
    Perform(*modem, {{100, std::string(command) + "\r", std::string(answer) + "\r"}});
}

TEST(RadioModem, DestinationAddress_SelectsTheInstrument) {
  Perform(Modem(), {{0, "+++", ""},
                    {50, "", "OK\r"},
                    {60, "ATDL1A\rATCN\rN?\r", "OK\rOK\rtwenty-six\r"},
                    {2000, "+++", ""},
                    {2050, "ATDL7\rATCN\r", "OK\rOK\rOK\r"},
                    {2060, "N", "", "lost \"N\", there is nothing at address 7"}});
}

TEST(RadioModem, CommandMode_EndsByItselfAndHoldsRepliesBack) {
  Perform(Modem(), {{0, "+++", ""},
                    {50, "ATCTA\r", "OK\rOK\r"},
                    {1049, "ATDL", ""},
                    {1050, "", "", "command mode ends: no command in time"},
                    {1051, "N?\r", "zero\r"}});
  Perform(Modem(kQuick),
          {{0, "S?\r", ""},
           {10, "+++", ""},
           {60, "", "OK\r"},
           {600, "ATMY\r", "0\r"},
           {601, "ATCN\r", "OK\rslow\r", "modem command \"ATCN\"; command mode ends: as told"}});
}

TEST(RadioModem, RegistersThatCannotBeWritten_AreAnError) {
  Perform(Modem(R"(, "nonvolatile": "/nowhere/registers")"),
          {{0, "+++", ""},
           {50, "ATWR\rATMY\r", "OK\rERROR\r0\r",
            "command mode begins; modem command \"ATWR\"; registers not written: /nowhere/registers: "
            "Input/output error; modem command \"ATMY\""}});
}

TEST(RadioModem, FaultyAnswers_AreAsAsked) {
  const std::pair<std::string, std::string> cases[] = {
      {"whole", "OK\r0\rERROR\r"}, {"none", ""}, {"half_ok", "O0\rERROR\r"}, {"no_cr", "OK0ERROR"}};
  for (const auto& [answers, expected] : cases) {
    Perform(
        Modem(R"(, "answers": ")" + answers + "\""),
        {{0, "+++", ""},
         {50, "ATMY\rx\r", expected, "command mode begins; modem command \"ATMY\"; modem command \"x\""}});
  }
}

TEST(RadioModem, NonvolatileRegisters_OutlastTheModemAndCountBeforeThoseOfTheDescription) {
  const std::string file = testing::TempDir() + "kesp_modem_" + std::to_string(::getpid());
  const std::string json = Modem(R"(, "registers": {"DL": "7"}, "nonvolatile": ")" + file + "\"");
  Perform(json, {{0, "+++", ""}, {50, "ATDL\rATDL1A\rATWR\rATDL0\r", "OK\r7\rOK\rOK\rOK\r"}});
  Perform(json, {{0, "+++", ""}, {50, "ATDL\rATDL0\rATWR\r", "OK\r1A\rOK\rOK\r"}});
  Perform(json, {{0, "N?\r", "zero\r"}});
  for (const char* text : {"DL", "DL=xyz", "DL="}) {
    std::ofstream(file) << text << "\n";
    EXPECT_THROW(ReadDescription(json, "d"), DescriptionError) << text;
  }
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace kesp::simulator
