// Does the same with the registered library many times and looks whether the process grows; tools/soak starts
// it.
//
//   kesp-soak [--out FILE] [--host ADDRESS] [--port N] [--com N] PART COUNT [PART COUNT...]
//
// PART is tcp, serial, gpib (queries through one object), objects or dialogs, COUNT a multiple of ten. Lines
// go to FILE as they are made, or to standard output. Ends with 0 when every reply was right and nothing
// grew.
#include <objbase.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "tests/soak/part.h"
#include "tests/soak/run.h"
#include "tests/soak/tenths.h"

namespace kesp::soak {

namespace {

struct Kind {
  const char* word;
  const char* name;  // in figures
  std::unique_ptr<Part> (*make)(const Surroundings& around);
};

constexpr Kind kKinds[] = {
    {"tcp", "queries over TCP", &MakeTcpQueries},
    {"serial", "queries at a COM port", &MakeSerialQueries},
    {"gpib", "queries on the GPIB", &MakeGpibQueries},
    {"objects", "objects", &MakeObjects},
    {"dialogs", "dialogs", &MakeDialogs},
};

const Kind* KindOf(const char* word) {
  for (const Kind& kind : kKinds) {
    if (std::strcmp(kind.word, word) == 0) return &kind;
  }
  return nullptr;
}

int Usage() {
  std::fprintf(stderr,
               "usage: kesp-soak [--out FILE] [--host ADDRESS] [--port N] [--com N] PART COUNT [...]\n");
  return 2;
}

bool RunPart(const Kind& kind, long count, const Surroundings& around, std::FILE* out) {
  try {
    const std::unique_ptr<Part> part = kind.make(around);
    return Run(kind.name, *part, count, out);
  } catch (const std::exception& error) {
    std::fprintf(out, "%s: %s\n", kind.name, error.what());
    std::fflush(out);
    return false;
  }
}

// The words come in pairs: options with their values, parts with their counts.
int RunAll(char** words, char** end) {
  Surroundings around;
  std::FILE* out = stdout;
  bool all_right = true;
  for (; words + 1 < end; words += 2) {
    const std::string word = words[0];
    const char* value = words[1];
    if (word == "--out") {
      out = std::fopen(value, "ab");
      if (out == nullptr) return Usage();
    } else if (word == "--host") {
      around.host = value;
    } else if (word == "--port") {
      around.port = std::atoi(value);
    } else if (word == "--com") {
      around.com = std::atoi(value);
    } else {
      const Kind* kind = KindOf(words[0]);
      const long count = std::atol(value);
      if (kind == nullptr || count < kTenths || count % kTenths != 0) return Usage();
      all_right = RunPart(*kind, count, around, out) && all_right;
    }
  }
  return words != end ? Usage() : all_right ? 0 : 1;
}

}  // namespace

}  // namespace kesp::soak

int main(int argc, char** argv) {
  if (argc < 3) return kesp::soak::Usage();
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int code = kesp::soak::RunAll(argv + 1, argv + argc);
  CoUninitialize();
  return code;
}
