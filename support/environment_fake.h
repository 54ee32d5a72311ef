// Every seam as its fake, with an environment over them.
#pragma once

#include "support/clock_fake.h"
#include "support/environment.h"
#include "support/files_fake.h"
#include "support/guid_source_fake.h"
#include "support/message_pump_fake.h"
#include "support/settings_files_fake.h"
#include "support/user_surface_fake.h"

namespace kesp {

// Neither copied nor moved: the environment refers to the members.
struct EnvironmentFake {
  ClockFake clock;
  MessagePumpFake pump;
  FilesFake files{clock};
  SettingsFilesFake settings;
  GuidSourceFake guids;
  UserSurfaceFake user;
  Environment environment{clock, pump, files, settings, guids, user};

  EnvironmentFake() = default;
  EnvironmentFake(const EnvironmentFake&) = delete;
  EnvironmentFake& operator=(const EnvironmentFake&) = delete;
};

}  // namespace kesp
