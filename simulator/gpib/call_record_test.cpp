// How many lines and bytes the record keeps.
#include "simulator/gpib/call_record.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kesp::simulator::gpib {
namespace {

// Adds a write of these bytes, all of which were transferred.
void AddWrite(CallRecord& record, const std::string& bytes) {
  const auto length = static_cast<std::int32_t>(bytes.size());
  CallRecord::Line line = record.Begin(1, {CallName::kWrite, {7, length}, bytes});
  record.Add(std::move(line), {{kComplete, 0, length}, kComplete}, {});
}

TEST(CallRecordTest, Lines_AreKeptInOrder) {
  CallRecord record(true);
  record.Add("first");
  AddWrite(record, "a\r\x01");
  record.Add("last");
  EXPECT_EQ(record.Text(), "first\n1 ibwrt(7,\"a\\r\\x01\",3) = 256 sta 0100 err 0 cnt 3\nlast\n");
}

TEST(CallRecordTest, Bytes_AreThoseOfTheCallWhateverBecomesOfThem) {
  CallRecord record(true);
  std::string bytes = "before";
  CallRecord::Line line = record.Begin(1, {CallName::kWrite, {7, 6}, bytes});
  bytes = "after.";
  record.Add(std::move(line), {}, {});
  EXPECT_NE(record.Text().find("\"before\""), std::string::npos);
}

TEST(CallRecordTest, ManyLines_LoseTheOldest) {
  CallRecord record(true);
  for (std::size_t i = 0; i < CallRecord::kMostLines + 2; ++i) record.Add(std::to_string(i));
  const std::string text = record.Text();
  EXPECT_EQ(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')), CallRecord::kMostLines);
  EXPECT_EQ(text.substr(0, 2), "2\n");
}

TEST(CallRecordTest, ManyBytes_AreCutWithAnEllipsis) {
  CallRecord record(true);
  AddWrite(record, std::string(CallRecord::kMostBytes, 'x'));
  EXPECT_NE(record.Text().find("x\",4096)"), std::string::npos);
  AddWrite(record, std::string(CallRecord::kMostBytes + 1, 'x'));
  EXPECT_NE(record.Text().find("x...\",4097)"), std::string::npos);
}

TEST(CallRecordTest, Statuses_OfMoreThanSixteenBits_AreShownWhole) {
  CallRecord record(true);
  record.Add(record.Begin(2, {CallName::kClear, {3}, {}}), {{-1, 70000, -5}, 0x12345}, {});
  EXPECT_EQ(record.Text(), "2 ibclr(3) = 74565 sta FFFFFFFF err 70000 cnt -5\n");
}

TEST(CallRecordTest, TurnedOff_KeepsNothing) {
  CallRecord record(false);
  record.Add("line");
  AddWrite(record, "x");
  EXPECT_EQ(record.Text(), "");
}

}  // namespace
}  // namespace kesp::simulator::gpib
