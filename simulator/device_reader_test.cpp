// Devices read from personality files, and refused.
#include "simulator/device_reader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>

namespace kesp::simulator {
namespace {

namespace fs = std::filesystem;

class DeviceReaderTest : public testing::Test {
 protected:
  DeviceReaderTest() { fs::create_directory(folder_); }
  ~DeviceReaderTest() override { fs::remove_all(folder_); }

  std::unique_ptr<Device> Read(const std::string& json) const {
    return ReadDevice(nlohmann::json::parse(json), "", folder_);
  }

  std::string RefusalOf(const std::string& json) const {
    try {
      Read(json);
    } catch (const PersonalityError& error) {
      return error.what();
    }
    return "not refused";
  }

  void Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }

  const fs::path folder_ = testing::TempDir() + "kesp_devices_" + std::to_string(::getpid());
};

std::string Ask(Device& device, std::string_view bytes) {
  return device.Take(bytes, Moment(0)).bytes;
}

TEST_F(DeviceReaderTest, Omega_HasItsValuesAndLine) {
  const auto device =
      Read(R"({"device": "omega", "address": "01", "values": {"PV": "0021.5", "SL": "100"}})");
  EXPECT_EQ(Ask(*device,
                "\x04"
                "0011PV\x05"),
            "\x02PV0021.5\x03\x1D\r\n");
  EXPECT_EQ(TextOf(*device->Line()), "9600,E,7,1");
  const auto other = Read(R"({"device": "omega", "address": "1", "values": {}, "line": {"baud": 300}})");
  EXPECT_EQ(TextOf(*other->Line()), "300,-,-,-");
}

TEST_F(DeviceReaderTest, RadioModem_HasInstrumentsBehindItInlineAndFromFiles) {
  Write("scale.json", R"({"commands": {"W?": [{"send": "12.0"}]}})");
  const auto device = Read(R"({"device": "radio_modem", "guard_ms": 0, "registers": {"DL": "a"}, "behind": {
    "A": "scale.json", "B": {"commands": {"T?": [{"send": "21"}]}}}})");
  EXPECT_EQ(Ask(*device, "W?\r"), "12.0\r");
  Ask(*device, "+++");
  EXPECT_EQ(device->Take({}, Moment(50)).bytes, "OK\r");
  EXPECT_EQ(device->Take("ATDLB\rATCN\rT?\r", Moment(60)).bytes, "OK\rOK\r21\r");
  EXPECT_FALSE(device->Line());
}

TEST_F(DeviceReaderTest, RadioModemWithMemory_StartsWithWhatWasWritten) {
  const std::string json = R"({"device": "radio_modem", "nonvolatile": "modem.txt", "behind": {}})";
  const auto ask = [&](std::string_view commands) {
    const auto device = Read(json);
    Ask(*device, "+++");
    return device->Take(commands, Moment(50)).bytes;
  };
  EXPECT_EQ(ask("ATDL1A\rATWR\rATMY2\r"), "OK\rOK\rOK\rOK\r");
  EXPECT_EQ(ask("ATDL\rATMY\r"), "OK\r1A\r0\r");
}

TEST_F(DeviceReaderTest, RadioModemFaults_AreThoseNamed) {
  const std::pair<const char*, const char*> cases[] = {
      {"whole", "OK\r"}, {"none", ""}, {"half_ok", "O"}, {"no_cr", "OK"}};
  for (const auto& [name, answer] : cases) {
    const auto device =
        Read(std::string(R"({"device": "radio_modem", "behind": {}, "answers": ")") + name + "\"}");
    Ask(*device, "+++");
    EXPECT_EQ(device->Take({}, Moment(50)).bytes, answer);
  }
}

TEST_F(DeviceReaderTest, PortSwitch_HasDevicesAtItsPorts) {
  const auto device = Read(R"({"device": "port_switch", "model": 8, "ports": {
    "A": {"commands": {"T?": [{"send": "21"}]}},
    "0B": {"device": "omega", "address": "1", "values": {"SL": "5"}}}})");
  EXPECT_EQ(Ask(*device,
                "\x1B\x02"
                "0A\rT?\r"),
            "21\r");
  EXPECT_EQ(Ask(*device,
                "\x1B\x02"
                "0B\r\x04"
                "11SL\x05"),
            "\x02SL5\x03\x29\r\n");
  const auto small = Read(R"({"device": "port_switch", "model": 4, "line": {"baud": 300}, "ports": {
    "A": {"commands": {"T?": [{"send": "21"}]}}}})");
  EXPECT_EQ(Ask(*small,
                "\x1B\x02"
                "A\rT?\r"),
            "21\r");
  EXPECT_EQ(TextOf(*small->Line()), "300,-,-,-");
}

TEST_F(DeviceReaderTest, Mistakes_AreRefusedWithThePlace) {
  Write("device.json", R"({"device": "omega", "address": "1", "values": {}})");
  const std::string modem = R"({"device": "radio_modem", "behind": {}, )";
  const std::pair<std::string, std::string> mistakes[] = {
      {R"({"device": "toaster"})", R"(/device: must be "omega", "radio_modem" or "port_switch")"},
      {R"({"device": "omega", "description": 5})", "/description: must be a text or a list of texts"},
      {R"({"device": "omega", "values": {}})", "/address: is missing"},
      {R"({"device": "omega", "address": "", "values": {}})", "/address: must be digits"},
      {R"({"device": "omega", "address": "1A", "values": {}})", "/address: must be digits"},
      {R"({"device": "omega", "address": "1"})", "/values: is missing"},
      {R"({"device": "omega", "address": "1", "values": {"": "1"}})", "/values: has a value without a name"},
      {R"({"device": "omega", "address": "1", "values": {"PV": 1}})", "/values/PV: must be a text"},
      {R"({"device": "omega", "address": "1", "values": {}, "x": 1})", "/x: is not a known field"},
      {R"({"device": "radio_modem"})", "/behind: is missing"},
      {R"({"device": "radio_modem", "behind": {"xy": {}}})",
       "/behind/xy: must be a hexadecimal number of at most 8 digits"},
      {R"({"device": "radio_modem", "behind": {"1": {"commands": 5}}})",
       "/behind/1/commands: must be an object"},
      {R"({"device": "radio_modem", "behind": {"1": "device.json"}})",
       "/behind/1: names a device; write it here instead"},
      {modem + R"("answers": "loud"})", R"(/answers: must be "whole", "none", "half_ok" or "no_cr")"},
      {modem + R"("registers": {"XX": "1"}})", "/registers/XX: is not a known field"},
      {modem + R"("registers": {"DL": "g"}})",
       "/registers/DL: must be a hexadecimal number of at most 8 digits"},
      {R"({"device": "port_switch", "model": 5, "ports": {}})", "/model: must be 4, 6 or 8"},
      {R"({"device": "port_switch", "model": 4, "ports": {"A": {}, "B": {}, "C": {}, "D": {}, "E": {}}})",
       "/ports: has more ports than the model"},
      {R"({"device": "port_switch", "model": 4, "ports": {"ABC": {}}})",
       "/ports/ABC: must have a name of one or two characters"},
  };
  for (const auto& [json, text] : mistakes) EXPECT_EQ(RefusalOf(json), text) << json;
}

TEST_F(DeviceReaderTest, LoadDevice_TellsDevicesFromInstruments) {
  Write("device.json", R"({"device": "omega", "address": "1", "values": {}})");
  Write("plain.json", R"({"commands": {}})");
  Write("bad.json", R"({"device": 5})");
  EXPECT_NE(LoadDevice(folder_ / "device.json"), nullptr);
  EXPECT_EQ(LoadDevice(folder_ / "plain.json"), nullptr);
  try {
    LoadDevice(folder_ / "bad.json");
    ADD_FAILURE() << "it was read";
  } catch (const PersonalityError& error) {
    EXPECT_EQ(error.what(), (folder_ / "bad.json").string() + ": /device: must be a text");
  }
  EXPECT_THROW(LoadDevice(folder_ / "none.json"), PersonalityError);
}

}  // namespace
}  // namespace kesp::simulator
