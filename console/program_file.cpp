// The portable executable format, as Microsoft describes it: headers, sections, the table of exports.
#include "console/program_file.h"

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace kesp::console {
namespace {

constexpr std::uint32_t kX64 = 0x8664;
constexpr std::uint32_t kX86 = 0x14C;
constexpr std::uint32_t kLargeAddresses = 0x20B;  // of the optional header: that of a 64-bit file

struct Section {
  std::string_view name;
  std::uint32_t address = 0;
  std::uint32_t size = 0;
  std::uint32_t place = 0;  // in the file
};

// Throws std::out_of_range beyond the end.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  std::uint32_t Number(std::size_t place, int size) const {
    std::uint32_t number = 0;
    for (int i = size - 1; i >= 0; --i)
      number = number << 8 | static_cast<unsigned char>(Bytes(place + static_cast<std::size_t>(i), 1)[0]);
    return number;
  }
  std::uint32_t Word(std::size_t place) const { return Number(place, 2); }
  std::uint32_t Long(std::size_t place) const { return Number(place, 4); }

  std::string_view Bytes(std::size_t place, std::size_t size) const {
    if (place > bytes_.size() || size > bytes_.size() - place) throw std::out_of_range("the file ends");
    return bytes_.substr(place, size);
  }
  // Up to a NUL.
  std::string_view Text(std::size_t place) const {
    const std::string_view rest = bytes_.substr(place);
    return rest.substr(0, rest.find('\0'));
  }

 private:
  std::string_view bytes_;
};

class Image {
 public:
  explicit Image(std::string_view bytes) : reader_(bytes) {
    if (reader_.Bytes(0, 2) != "MZ") throw std::runtime_error("no program");
    header_ = reader_.Long(0x3C);
    if (reader_.Bytes(header_, 4) != std::string_view("PE\0\0", 4)) throw std::runtime_error("no program");
    optional_ = header_ + 24;
    ReadSections();
  }

  int Bits() const {
    const std::uint32_t machine = reader_.Word(header_ + 4);
    if (machine == kX64) return 64;
    return machine == kX86 ? 32 : 0;
  }

  std::set<std::string> Exports() const {
    std::set<std::string> exports;
    const bool large = reader_.Word(optional_) == kLargeAddresses;
    const std::uint32_t table = reader_.Long(optional_ + (large ? 112 : 96));
    if (table == 0) return exports;
    const std::size_t place = PlaceOf(table);
    const std::uint32_t count = reader_.Long(place + 24);
    const std::size_t names = PlaceOf(reader_.Long(place + 32));
    for (std::size_t i = 0; i < count; ++i)
      exports.emplace(reader_.Text(PlaceOf(reader_.Long(names + 4 * i))));
    return exports;
  }

  // The fixed part of the version resource begins with a number that says so.
  std::string Version() const {
    for (const Section& section : sections_) {
      if (section.name != ".rsrc") continue;
      const std::string_view mark("\xBD\x04\xEF\xFE\0\0\1\0", 8);
      const auto found = reader_.Bytes(section.place, section.size).find(mark);
      if (found != std::string_view::npos) return VersionAt(section.place + found + mark.size());
    }
    return "";
  }

 private:
  void ReadSections() {
    const std::uint32_t count = reader_.Word(header_ + 6);
    std::size_t place = optional_ + reader_.Word(header_ + 20);
    for (std::uint32_t i = 0; i < count; ++i, place += 40) {
      const std::string_view name = reader_.Bytes(place, 8);
      sections_.push_back({name.substr(0, name.find('\0')), reader_.Long(place + 12),
                           reader_.Long(place + 16), reader_.Long(place + 20)});
    }
  }

  // From an address in memory to a place in the file.
  std::size_t PlaceOf(std::uint32_t address) const {
    for (const Section& section : sections_) {
      if (address >= section.address && address - section.address < section.size)
        return section.place + (address - section.address);
    }
    throw std::out_of_range("an address outside the sections");
  }

  std::string VersionAt(std::size_t place) const {
    std::string version = std::to_string(reader_.Word(place + 2)) + "." +
                          std::to_string(reader_.Word(place)) + "." + std::to_string(reader_.Word(place + 6));
    if (const std::uint32_t last = reader_.Word(place + 4); last != 0) version += "." + std::to_string(last);
    return version;
  }

  Reader reader_;
  std::size_t header_ = 0;
  std::size_t optional_ = 0;
  std::vector<Section> sections_;
};

}  // namespace

std::optional<ProgramFile> ReadProgramFile(std::string_view bytes) {
  try {
    const Image image(bytes);
    return ProgramFile{image.Bits(), image.Version(), image.Exports()};
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace kesp::console
