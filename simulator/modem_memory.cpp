// The memory in which a radio modem keeps its registers while it has no power: a file.
#include "simulator/modem_memory.h"

#include <fstream>
#include <string>
#include <system_error>

#include "simulator/bytes_text.h"
#include "simulator/description_error.h"

namespace kesp::simulator {

ModemRegisters ModemMemory::Load() const {
  ModemRegisters registers;
  std::error_code error;
  if (std::filesystem::status(file_, error).type() == std::filesystem::file_type::not_found) return registers;
  std::ifstream stream(file_);
  // A folder opens like a file.
  if (!stream || std::filesystem::is_directory(file_, error))
    throw DescriptionError(file_.string() + ": cannot be read");
  for (std::string line; std::getline(stream, line);) {
    const std::size_t sign = line.find('=');
    const std::optional<std::uint32_t> value =
        sign == std::string::npos ? std::nullopt : FromHexadecimal(line.substr(sign + 1));
    if (!value) throw DescriptionError(file_.string() + ": \"" + line + "\" is not a saved register");
    registers[line.substr(0, sign)] = *value;
  }
  return registers;
}

void ModemMemory::Save(const ModemRegisters& registers) const {
  std::ofstream stream(file_, std::ios::trunc);
  for (const auto& [name, value] : registers) stream << name << '=' << Hexadecimal(value) << '\n';
  if (!stream.flush()) throw std::system_error(std::make_error_code(std::errc::io_error), file_.string());
}

}  // namespace kesp::simulator
