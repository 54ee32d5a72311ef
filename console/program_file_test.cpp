// Reading program files.
#include "console/program_file.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace kesp::console {
namespace {

// A file with one section at the address 0x1000, in which the exports "one" and "two" and a version stand.
class SmallFile {
 public:
  explicit SmallFile(int bits) : bytes_(0x400, '\0') {
    const bool is64 = bits == 64;
    Put(0, "MZ");
    Long(0x3C, 0x40);
    Put(0x40, "PE");
    Word(0x44, is64 ? 0x8664 : 0x14C);
    Word(0x46, 1);     // sections
    Word(0x54, 0xF0);  // size of the optional header
    Word(0x58, is64 ? 0x20B : 0x10B);
    Long(is64 ? 0x58 + 112 : 0x58 + 96, 0x1000);
    constexpr std::size_t kSection = 0x58 + 0xF0;
    Put(kSection, ".rsrc");
    Long(kSection + 12, 0x1000);
    Long(kSection + 16, 0x200);
    Long(kSection + 20, 0x200);
    Long(0x200 + 24, 2);
    Long(0x200 + 32, 0x1040);
    Long(0x240, 0x1060);
    Long(0x244, 0x1070);
    Put(0x260, "one");
    Put(0x270, "two");
    Put(0x300, "\xBD\x04\xEF\xFE");
    Long(0x304, 0x10000);
    Long(0x308, 0x15'0002);  // 21.2
    Long(0x30C, 0x3'0000);   // 3.0
  }

  void Put(std::size_t place, const std::string& text) { bytes_.replace(place, text.size(), text); }
  void Word(std::size_t place, std::uint32_t number) { PutNumber(place, number, 2); }
  void Long(std::size_t place, std::uint32_t number) { PutNumber(place, number, 4); }

  std::string bytes() const { return bytes_; }

 private:
  void PutNumber(std::size_t place, std::uint32_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes_[place + i] = static_cast<char>(number >> 8 * i);
  }

  std::string bytes_;
};

TEST(ReadProgramFile, BothWidths_GiveExportsAndVersion) {
  for (const int bits : {64, 32}) {
    const auto file = ReadProgramFile(SmallFile(bits).bytes());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->bits, bits);
    EXPECT_EQ(file->exports, (std::set<std::string>{"one", "two"}));
    EXPECT_EQ(file->version, "21.2.3");
  }
}

TEST(ReadProgramFile, FourthNumberOfTheVersion_IsShownUnlessZero) {
  SmallFile file(64);
  file.Word(0x30C, 7);
  EXPECT_EQ(ReadProgramFile(file.bytes())->version, "21.2.3.7");
  file.Long(0x300, 0);
  EXPECT_EQ(ReadProgramFile(file.bytes())->version, "");
}

TEST(ReadProgramFile, AnotherProcessorOrNoExports) {
  SmallFile file(64);
  file.Word(0x44, 0xAA64);
  file.Long(0x58 + 112, 0);
  const auto read = ReadProgramFile(file.bytes());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->bits, 0);
  EXPECT_TRUE(read->exports.empty());
}

TEST(ReadProgramFile, CutAnywhereOrNoProgram_GivesNothingOrLess) {
  const std::string whole = SmallFile(32).bytes();
  for (std::size_t size = 0; size < 0x274; ++size)
    EXPECT_FALSE(ReadProgramFile(whole.substr(0, size))) << size;
  EXPECT_FALSE(ReadProgramFile("#!/bin/sh\n" + std::string(0x400, ' ')));
}

TEST(ReadProgramFile, AddressesAndCountsThatLeadNowhere_GiveNothing) {
  for (const std::size_t place : {std::size_t{0x3C}, std::size_t{0x200 + 24}, std::size_t{0x240}}) {
    SmallFile file(64);
    file.Long(place, 0xFFFF'FFF0);
    EXPECT_FALSE(ReadProgramFile(file.bytes())) << place;
  }
}

}  // namespace
}  // namespace kesp::console
