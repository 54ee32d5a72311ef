// The library, loaded and used through COM as a client does.
#pragma once

#include "console/library.h"
#include "console/object_source_win.h"

namespace kesp::console {

class LibraryWin : public Library {
 public:
  explicit LibraryWin(const ObjectSource& source) : source_(source) {}

  std::unique_ptr<Instrument> At(const Address& address, const Tuning& tuning) override;
  std::vector<FoundInstrument> Discover(const std::string& trace, const OnDetectionStep& on_step) override;

 private:
  ObjectSource source_;
};

}  // namespace kesp::console
