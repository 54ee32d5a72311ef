// The seams on the real system, one of each.
#include "support/environment_win.h"

#include "support/clock_win.h"
#include "support/files_win.h"
#include "support/guid_source_win.h"
#include "support/message_pump_win.h"
#include "support/settings_files_win.h"
#include "support/user_surface_win.h"

namespace kesp {

Environment& SystemEnvironment() {
  static ClockWin clock;
  static MessagePumpWin pump;
  static FilesWin files;
  static SettingsFilesWin settings;
  static GuidSourceWin guids;
  static UserSurfaceWin user;
  static Environment environment{clock, pump, files, settings, guids, user};
  return environment;
}

}  // namespace kesp
