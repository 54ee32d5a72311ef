// The lines of a trace, however they come.
#include "console/trace_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kesp::console {
namespace {

using Ending = TraceLines::Ending;

std::vector<std::string> MessagesOf(TraceLines& lines, Ending ending = Ending::kEnded) {
  std::vector<std::string> messages;
  while (const auto line = lines.Next()) messages.push_back(line->message);
  while (const auto line = lines.Last(ending)) messages.push_back(line->message);
  return messages;
}

constexpr char kTrace[] =
    "11/22/2026 6:54:30 AM\t100\tDataArrival (127.0.0.1:1) Bytes: 24\r\n"
    "11/22/2026 6:54:30 AM\t101\tSocket Data arrived: <1.0\t2\t3\r\n"
    "11:22\t7\tno date\n\n"
    "> (length: 24)\r\n"
    "11/22/2026 6:54:31 AM\t-5\tExiting\r\n";
const std::vector<std::string> kMessages = {
    "DataArrival (127.0.0.1:1) Bytes: 24",
    "Socket Data arrived: <1.0\t2\t3\r\n11:22\t7\tno date\n\n> (length: 24)", "Exiting"};

TEST(TraceLines, LineThatARepliesEndBroke_IsJoined) {
  TraceLines lines;
  lines.Add(kTrace);
  EXPECT_EQ(MessagesOf(lines), kMessages);
}

TEST(TraceLines, ReplyThatEndsWithALineFeed_LeavesAnEmptyLineInItsMessage) {
  TraceLines lines;
  lines.Add("2026-11-22 06:54:30\t1\tresult- 1\n\r\n2026-11-22 06:54:30\t2\tb\r\n");
  EXPECT_EQ(MessagesOf(lines), (std::vector<std::string>{"result- 1\n", "b"}));
  lines.Restart();
  lines.Add("2026-11-22 06:54:30\t1\tresult- 1\r\n\r\n2026-11-22 06:54:30\t2\tb\r\n");
  EXPECT_EQ(MessagesOf(lines), (std::vector<std::string>{"result- 1\r\n", "b"}));
}

TEST(TraceLines, EveryCut_GivesTheSameLines) {
  const std::string trace = kTrace;
  for (std::size_t cut = 0; cut <= trace.size(); ++cut) {
    TraceLines lines;
    std::vector<std::string> messages;
    for (const std::string& piece : {trace.substr(0, cut), trace.substr(cut)}) {
      lines.Add(piece);
      while (const auto line = lines.Next()) messages.push_back(line->message);
    }
    while (const auto line = lines.Last(Ending::kEnded)) messages.push_back(line->message);
    ASSERT_EQ(messages, kMessages) << "cut at " << cut;
  }
}

TEST(TraceLines, ByteByByte_GivesTheSameLines) {
  TraceLines lines;
  std::vector<std::string> messages;
  for (const char byte : std::string(kTrace)) {
    lines.Add({&byte, 1});
    while (const auto line = lines.Next()) messages.push_back(line->message);
  }
  while (const auto line = lines.Last(Ending::kEnded)) messages.push_back(line->message);
  EXPECT_EQ(messages, kMessages);
}

TEST(TraceLines, WhenAndCounter_AreTaken) {
  TraceLines lines;
  lines.Add("22.11.2026 06:54:30\t-2147483648\ta\r\n");
  const auto line = lines.Last(Ending::kEnded);
  ASSERT_TRUE(line);
  EXPECT_EQ(line->when, "22.11.2026 06:54:30");
  EXPECT_EQ(line->counter, -2147483647 - 1);
}

TEST(TraceLines, BytesOfAnyKind_AreKept) {
  TraceLines lines;
  const std::string bytes("\0\xFF\x81\xB0", 4);
  lines.Add("2026-11-22 06:54:30\t1\t" + bytes + "\r\n");
  EXPECT_EQ(MessagesOf(lines), std::vector<std::string>{bytes});
}

TEST(TraceLines, WhatComesBeforeTheFirstLine_IsDropped) {
  TraceLines lines;
  lines.Add("half a line\r\n2026-11-22 06:54:30\t1\ta\r\n");
  EXPECT_EQ(MessagesOf(lines), std::vector<std::string>{"a"});
}

TEST(TraceLines, NoTrace_HasNoLines) {
  for (const char* text : {"", "\r\n", "a\tb\tc\n", "{\n  \"a\": 1\n}\n"}) {
    TraceLines lines;
    lines.Add(text);
    EXPECT_EQ(MessagesOf(lines), std::vector<std::string>{}) << text;
  }
}

TEST(TraceLines, LastLineWithoutItsEnd_WaitsWhileItMayGrow) {
  TraceLines lines;
  lines.Add("2026-11-22 06:54:30\t1\ta\r\n2026-11-22 06:54:30\t2\tb");
  EXPECT_EQ(MessagesOf(lines, Ending::kMayGrow), std::vector<std::string>{"a"});
  lines.Add("c\r\n");
  EXPECT_EQ(MessagesOf(lines, Ending::kMayGrow), std::vector<std::string>{"bc"});
  lines.Add("2026-11-22 06:54:31\t3\td\r\n");
  EXPECT_EQ(MessagesOf(lines, Ending::kMayGrow), std::vector<std::string>{"d"});
}

TEST(TraceLines, EndlessMessage_IsCut) {
  TraceLines lines;
  lines.Add("2026-11-22 06:54:30\t1\t");
  const std::string piece(1U << 20U, 'x');
  for (int i = 0; i < 16; ++i) {
    lines.Add(piece);
    EXPECT_FALSE(lines.Next());
  }
  lines.Add("\r\n2026-11-22 06:54:30\t2\tb\r\n");
  const auto line = lines.Next();
  ASSERT_TRUE(line);
  EXPECT_TRUE(line->cut);
  EXPECT_LE(line->message.size(), kLongestMessage + 2 * piece.size());
  EXPECT_EQ(MessagesOf(lines), std::vector<std::string>{"b"});
}

TEST(MillisecondsBetween, CounterRunsOver) {
  EXPECT_EQ(MillisecondsBetween(2147483640, -2147483640), 16U);
  EXPECT_EQ(MillisecondsBetween(-5, 7), 12U);
}

}  // namespace
}  // namespace kesp::console
