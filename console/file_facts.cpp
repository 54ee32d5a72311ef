// Telling files from one another.
#include "console/file_facts.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "console/program_file.h"
#include "console/text_pieces.h"

namespace kesp::console {
namespace {

// FNV-1a of 64 bits, by Fowler, Noll and Vo; and the size.
std::string NumberOf(std::string_view bytes) {
  std::uint64_t hash = 0xCBF2'9CE4'8422'2325;
  for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100'0000'01B3;
  return std::to_string(bytes.size()) + "-" + std::to_string(hash);
}

// Its numbers.
std::vector<long long> PartsOf(std::string_view version) {
  std::vector<long long> parts;
  while (const auto number = LeadingNumber(version)) {
    parts.push_back(*number);
    version.remove_prefix(std::min(version.find('.'), version.size() - 1) + 1);
  }
  return parts;
}

}  // namespace

bool IsNewer(const std::string& one, const std::string& other) {
  return PartsOf(one) > PartsOf(other);
}

FileFacts FileFactsOf(std::string_view bytes) {
  FileFacts facts;
  facts.content = NumberOf(bytes);
  if (const auto program = ReadProgramFile(bytes)) {
    facts.bits = program->bits;
    facts.version = program->version;
  }
  return facts;
}

}  // namespace kesp::console
