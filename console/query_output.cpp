// Replies as lines, as a table, and as JSON.
#include "console/query_output.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

#include "console/csv.h"
#include "console/line_end.h"

namespace kesp::console {
namespace {

class PlainOutput : public QueryOutput {
 public:
  PlainOutput(const QueryOptions& options, Console& console)
      : console_(console), with_time_(options.repeat), as_is_(options.crlf_as_is) {}

  void Add(const Reply& reply) override {
    if (reply.failure) return;
    std::string line = with_time_ ? reply.time + '\t' : std::string();
    line += as_is_ ? reply.text : WithoutLineEnd(reply.text);
    // A reply that is to stay as it is has its own line end, unless the next one's time would follow on the
    // same line.
    if (!as_is_ || (with_time_ && !line.ends_with('\n'))) line += '\n';
    console_.Write(line);
  }

 private:
  Console& console_;
  bool with_time_;
  bool as_is_;
};

class CsvOutput : public QueryOutput {
 public:
  CsvOutput(const QueryOptions& options, Console& console)
      : console_(console), with_time_(options.repeat), as_is_(options.crlf_as_is) {
    std::vector<std::string> head = options.commands;
    if (with_time_) head.insert(head.begin(), "time");
    columns_ = head.size();
    console_.Write(CsvOf(head));
  }

  void Add(const Reply& reply) override {
    if (fields_.empty() && with_time_) fields_.push_back(reply.time);
    fields_.push_back(as_is_ ? reply.text : WithoutLineEnd(reply.text));
  }

  void EndRound() override {
    // What was not asked any more stays empty.
    fields_.resize(columns_);
    console_.Write(CsvOf(fields_));
    fields_.clear();
  }

 private:
  Console& console_;
  bool with_time_;
  bool as_is_;
  std::size_t columns_ = 0;
  std::vector<std::string> fields_;
};

class JsonOutput : public QueryOutput {
 public:
  JsonOutput(const QueryOptions& options, Console& console)
      : console_(console), address_(options.talk.address), kind_(options.hex ? "hex" : "reply") {}

  void Add(const Reply& reply) override {
    nlohmann::ordered_json object = {{"time", reply.time}, {"address", address_}, {"command", reply.command}};
    if (reply.failure) {
      object["error"] = ErrorOf(*reply.failure);
    } else {
      object[kind_] = reply.text;
    }
    object["seconds"] = std::round(reply.seconds * 1e6) / 1e6;
    console_.Write(object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n');
  }

 private:
  static nlohmann::ordered_json ErrorOf(const LibraryError& failure) {
    nlohmann::ordered_json error = {
        {"description", failure.what()}, {"status", failure.status()}, {"source", failure.source()}};
    if (!failure.hint.empty()) error["hint"] = failure.hint;
    return error;
  }

  Console& console_;
  std::string address_;
  const char* kind_;
};

}  // namespace

std::unique_ptr<QueryOutput> MakeQueryOutput(const QueryOptions& options, Console& console) {
  if (options.json) return std::make_unique<JsonOutput>(options, console);
  if (options.csv) return std::make_unique<CsvOutput>(options, console);
  return std::make_unique<PlainOutput>(options, console);
}

}  // namespace kesp::console
