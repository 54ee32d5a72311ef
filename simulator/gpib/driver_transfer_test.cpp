// Commands, replies and faults of devices on the simulated bus, through the driver's calls.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include "simulator/gpib/driver_fixture.h"
#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {
namespace {

constexpr char kCommands[] = R"("commands": {"A?": "one", "B?": "two", "LONG?": "0123456789", "SET": null})";

std::string Device(const std::string& members) {
  return R"({"gpib": {"primary": 5}, )" + members + "}";
}

// How many pages of memory the process uses.
std::size_t ResidentPages() {
  std::ifstream statistics("/proc/self/statm");
  std::size_t all = 0;
  std::size_t resident = 0;
  statistics >> all >> resident;
  EXPECT_GT(resident, 0U);
  return resident;
}

class TransferTest : public DriverFixture {
 protected:
  // What a client with a time-out of three milliseconds hears: it writes what is given, reads at "<" (all up
  // to the end of a read) and lets a millisecond pass at "_". "|" stands for END, "T" for a read that timed
  // out, "N" for a write without listener.
  std::string Talk(const std::string& device, const std::string& script, std::int32_t sends_end = 0) {
    Load(device);
    const std::int32_t descriptor = Open(5, 0, kThreeMilliseconds, sends_end);
    std::string heard;
    std::string written;
    for (const char character : script + "_") {
      if (character != '<' && character != '_') {
        written += character;
        continue;
      }
      if (!written.empty() && (Write(descriptor, written) & kError) != 0) heard += 'N';
      written.clear();
      if (character == '_') waiting_.Advance(1000);
      if (character == '_') continue;
      heard += Read(descriptor);
      if ((status_ & kEnd) != 0) heard += '|';
      if ((status_ & kTimedOut) != 0) heard += 'T';
    }
    return heard;
  }
};

TEST_F(TransferTest, EachDeviceAndFault_AnswersAsDescribed) {
  const std::string plain = Device(kCommands);
  const struct {
    std::string device;
    std::string script;
    std::string heard;
    std::int32_t sends_end = 0;
  } cases[] = {
      // A command is complete at its terminator or at END; a carriage return before that does not count.
      {plain, "A?\n<", "one\n|"},
      {plain, "A?\r\n<", "one\n|"},
      {plain, "A?\r<", "T"},
      {plain, "A_?<_\n<", "Tone\n|"},
      {plain, "A?<", "one\n|", 1},
      {plain, "A?\r\n<<", "one\n|T", 1},
      {plain, "A?_\r\n\n<", "one\n|", 1},
      {Device(std::string(kCommands) + R"(, "terminator": "<>")"), "A?_", ""},
      {Device(std::string(kCommands) + R"(, "terminator": "")"), "A?\n<", "T"},
      {Device(R"("commands": {"A?\n": "with line feed"}, "terminator": "")"), "A?\n<", "with line feed\n|",
       1},
      {Device(R"("commands": {"A?": "1"}, "terminator": "<>", "default": "2")"), "A?", ""},
      {plain, "SET\n<", "T"},
      {plain, "a?\n<", "T"},
      {Device(R"("commands": {"SET 1": "exact", "S*": "set"}, "default": "unknown")"), "SET 1\n<S\n<x\n<",
       "exact\n|set\n|unknown\n|"},
      {Device(R"("commands": {"M?": {"cycle": ["1", "2"]}})"), "M?\n<M?\n<M?\n<", "1\n|2\n|1\n|"},
      {Device(R"("commands": {"A?": ""}, "reply_terminator": "")"), "A?\n<", "T"},
      // The first byte of a command drops what was not read, unless replies are kept.
      {plain, "A?\nB?\n<<", "two\n|T"},
      {plain, "A?\nB<", "T"},
      {Device(std::string(kCommands) + R"(, "keeps_replies": true)"), "A?\nB?\n<<", "one\n|two\n|"},
      // Late.
      {Device(std::string(kCommands) + R"(, "delay_ms": 2)"), "A?\n<", "one\n|"},
      {Device(std::string(kCommands) + R"(, "delay_ms": 5)"), "A?\n<<", "Tone\n|"},
      {Device(R"("commands": {"A?": [{"wait_ms": 4}, {"send": "1"}]})"), "A?\n<<", "T1\n|"},
      // In pieces, and several replies: END goes with the last piece of each.
      {Device(
           R"("commands": {"A?": [{"split": "abcd", "pieces": 2, "gap_ms": 4}, {"send": "e"}, {"echo": true}]})"),
       "A?\n<<<<", "abTcd\n|e\n|A?\n|"},
      {Device(R"("commands": {"A?": [{"trickle": "ab", "gap_ms": 1, "end": ""}]})"), "A?\n<", "ab|"},
      // Garbage, and without an end.
      {Device(R"("commands": {"A?": [{"send_hex": "FF 00 80"}]})"), "A?\n<", std::string("\xFF\0\x80|", 4)},
      {Device(R"("commands": {"A?": [{"random": 1}]})"), "A?\n<", "%|"},
      {Device(std::string(kCommands) + R"(, "end": false, "reply_terminator": "")"), "A?\n<<", "oneTT"},
      {Device(R"("end": false, "commands": {"A?": [{"repeat": "0123456789", "bytes": 1073741824}]})"),
       "A?\n<",
       "012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678"
       "9"},
      // Pulled out: with what it has sent still to be read, or at once.
      {Device(R"("commands": {"A?": [{"send": "bye"}, {"close": true}]})"), "A?\n<A?\n<", "bye\n|NT"},
      {Device(R"("commands": {"A?": [{"send": "lost"}, {"reset": true}]})"), "A?\n<A?\n", "TN"},
      {Device(R"("commands": {"A?": [{"send": "1"}, {"wait_ms": 2}, {"reset": true}]})"), "A?\n<A?__A?\n",
       "1\n|N"},
  };
  for (const auto& [device, script, heard, sends_end] : cases)
    EXPECT_EQ(Talk(device, script, sends_end), heard) << device << " " << testing::PrintToString(script);
}

TEST_F(TransferTest, RepeatedReply_IsNotKeptInFull) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {
    "A?": [{"repeat": "0123456789", "bytes": 600000}], "B?": [{"repeat": "x", "bytes": 1073741824}]}}]})");
  const std::int32_t device = Open(5);
  Write(device, "A?\n");
  std::string whole;
  while (whole.size() < 600'000) whole += "0123456789";
  EXPECT_TRUE(Read(device, 700'000) == whole + "\n");
  EXPECT_NE(status_ & kEnd, 0);
  const std::size_t before = ResidentPages();
  Write(device, "B?\n");
  EXPECT_LT(ResidentPages() - before, 4096U);
}

TEST_F(TransferTest, StatusByte_IsPolledAndAsksForServiceOnce) {
  Load(Device(R"("commands": {"SRQ": [{"wait_ms": 2}, {"status_byte": 80}], "ODD": [{"status_byte": 191}],
                 "A?": [{"status_byte": 65}, {"send": "one"}]})"));
  const std::int32_t device = Open(5, 0, kThreeMilliseconds);
  const auto poll = [&] {
    char byte = 'x';
    EXPECT_EQ(driver_.Ibrsp(kClient, device, &byte), kComplete);
    return static_cast<unsigned char>(byte);
  };
  EXPECT_EQ(poll(), 0);
  EXPECT_EQ(Write(device, "SRQ"), kComplete);
  waiting_.Advance(1999);
  EXPECT_EQ(poll(), 0);
  waiting_.Advance(1);
  EXPECT_EQ(driver_.Ibeos(kClient, device, 0), kComplete | kServiceRequested);
  EXPECT_EQ(poll(), 80);
  EXPECT_EQ(poll(), 16);
  Write(device, "ODD");
  EXPECT_EQ(poll(), 191);
  EXPECT_EQ(Write(device, "A?"), kComplete | kServiceRequested);
  EXPECT_EQ(Read(device), "one\n");
  EXPECT_EQ(Last(), (Outcome{kComplete | kServiceRequested | kEnd, 0, 4}));
  EXPECT_EQ(poll(), 65);
  EXPECT_EQ(LastLine(), "1 ibrsp(1) = 256 sta 0100 err 0 cnt 0 \"A\"\n");
  EXPECT_EQ(driver_.Ibrsp(kClient, device, nullptr), kError | kComplete);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  char byte = 0;
  driver_.Ibrsp(kClient, Open(12, 0, kThreeMilliseconds), &byte);
  EXPECT_EQ(Last(), TimedOut());
}

TEST_F(TransferTest, Ibclr_DropsCommandReplyAndWhatIsPlannedButNotTheTurn) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {
           "M?": {"cycle": ["1", [{"wait_ms": 1}, {"status_byte": 64}, {"reset": true}], "3"]}, "OFF": [{"reset": true}]}}]})");
  const std::int32_t device = Open(5, 0, kThreeMilliseconds, 0);
  for (const char* bytes : {"M?\n", "M?\nM"}) {
    Write(device, bytes);
    EXPECT_EQ(driver_.Ibclr(kClient, device), kComplete);
    EXPECT_EQ(Read(device), "");
  }
  Write(device, "M?\n");
  EXPECT_EQ(Read(device), "3\n");
  EXPECT_EQ(driver_.Ibclr(kClient, Open(12)), kComplete) << "another device is on the bus";
  Write(device, "OFF\n");
  EXPECT_EQ(driver_.Ibclr(kClient, device), kError | kComplete);
  EXPECT_EQ(Last(), FailedWith(kNoListener)) << "nobody is left";
}

TEST_F(TransferTest, AHeldCall_WaitsForItsTimeOutOrItsRelease) {
  Load(Device(R"("commands": {"A?": "one"})"));
  const std::int32_t device = Open(5, 0, kThreeMilliseconds);
  driver_.Hold(CallName::kClear);
  const std::int64_t begin = waiting_.Microseconds();
  EXPECT_EQ(driver_.Ibclr(kClient, device), kError | kTimedOut | kComplete);
  EXPECT_EQ(Last(), TimedOut());
  EXPECT_EQ(waiting_.Microseconds() - begin, 3'000);
  Write(device, "A?");
  EXPECT_EQ(Read(device), "one\n") << "calls of other names do not wait";
  waiting_.Meanwhile([&] { driver_.Hold(std::nullopt); });
  EXPECT_EQ(driver_.Ibclr(kClient, device), kComplete);
  driver_.Hold(CallName::kOnline);
  waiting_.Meanwhile([&] { waiting_.Advance(1'000'000); });
  waiting_.Meanwhile([&] { driver_.Hold(std::nullopt); });
  EXPECT_EQ(driver_.Ibonl(kClient, device, 0), kComplete) << "it has no timeout";
}

TEST_F(TransferTest, Ibrd_EndsAtAFullBufferEndOrTheEndOfString) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "terminator": "", "reply_terminator": "\u0081",
           "commands": {"A?": "one\u0001", "LONG?": "0123456789"}}]})");
  const std::int32_t device = Open(5, 0, kTenSeconds, 1);
  const auto ask = [&](const std::string& command, std::int32_t end_of_string, std::size_t length = 100) {
    EXPECT_EQ(driver_.Ibeos(kClient, device, end_of_string), kComplete);
    Write(device, command);
    return Read(device, length);
  };
  EXPECT_EQ(ask("LONG?", 0, 4), "0123");
  EXPECT_EQ(Last(), (Outcome{kComplete, 0, 4}));
  EXPECT_EQ(Read(device, 7), "456789\x81");
  EXPECT_EQ(Last(), (Outcome{kComplete | kEnd, 0, 7}));
  EXPECT_EQ(ask("LONG?", EndOfString::kEndsReads | '4'), "01234");
  EXPECT_EQ(Last(), (Outcome{kComplete | kEnd, 0, 5}));
  // 81 is 01 in seven bits.
  EXPECT_EQ(ask("A?", EndOfString::kEndsReads | 0x01), "one\x01");
  EXPECT_EQ(Read(device), "\x81");
  EXPECT_EQ(ask("A?", EndOfString::kEndsReads | EndOfString::kEightBits | 0x81), "one\x01\x81");
  EXPECT_EQ(ask("A?", EndOfString::kEndsReads | 0x81), "one\x01");
  const std::int32_t without_end = Open(5, 0, kThreeMilliseconds, 0, EndOfString::kEndsWrites | '?');
  Write(without_end, "A?");
  EXPECT_EQ(Read(without_end), "one\x01\x81");
}

TEST_F(TransferTest, TimeOuts_AreThoseOfTheCodes) {
  const std::int64_t times[] = {kNever,    10,         30,         100,         300,         1'000,
                                3'000,     10'000,     30'000,     100'000,     300'000,     1'000'000,
                                3'000'000, 10'000'000, 30'000'000, 100'000'000, 300'000'000, 1'000'000'000};
  EXPECT_EQ(TimeOutMicroseconds(0), kNever);
  for (std::int32_t code = 1; code < kTimeOutCodes; ++code) {
    const std::int64_t begin = waiting_.Microseconds();
    EXPECT_EQ(Read(Open(5, 0, code)), "") << "no device is there";
    EXPECT_EQ(Last(), TimedOut());
    EXPECT_EQ(waiting_.Microseconds() - begin, times[code]) << code;
  }
}

TEST_F(TransferTest, ReadThatWaits_EndsWithAReplyOrWithItsDescriptor) {
  const std::string json = Device(kCommands);
  const std::pair<std::function<void(std::int32_t)>, Outcome> cases[] = {
      {[this](std::int32_t device) { driver_.Ibwrt(99, device, "A?\n", 3); }, {kComplete | kEnd, 0, 4}},
      {[this](std::int32_t device) { driver_.Ibonl(99, device, 0); }, FailedWith(kAborted)},
      {[this](std::int32_t device) {
         driver_.Ibonl(99, device, 0);
         EXPECT_EQ(Open(5, 0, 0), device);
       },
       FailedWith(kAborted)},
  };
  for (const auto& [meanwhile, outcome] : cases) {
    Load(json);
    const std::int32_t device = Open(5, 0, 0);
    const int wakes = waiting_.wakes();
    waiting_.Meanwhile([&, act = &meanwhile] { (*act)(device); });
    Read(device);
    EXPECT_EQ(Last(), outcome);
    EXPECT_GT(waiting_.wakes(), wakes) << "whoever waits is to be told";
  }
  Load(json);
  const std::int32_t device = Open(5, 0, 0);
  waiting_.Meanwhile([&] { driver_.Load(ReadBus(json)); });
  char byte = 'x';
  EXPECT_EQ(driver_.Ibrd(kClient, device, &byte, 1), kError | kComplete);
  EXPECT_EQ(driver_.Record(), "") << "another bus has no trace of it";
  EXPECT_EQ(status_, kComplete) << "its registration is forgotten";
}

TEST_F(TransferTest, Buffers_AreUsedOrBadArguments) {
  Load(Device(kCommands));
  const std::int32_t device = Open(5);
  char byte = 0;
  const auto last_after = [this](std::int32_t /*status*/) { return Last(); };
  EXPECT_EQ(last_after(driver_.Ibwrt(kClient, device, nullptr, 3)), FailedWith(kBadArgument));
  EXPECT_EQ(last_after(driver_.Ibwrt(kClient, device, "A?", -1)), FailedWith(kBadArgument));
  EXPECT_EQ(last_after(driver_.Ibrd(kClient, device, nullptr, 3)), FailedWith(kBadArgument));
  EXPECT_EQ(last_after(driver_.Ibrd(kClient, device, &byte, -1)), FailedWith(kBadArgument));
  EXPECT_EQ(last_after(driver_.Ibwrt(kClient, device, nullptr, 0)), Outcome{});
  EXPECT_EQ(last_after(driver_.Ibrd(kClient, device, nullptr, 0)), Outcome{});
  EXPECT_EQ(last_after(driver_.Ibwrt(kClient, device, "A?\n", 3)), (Outcome{kComplete, 0, 3}));
  EXPECT_EQ(last_after(Write(Open(12), "A?")), FailedWith(kNoListener));
  EXPECT_EQ(waiting_.waits(), 0);
}

}  // namespace
}  // namespace kesp::simulator::gpib
