// The cells of the network transport and of a communication object that uses it.
#include "tests/hangs/tcp_stage.h"
#include "tests/hangs/tcp_ways.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

namespace {

// A connection to fill takes more than the systems on both sides hold.
constexpr std::size_t kMoreThanBuffers = std::size_t{8} << 20;

// In the words of a member, what a read comes to, and a connection that is not made.
struct Words {
  std::string time_out, no_connection, overrun, invalid, unconnected;

  std::string Of(Ends end) const {
    switch (end) {
      case Ends::kReply:
        return "True";
      case Ends::kTimeOut:
        return time_out;
      case Ends::kNoConnection:
        return no_connection;
      case Ends::kOverrun:
        return overrun;
      case Ends::kInvalid:
        return invalid;
    }
    return {};
  }
};

const Words kRaising{Raised(ERR_TIMEOUT), Raised(ERR_NO_CONNECTION), Raised(ERR_GET_DATA),
                     Raised(ERR_INVALID_CHARACTERS), Raised(ERR_TIMEOUT)};
const Words kOperating{FalseWith(cfrTimeout), FalseWith(cfrNoConnection), FalseWith(cfrReadFailed),
                       FalseWith(cfrReadFailed), FalseWith(cfrInitializeFailed)};
const Words kDetecting{"False", "False", "False", "False", "False"};

struct Member {
  std::string name;
  Words words;
  Reads reads;
  // Whether it connects and sends by itself.
  bool connects;
  // What it asks; a token where it is empty.
  std::string asks;
  std::function<Outcome(TcpStage&, const std::string& cmd)> call;
};

bool EndsByEos(Reads reads) {
  return reads == Reads::kToEos || reads == Reads::kBytesToEos;
}

std::vector<Member> ReadingMembers() {
  const auto read = [](TcpStage& stage, const std::string&) { return stage.ReadLine(); };
  const auto read_binary = [](TcpStage& stage, const std::string&) { return stage.ReadLineBinary(); };
  const auto query = [](TcpStage& stage, const std::string& cmd) { return stage.Query(cmd); };
  const auto query_binary = [](TcpStage& stage, const std::string& cmd) { return stage.QueryBinary(cmd); };
  return {
      {"CKespTCP.ReadLine", kRaising, Reads::kToEos, false, "", read},
      {"CKespTCP.ReadLine, without EOS", kRaising, Reads::kAnyArrival, false, "", read},
      {"CKespTCP.ReadLineBinary", kRaising, Reads::kBytesToEos, false, "", read_binary},
      {"CKespTCP.ReadLineBinary, without EOS", kRaising, Reads::kBytesToGap, false, "", read_binary},
      {"CKespTCP.AutoDetect", kDetecting, Reads::kToEos, true, "*IDN?",
       [](TcpStage& stage, const std::string&) { return stage.AutoDetect(); }},
      {"CKespCommObj.Query", kOperating, Reads::kToEos, true, "", query},
      {"CKespCommObj.QueryBinary", kOperating, Reads::kBytesToEos, true, "", query_binary},
      {"CKespCommObj.QueryBinary, without EOS", kOperating, Reads::kBytesToGap, true, "", query_binary},
      {"CKespCommObj.DetectInstrument", kDetecting, Reads::kToEos, true, "*IDN?",
       [](TcpStage& stage, const std::string&) { return stage.DetectInstrument(); }},
  };
}

// The same object asks the peer, which is well again.
void JudgeAfterwards(Trial& trial, TcpStage& stage, bool with_operation) {
  const std::string token = trial.NewToken();
  if (with_operation) {
    trial.JudgeQuery(stage.Query(token), "=" + token);
    return;
  }
  trial.Require("Uninitialize", stage.Uninitialize().result == "True");
  trial.Require("Initialize", stage.Initialize().result == "True");
  trial.JudgeQuery(stage.Exchange(token), "=" + token);
}

bool IsOperation(const std::string& member) {
  return member.starts_with("CKespCommObj");
}

void PlayReading(Trial& trial, const Member& member, const TcpWay& way) {
  TcpStage stage;
  stage.EndRepliesByEos(EndsByEos(member.reads));
  if (!member.connects) trial.Require("Initialize", stage.Initialize().result == "True");
  stage.peer.Behave(way.behaviour);
  const std::string cmd = member.asks.empty() ? trial.NewToken() : member.asks;
  trial.AwaitFullSecond();
  const Clock::time_point sent = Clock::now();
  if (!member.connects) stage.WriteLine(cmd);
  const Outcome outcome = trial.Call([&] { return member.call(stage, cmd); });
  trial.JudgeReply(outcome, way.has_reply ? cmd : "");
  if (way.late.count() > 0) std::this_thread::sleep_until(sent + way.late);
  stage.peer.Recover();
  if (way.late.count() > 0 && !IsOperation(member.name)) {
    trial.NoteAnnouncedReply(stage.Exchange(trial.NewToken()));
  }
  stage.EndRepliesByEos(true);
  JudgeAfterwards(trial, stage, IsOperation(member.name));
}

void AddReadingCells(Cells& cells) {
  for (const Member& member : ReadingMembers()) {
    for (const TcpWay& way : TcpReadingWays()) {
      Cell cell{.transport = "TCP", .member = member.name, .way = way.name, .limit = kTcpWait};
      for (const Ends end : way.ends[static_cast<int>(member.reads)])
        cell.specified.push_back(member.words.Of(end));
      cell.play = [=](Trial& trial) { PlayReading(trial, member, way); };
      cells.push_back(std::move(cell));
    }
  }
}

// A way in which no connection comes about, or not for long.
struct ConnectingWay {
  std::string name;
  int waits;
  bool may_connect;
  std::function<void(TcpStage&)> begin;
  // The state in which the socket is still when the time is up.
  std::optional<EKespTCPState> still = {};
};

std::vector<ConnectingWay> ConnectingWays() {
  return {
      {"refused connection", 1, false, [](TcpStage& stage) { stage.peer.Refuse(); }},
      {"dropped connection", 4, false, [](TcpStage& stage) { stage.peer.IgnoreConnections(); },
       sckConnecting},
      {"look-up that hangs", 1, false, [](TcpStage& stage) { stage.PointAt("instrument.example"); },
       sckResolvingHost},
      {"closed at once", 1, true,
       [](TcpStage& stage) { stage.peer.Behave([](Talk& talk) { talk.Close(); }); }},
      {"reset at once", 1, true,
       [](TcpStage& stage) { stage.peer.Behave([](Talk& talk) { talk.Reset(); }); }},
  };
}

void PlayConnecting(Trial& trial, const Member& member, const ConnectingWay& way) {
  TcpStage stage;
  way.begin(stage);
  trial.AwaitFullSecond();
  const std::string cmd = member.asks.empty() ? trial.NewToken() : member.asks;
  trial.JudgeReply(trial.Call([&] { return member.call(stage, cmd); }), "");
  if (way.still && member.name == "CKespTCP.Initialize") {
    const EKespTCPState state = clients::Read(stage.tcp, &_CKespTCP::get_State);
    if (state != *way.still)
      trial.Fail("the way did not hang: the state is " + std::to_string(static_cast<int>(state)));
  }
  stage.peer.Recover();
  stage.PointAt(stage.peer.address());
  JudgeAfterwards(trial, stage, IsOperation(member.name));
}

void AddConnectingCells(Cells& cells) {
  std::vector<Member> members = ReadingMembers();
  std::erase_if(members, [](const Member& member) { return !member.connects || !EndsByEos(member.reads); });
  members.push_back({"CKespTCP.Initialize", kRaising, Reads::kToEos, true, "",
                     [](TcpStage& stage, const std::string&) { return stage.Initialize(); }});
  members.push_back({"CKespCommObj.Update", kOperating, Reads::kToEos, true, "",
                     [](TcpStage& stage, const std::string& cmd) { return stage.Update(cmd); }});
  for (const Member& member : members) {
    for (const ConnectingWay& way : ConnectingWays()) {
      Cell cell{.transport = "TCP",
                .member = member.name,
                .way = way.name,
                .specified = {member.words.unconnected}};
      if (way.may_connect) {
        const Words& words = member.words;
        cell.specified.insert(cell.specified.end(), {words.time_out, words.no_connection});
        const bool reads = member.name != "CKespTCP.Initialize" && member.name != "CKespCommObj.Update";
        if (!reads) cell.specified.push_back("True");
      }
      cell.limit = way.waits * kTcpWait;
      cell.play = [=](Trial& trial) { PlayConnecting(trial, member, way); };
      cells.push_back(std::move(cell));
    }
  }
}

// What is done to a connection that does not wait for the peer.
struct Prompt {
  std::string member;
  bool may_find_it_gone;
  std::string done;
  std::function<Outcome(TcpStage&, const std::string& cmd)> call;
};

void PlayPrompt(Trial& trial, const Prompt& prompt, const TcpWay& way) {
  TcpStage stage;
  trial.Require("Initialize", stage.Initialize().result == "True");
  stage.peer.Behave(way.behaviour);
  stage.WriteLine(way.name == "peer that never reads" ? std::string(kMoreThanBuffers, 'x') : "begin");
  // The thread takes no messages meanwhile, as in a script.
  std::this_thread::sleep_for(Milliseconds(300));
  trial.Call([&] { return prompt.call(stage, trial.NewToken()); });
  stage.peer.Recover();
  if (stage.tcp == nullptr) return;
  JudgeAfterwards(trial, stage, false);
}

void AddPromptCells(Cells& cells) {
  const std::vector<Prompt> prompts{
      {"CKespTCP.WriteLine", true, "True",
       [](TcpStage& stage, const std::string& cmd) { return stage.WriteLine(cmd); }},
      {"CKespTCP.Uninitialize", false, "True",
       [](TcpStage& stage, const std::string&) { return stage.Uninitialize(); }},
      // Which closes nothing here.
      {"CKespCommObj.CommStyle", false, "done",
       [](TcpStage& stage, const std::string&) { return stage.AssignStyle(); }},
      {"release of the CKespCommObj", false, "done",
       [](TcpStage& stage, const std::string&) { return stage.ReleaseAll(); }},
  };
  for (const Prompt& prompt : prompts) {
    for (const TcpWay& way : TcpConnectionWays()) {
      Cell cell{.transport = "TCP", .member = prompt.member, .way = way.name, .specified = {prompt.done}};
      if (prompt.may_find_it_gone) {
        // Whether the thread has heard of it or not.
        cell.specified.insert(cell.specified.end(), {kRaising.no_connection, Raised(ERR_SEND_DATA)});
      }
      cell.play = [=](Trial& trial) { PlayPrompt(trial, prompt, way); };
      cells.push_back(std::move(cell));
    }
  }
}

// A connection is there, and the instrument does not take what is sent.
void AddFullCells(Cells& cells) {
  const auto add = [&](const std::string& member, const std::string& result,
                       Outcome (Stage::*operation)(const std::string&)) {
    cells.push_back({.transport = "TCP",
                     .member = member,
                     .way = "peer that never reads",
                     .specified = {result},
                     .limit = kTcpWait,
                     .play = [=](Trial& trial) {
                       TcpStage stage;
                       stage.peer.Behave([](Talk&) {});
                       const std::string cmd(kMoreThanBuffers, 'x');
                       trial.AwaitFullSecond();
                       trial.Call([&] { return (stage.*operation)(cmd); });
                       stage.peer.Recover();
                       JudgeAfterwards(trial, stage, true);
                     }});
  };
  add("CKespCommObj.Query", kOperating.time_out, &Stage::Query);
  add("CKespCommObj.QueryBinary", kOperating.time_out, &Stage::QueryBinary);
  add("CKespCommObj.Update", "True", &Stage::Update);
}

// An instrument greets whoever connects: the first read brings the greeting, as the reference says, and a
// client that reads it before its command gets the command's reply.
void AddGreetingCells(Cells& cells) {
  const auto greet = [](Talk& talk) {
    talk.Send(std::string(kStale) + "\r");
    std::string command;
    while (talk.Command(command) && talk.Send("=" + command + "\r")) {
    }
  };
  cells.push_back({.transport = "TCP",
                   .member = "CKespTCP.ReadLine",
                   .way = "greeting, read before the command",
                   .specified = {"True"},
                   .limit = kTcpWait,
                   .play = [=](Trial& trial) {
                     TcpStage stage;
                     stage.peer.Behave(greet);
                     trial.Require("Initialize", stage.Initialize().result == "True");
                     trial.NoteAnnouncedReply(stage.ReadLine());
                     const std::string token = trial.NewToken();
                     stage.WriteLine(token);
                     trial.JudgeReply(trial.Call([&] { return stage.ReadLine(); }), token);
                     stage.peer.Recover();
                     JudgeAfterwards(trial, stage, false);
                   }});
  cells.push_back({.transport = "TCP",
                   .member = "CKespCommObj.Query",
                   .way = "greeting",
                   .specified = {"True"},
                   .limit = kTcpWait,
                   .play = [=](Trial& trial) {
                     TcpStage stage;
                     stage.peer.Behave(greet);
                     trial.NoteAnnouncedReply(trial.Call([&] { return stage.Query(trial.NewToken()); }));
                     stage.peer.Recover();
                     JudgeAfterwards(trial, stage, true);
                   }});
}

}  // namespace

Cells TcpCells() {
  Cells cells;
  AddGreetingCells(cells);
  AddConnectingCells(cells);
  AddPromptCells(cells);
  AddFullCells(cells);
  AddReadingCells(cells);
  return cells;
}

}  // namespace kesp::hangs
