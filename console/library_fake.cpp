// The library of the tests and its instrument.
#include "console/library_fake.h"

#include <utility>

namespace kesp::console {
namespace {

class InstrumentFake : public Instrument {
 public:
  InstrumentFake(LibraryFake& library, Address address) : library_(library), address_(std::move(address)) {}

  std::string Query(const std::string& cmd) override { return Exchange("Query", cmd); }
  std::string QueryBinary(const std::string& cmd) override { return Exchange("QueryBinary", cmd); }
  void Update(const std::string& cmd) override {
    Begin("Update", cmd);
    if (library_.HasAnswer(cmd)) library_.Next(cmd);
  }

  std::optional<std::string> Detect(DetectLevel level, const OnDetectionStep& on_step) override {
    library_.calls.push_back("Detect " + std::to_string(static_cast<int>(level)));
    for (const DetectionStep& step : library_.steps)
      if (Aborted(on_step(step))) return std::nullopt;
    if (library_.detection_fails) throw LibraryError(*library_.detection_fails);
    if (library_.detected && library_.found_at) address_ = *library_.found_at;
    return library_.detected;
  }

  Transfer Download(const std::string& cmd, const OnTransfer& on_transfer) override {
    library_.calls.push_back("Download " + cmd);
    for (const std::int64_t received : library_.transfer_steps)
      if (Aborted(on_transfer(received))) return {library_.transfer, true, std::nullopt};
    if (library_.transfer_fails && library_.transfer.empty()) throw LibraryError(*library_.transfer_fails);
    return {library_.transfer, false, library_.transfer_fails};
  }

  bool Edit() override {
    library_.calls.emplace_back("Edit");
    if (library_.confirmed && library_.found_at) address_ = *library_.found_at;
    return library_.confirmed;
  }

  Address address() override { return address_; }

  void SetTimeout(int milliseconds) override {
    library_.calls.push_back("SetTimeout " + std::to_string(milliseconds));
    if (library_.set_timeout_fails) library_.set_timeout_fails();
  }

  std::optional<std::chrono::milliseconds> waited() const override { return library_.waited; }

 private:
  void Begin(const std::string& member, const std::string& cmd) {
    library_.calls.push_back(member + " " + cmd);
    if (library_.on_exchange) library_.on_exchange();
  }

  std::string Exchange(const std::string& member, const std::string& cmd) {
    Begin(member, cmd);
    return library_.Next(cmd);
  }

  bool Aborted(bool goes_on) {
    if (!goes_on) library_.aborted = true;
    return !goes_on;
  }

  LibraryFake& library_;
  Address address_;
};

}  // namespace

std::unique_ptr<Instrument> LibraryFake::At(const Address& address, const Tuning& tuning) {
  calls.push_back("At " + TextOf(address));
  tunings.push_back(tuning);
  if (at_fails) throw LibraryError(*at_fails);
  return std::make_unique<InstrumentFake>(*this, address);
}

std::vector<FoundInstrument> LibraryFake::Discover(const std::string&, const OnDetectionStep& on_step) {
  calls.emplace_back("Discover");
  for (const DetectionStep& step : steps) {
    if (on_step(step)) continue;
    aborted = true;
    break;
  }
  if (detection_fails) throw LibraryError(*detection_fails);
  return found;
}

std::string LibraryFake::Next(const std::string& cmd) {
  auto& answers = answers_[cmd];
  if (answers.empty()) throw LibraryError("cfrTimeout", "[CKespTCP - ReadLine()]", "Timeout");
  const auto answer = answers.front();
  if (answers.size() > 1) answers.pop_front();
  if (const auto* error = std::get_if<LibraryError>(&answer)) throw LibraryError(*error);
  return std::get<std::string>(answer);
}

}  // namespace kesp::console
