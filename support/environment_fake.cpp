// The making and the end of all fakes together.
#include "support/environment_fake.h"

namespace kesp {

EnvironmentFake::EnvironmentFake() = default;
EnvironmentFake::~EnvironmentFake() = default;

}  // namespace kesp
