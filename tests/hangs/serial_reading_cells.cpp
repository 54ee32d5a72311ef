// The cells of what reads at a COM port.
#include "tests/hangs/box_moment.h"
#include "tests/hangs/serial_cells.h"
#include "tests/hangs/serial_stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

constexpr Milliseconds kGathering{500};
constexpr Milliseconds kLate{1500};
constexpr Milliseconds kEnd{2500};
constexpr Milliseconds kPulledAfter{300};
constexpr char kNeverSilent[] = "is read as long as bytes come (failures.md, A line that never falls silent)";

enum class Ends { kReply, kTimeOut, kBroken, kInvalid };
enum class EndOfReply { kLf, kSilence, kRawSilence, kGap, kDownload };

// In the words of a member, what a read comes to.
struct Words {
  std::string time_out, broken, invalid;

  std::string Of(Ends end) const {
    switch (end) {
      case Ends::kReply:
        return "True";
      case Ends::kTimeOut:
        return time_out;
      case Ends::kBroken:
        return broken;
      case Ends::kInvalid:
        return invalid;
    }
    return {};
  }
};

struct Member {
  std::string name;
  Words words;
  EndOfReply end;
  ReplyMode mode;
  // Its longest wait for the first byte, and for a whole line.
  Milliseconds time_out;
  // Whether it opens the port and sends by itself.
  bool opens;
  // What it asks; a token where it is empty.
  std::string asks;
  // Whether a failure of the port is shown in a box.
  bool shows;
  std::function<Outcome(SerialStage&, const std::string& cmd)> call;
};

std::vector<Member> Members() {
  const Words raising{Raised(ERR_READ_TIMEOUT), RaisedControl(8020), Raised(ERR_INVALID_CHARACTERS)};
  const Words showing{Raised(ERR_READ_TIMEOUT), "False", ""};
  const Words downloading{Raised(ERR_DOWNLOAD_TIMEOUT), "False", ""};
  const Words querying{FalseWith(cfrTimeout), FalseWith(cfrReadFailed), FalseWith(cfrInvalidData)};
  const Words querying_bytes{FalseWith(cfrTimeout), FalseWith(cfrInvalidSetting), ""};
  const Words detecting{"False", "False", "False"};
  const auto read = [](SerialStage& stage, const std::string&) { return stage.ReadLine(); };
  using enum ReplyMode;
  return {
      {"CKespCOMPort3.ReadLine", raising, EndOfReply::kLf, kToLf, kSerialTimeOut, false, "", false, read},
      {"CKespCOMPort3.ReadLine, ended by silence", raising, EndOfReply::kSilence, kToSilence, kSerialTimeOut,
       false, "", false, read},
      {"CKespCOMPort3.ReadLine, raw", raising, EndOfReply::kRawSilence, kRaw, kSerialTimeOut, false, "",
       false, read},
      {"CKespCOMPort3.ReadLineBinary", showing, EndOfReply::kGap, kToLf, kSerialTimeOut, false, "", true,
       [](SerialStage& stage, const std::string&) { return stage.ReadLineBinary(); }},
      {"CKespCOMPort3.Download", downloading, EndOfReply::kDownload, kToLf, kSerialTimeOut, false, "", true,
       [](SerialStage& stage, const std::string&) { return stage.Download(); }},
      {"CKespCOMPort3.AutoDetect", detecting, EndOfReply::kLf, kToLf, kDetectionWait, true, "*IDN?", false,
       [](SerialStage& stage, const std::string&) { return stage.AutoDetect(); }},
      {"CKespCommObj.Query", querying, EndOfReply::kLf, kToLf, kSerialTimeOut, true, "", false,
       [](SerialStage& stage, const std::string& cmd) { return stage.Query(cmd); }},
      {"CKespCommObj.QueryBinary", querying_bytes, EndOfReply::kGap, kToLf, kSerialTimeOut, true, "", true,
       [](SerialStage& stage, const std::string& cmd) { return stage.QueryBinary(cmd); }},
      {"CKespCommObj.DetectInstrument", detecting, EndOfReply::kLf, kToLf, kDetectionWait, true, "*IDN?",
       false, [](SerialStage& stage, const std::string&) { return stage.DetectInstrument(); }},
  };
}

// How long a reply that silence ends goes on after its last byte.
Milliseconds Silence(EndOfReply end) {
  switch (end) {
    case EndOfReply::kLf:
    case EndOfReply::kSilence:
      return kSerialTimeOut;
    case EndOfReply::kRawSilence:
      return kRawSilence;
    case EndOfReply::kGap:
      return kBinaryGap;
    case EndOfReply::kDownload:
      return kGathering + kSerialTimeOut;
  }
  return {};
}

struct SerialWay {
  std::string name;
  // Of a read that a line feed ends, and of one that silence ends.
  Ends line, silence;
  // Whether silence never comes unless the trial lets it, at pauses of that length.
  Milliseconds pauses{0};
  bool endless = false;
  bool has_reply = true;
  std::function<void(LineTalk&, Trial&)> behave;
};

// The pieces, over and over, until the trial ends it.
std::function<void(LineTalk&, Trial&)> Endless(const std::string& piece, Milliseconds gap, bool own_first) {
  return [=](LineTalk& talk, Trial& trial) {
    std::string command;
    if (!talk.Command(command)) return;
    if (own_first) talk.Send("=" + command + "\r\n");
    const Clock::time_point end = Clock::now() + kEnd;
    while (Clock::now() < end && talk.Send(piece)) {
      trial.CountFromNow();
      if (!talk.Pause(gap)) return;
    }
  };
}

std::function<void(LineTalk&, Trial&)> Once(const std::string& before, const std::string& after) {
  return [=](LineTalk& talk, Trial& trial) {
    std::string command;
    if (!talk.Command(command)) return;
    talk.Send(before + (after.empty() ? "" : "=" + command + after));
    trial.CountFromNow();
  };
}

void Pull(LineTalk& talk, Trial& trial) {
  if (!talk.Command() || !talk.Pause(kPulledAfter)) return;
  talk.Pull();
  trial.CountFromNow();
}

void PullInTheMiddle(LineTalk& talk, Trial& trial) {
  if (!talk.Command() || !talk.Send("=12.") || !talk.Pause(Milliseconds(30))) return;
  talk.Pull();
  trial.CountFromNow();
}

void AnswerLate(LineTalk& talk, Trial&) {
  if (talk.Command() && talk.Pause(kDetectionWait + kLate)) talk.Send(std::string("=") + kStale + "\r\n");
}

std::vector<SerialWay> Ways() {
  using enum Ends;
  constexpr Milliseconds kSecond{1000};
  constexpr Milliseconds kOften{5};
  constexpr Milliseconds kNoPause{0};
  const std::string digits(40, '7');
  return {
      {"silent peer", kTimeOut, kTimeOut, kNoPause, false, false, [](LineTalk&, Trial&) {}},
      {"one byte a second", kTimeOut, kReply, kSecond, true, false, Endless("7", kSecond, false)},
      {"endless data without an end", kTimeOut, kReply, kOften, true, false, Endless(digits, kOften, false)},
      {"endless data with ends", kReply, kReply, kOften, true, true,
       Endless("12.5\r\n13.5\r\n", kOften, true)},
      {"half a reply, then silence", kTimeOut, kReply, kNoPause, false, false, Once("=12.", "")},
      {"port pulled", kBroken, kBroken, kNoPause, false, false, Pull},
      {"port pulled in the middle of a reply", kBroken, kBroken, kNoPause, false, false, PullInTheMiddle},
      {"late reply", kTimeOut, kTimeOut, kNoPause, false, false, AnswerLate},
      {"garbage before the reply", kInvalid, kInvalid, kNoPause, false, true, Once("\x81\xFE\xFF", "\r\n")},
      {"stale bytes before the command", kReply, kReply, kNoPause, false, true, Once("", "\r\n")},
  };
}

void PlayReading(Trial& trial, const Member& member, const SerialWay& way) {
  SerialStage stage;
  stage.SetMode(member.mode);
  const std::string cmd = member.asks.empty() ? trial.NewToken() : member.asks;
  if (!member.opens) trial.Require("OpenPort", stage.OpenPort().result == "True");
  const bool has_stale = way.name.starts_with("stale");
  stage.peer.Behave([&](LineTalk& talk) {
    if (has_stale) talk.Send(std::string(kStale) + "\r\n" + kStale);
    way.behave(talk, trial);
  });
  if (has_stale) std::this_thread::sleep_for(Milliseconds(100));
  if (!member.opens) stage.WriteLine(cmd);
  {
    std::optional<BoxMoment> box;
    if (member.shows && way.silence == Ends::kBroken) box.emplace(trial);
    trial.JudgeReply(trial.Call([&] { return member.call(stage, cmd); }), way.has_reply ? cmd : "");
  }
  if (way.name == "late reply") std::this_thread::sleep_for(kLate + kDetectionWait - member.time_out);
  if (way.silence == Ends::kBroken && !member.opens)
    trial.Require("ClosePort", stage.ClosePort().result == "done");
  stage.peer.Recover();
  stage.SetMode(ReplyMode::kToLf);
  const std::string token = trial.NewToken();
  if (member.name.starts_with("CKespCommObj")) {
    trial.JudgeQuery(stage.Query(token), "=" + token);
    return;
  }
  if (way.silence == Ends::kBroken || member.opens) {
    trial.Require("OpenPort", stage.OpenPort().result == "True");
  }
  trial.JudgeQuery(stage.Exchange(token), "=" + token);
}

Cell ReadingCell(const Member& member, const SerialWay& way) {
  Cell cell{.transport = "serial", .member = member.name, .way = way.name};
  const bool ends_with_line = member.end == EndOfReply::kLf;
  const Ends end = ends_with_line ? way.line : way.silence;
  const bool checks = member.mode != ReplyMode::kRaw && !member.words.invalid.empty();
  cell.specified = {member.words.Of(end == Ends::kInvalid && !checks ? Ends::kReply : end)};
  cell.limit = member.time_out;
  if (end == Ends::kBroken) {
    // On a busy machine so short a silence may end the reply before the port is gone.
    const bool is_short = member.end == EndOfReply::kRawSilence;
    if (is_short && way.name.ends_with("of a reply")) cell.specified.emplace_back("True");
    // A download looks at the line twice a second while bytes come.
    cell.limit = member.end == EndOfReply::kDownload ? kGathering : Milliseconds(0);
    cell.counts_from_event = true;
  } else if (!ends_with_line && end != Ends::kTimeOut) {
    const Milliseconds silence = Silence(member.end);
    cell.limit = silence;
    cell.counts_from_event = true;
    if (way.endless && way.pauses < silence) {
      cell.without_limit = kNeverSilent;
    } else if (way.endless) {
      // The first byte is the reply.
      cell.limit = member.time_out + silence;
      cell.counts_from_event = false;
    }
  }
  return cell;
}

// A reply that comes so late that it falls behind the next command counts as that one's, as the reference
// says; a client that waits before it sends gets its own.
void AddLateReplyCell(Cells& cells) {
  cells.push_back({.transport = "serial",
                   .member = "CKespCOMPort3.ReadLine",
                   .way = "late reply, behind the next command",
                   .specified = {Raised(ERR_READ_TIMEOUT)},
                   .limit = kSerialTimeOut,
                   .play = [](Trial& trial) {
                     SerialStage stage;
                     trial.Require("OpenPort", stage.OpenPort().result == "True");
                     stage.peer.Behave([](LineTalk& talk) {
                       std::string command;
                       if (!talk.Command() || !talk.Pause(kLate)) return;
                       talk.Send(std::string("=") + kStale + "\r\n");
                       if (talk.Command(command) && talk.Pause(Milliseconds(300)))
                         talk.Send("=" + command + "\r\n");
                     });
                     stage.WriteLine(trial.NewToken());
                     trial.Call([&] { return stage.ReadLine(); });
                     trial.NoteAnnouncedReply(stage.Exchange(trial.NewToken()));
                     std::this_thread::sleep_for(Milliseconds(1000));
                     stage.peer.Recover();
                     const std::string token = trial.NewToken();
                     trial.JudgeQuery(stage.Exchange(token), "=" + token);
                   }});
}

}  // namespace

void AddSerialReadingCells(Cells& cells) {
  AddLateReplyCell(cells);
  for (const Member& member : Members()) {
    for (const SerialWay& way : Ways()) {
      Cell cell = ReadingCell(member, way);
      cell.play = [member, way](Trial& trial) { PlayReading(trial, member, way); };
      cells.push_back(std::move(cell));
    }
  }
}

}  // namespace kesp::hangs
