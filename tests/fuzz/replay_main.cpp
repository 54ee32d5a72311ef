// Runs the inputs in files through one of the fuzzers' targets: fuzz_replay NAME FOLDER|FILE...
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using Target = int (*)(const std::uint8_t*, std::size_t);

#define KESP_FUZZ_TARGET(name) extern "C" int KespFuzz_##name(const std::uint8_t*, std::size_t);
#include "replay_targets.inc"
#undef KESP_FUZZ_TARGET

namespace {

struct NamedTarget {
  const char* name;
  Target run;
};

#define KESP_FUZZ_TARGET(name) {#name, KespFuzz_##name},
const NamedTarget kTargets[] = {
#include "replay_targets.inc"
};
#undef KESP_FUZZ_TARGET

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& place) {
  if (!std::filesystem::is_directory(place)) return {place};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(place)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// False when the file cannot be read.
bool Run(const NamedTarget& target, const std::filesystem::path& file) {
  // Said before, because the input may end the program.
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
  // An array of exactly that size, so that the sanitizer sees a byte read beyond it.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  if (stream.is_open()) target.run(input.data(), input.size());
  return stream.is_open();
}

int Replay(const NamedTarget& target, char** places) {
  std::size_t inputs = 0;
  for (; *places != nullptr; ++places) {
    if (!std::filesystem::exists(*places)) continue;
    for (const auto& file : FilesIn(*places)) {
      if (!Run(target, file)) {
        std::fprintf(stderr, "fuzz_replay: %s cannot be read\n", file.c_str());
        return 1;
      }
      ++inputs;
    }
  }
  if (inputs == 0) {
    std::fprintf(stderr, "fuzz_replay: there is no input for %s\n", target.name);
    return 1;
  }
  target.run(nullptr, 0);
  std::printf("%zu inputs passed\n", inputs);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc >= 3) {
    for (const NamedTarget& target : kTargets) {
      if (std::string(argv[1]) == target.name) return Replay(target, argv + 2);
    }
  }
  std::fprintf(stderr, "usage: fuzz_replay NAME FOLDER|FILE...\nNAME is one of");
  for (const NamedTarget& target : kTargets) std::fprintf(stderr, " %s", target.name);
  std::fprintf(stderr, "\n");
  return 2;
}
