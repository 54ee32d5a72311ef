// Everything outside the library that its classes reach: one bundle of seams, handed in at construction.
#pragma once

#include "support/clock.h"
#include "support/files.h"
#include "support/guid_source.h"
#include "support/message_pump.h"
#include "support/settings_files.h"
#include "support/user_surface.h"

namespace kesp {

// The members outlive every object that was made with them.
struct Environment {
  Clock& clock;
  MessagePump& pump;
  Files& files;
  SettingsFiles& settings;
  GuidSource& guids;
  UserSurface& user;
};

}  // namespace kesp
