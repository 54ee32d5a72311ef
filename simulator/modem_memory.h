// The memory in which a radio modem keeps its registers while it has no power: a file.
#pragma once

#include <filesystem>

#include "simulator/radio_modem.h"

namespace kesp::simulator {

// The file has a line "DL=1A" for each register.
class ModemMemory {
 public:
  explicit ModemMemory(std::filesystem::path file) : file_(std::move(file)) {}

  // What was saved last; nothing when there is no file. Throws DescriptionError, with the file's name, for
  // contents that were not saved here or cannot be read.
  ModemRegisters Load() const;

  // Replaces what was saved. Throws std::system_error when the file cannot be written.
  void Save(const ModemRegisters& registers) const;

 private:
  std::filesystem::path file_;
};

}  // namespace kesp::simulator
