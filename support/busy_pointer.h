// The busy pointer for as long as an operation runs.
#pragma once

#include "support/user_surface.h"

namespace kesp {

// Shows the busy mouse pointer now, and the default one at the end of its life.
class BusyPointer {
 public:
  explicit BusyPointer(UserSurface& user) : user_(user) { user_.SetPointer(MousePointer::kBusy); }
  ~BusyPointer() { user_.SetPointer(MousePointer::kDefault); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  UserSurface& user_;
};

}  // namespace kesp
