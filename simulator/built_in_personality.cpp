// The personality that is played when no file is given, in the form of a personality file.
#include "simulator/personality.h"
#include "simulator/personality_reader.h"

namespace kesp::simulator {
namespace {

constexpr char kText[] = R"({
  "commands": {
    "*IDN?": [{"send": "KESP,7100,SIM00001,1.0"}],
    "*VER":  [{"send": "1.0"}],
    "t":     [{"send": "21.5"}],
    "MEAS?": {"cycle": [[{"send": "21.48"}], [{"send": "21.50"}], [{"send": "21.53"}], [{"send": "21.51"}]]}
  },
  "default_query": [{"send": "ERROR 113,Undefined query"}]
})";

}  // namespace

Personality BuiltInPersonality() {
  return ReadPersonality(kText);
}

}  // namespace kesp::simulator
