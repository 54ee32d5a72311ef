// The ways to hang over TCP.
#include "tests/hangs/tcp_ways.h"

#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

using enum Ends;
using Way = HangingPeer::Way;

constexpr Milliseconds kLate{2600};

// Sends the pieces, over and over.
Way Endless(const std::string& piece, Milliseconds gap) {
  return [piece, gap](Talk& talk) {
    if (!talk.Command()) return;
    while (talk.Send(piece) && (gap.count() == 0 || talk.Pause(gap))) {
    }
  };
}

// What comes after a command, with "=" and the command in place of "@".
Way Answer(
    const std::string& form, const std::function<void(Talk&)>& then = [](Talk&) {}) {
  return [form, then](Talk& talk) {
    std::string command;
    if (!talk.Command(command)) return;
    std::string reply;
    for (const char character : form) reply += character == '@' ? "=" + command : std::string(1, character);
    if (talk.Send(reply)) then(talk);
  };
}

void CloseIt(Talk& talk) {
  talk.Close();
}
void ResetIt(Talk& talk) {
  talk.Reset();
}

Way OneByteASecond() {
  return [](Talk& talk) {
    if (!talk.Command()) return;
    while (talk.Send("7") && talk.Pause(Milliseconds(1000))) {
    }
  };
}

Way Late() {
  return [](Talk& talk) {
    if (talk.Command() && talk.Pause(kLate)) talk.Send(std::string("=") + kStale + "\r");
  };
}

// Its own reply, and then lines without end.
Way Lines() {
  return Answer("@\r", [](Talk& talk) {
    const std::string lines = "12.5\r13.5\r14.5\r15.5\r";
    while (talk.Send(lines)) {
    }
  });
}

Way Nothing() {
  return [](Talk& talk) {
    while (talk.Command()) {
    }
  };
}

}  // namespace

std::vector<TcpWay> TcpReadingWays() {
  const std::vector<Ends> time_out{kTimeOut};
  const std::vector<Ends> reply{kReply};
  const std::vector<Ends> gone{kTimeOut, kNoConnection};
  const std::vector<Ends> partly_gone{kReply, kTimeOut, kNoConnection};
  // Of a connection that is gone before the read begins, no more is known.
  const std::vector<Ends> complete{kReply, kNoConnection};
  const std::vector<Ends> flooded{kTimeOut, kOverrun};
  const std::string block(65536, '7');
  return {
      {"silent peer", Nothing(), {time_out, time_out, time_out, time_out}},
      {"one byte a second", OneByteASecond(), {time_out, reply, time_out, reply}, false},
      {"endless data without an end",
       Endless("7777777777", Milliseconds(10)),
       {time_out, reply, time_out, time_out},
       false},
      {"endless data without an end, as fast as it goes",
       Endless(block, Milliseconds(0)),
       {flooded, {kReply, kOverrun}, flooded, flooded},
       false},
      {"endless data with ends", Lines(), {reply, reply, reply, flooded}},
      {"half a reply, then silence", Answer("=12."), {time_out, reply, time_out, reply}, false},
      {"closed in place of a reply", Answer("", CloseIt), {gone, gone, gone, gone}},
      {"reset in place of a reply", Answer("", ResetIt), {gone, gone, gone, gone}},
      {"closed in the middle of a reply",
       Answer("=12.", CloseIt),
       {gone, partly_gone, gone, partly_gone},
       false},
      {"reset in the middle of a reply",
       Answer("=12.", ResetIt),
       {gone, partly_gone, gone, partly_gone},
       false},
      {"closed behind the reply", Answer("@\r", CloseIt), {complete, complete, complete, complete}},
      {"late reply", Late(), {time_out, time_out, time_out, time_out}, true, kLate + Milliseconds(200)},
      {"garbage before the reply", Answer("\x81\xFE\xFF@\r"), {{kInvalid}, {kInvalid}, reply, reply}},
  };
}

std::vector<TcpWay> TcpConnectionWays() {
  const std::string block(65536, '7');
  return {
      {"silent peer", Nothing(), {}},
      {"peer that never reads", [](Talk&) {}, {}},
      {"endless data", Endless("7777777777", Milliseconds(10)), {}},
      {"endless data, as fast as it goes", Endless(block, Milliseconds(0)), {}},
      {"closed by the peer", Answer("", CloseIt), {}},
      {"reset by the peer", Answer("", ResetIt), {}},
  };
}

}  // namespace kesp::hangs
