// What the server knows of each public class.
#pragma once

#include "server/com_headers.h"

namespace kesp {

struct ClassDescription {
  const CLSID& clsid;
  const IID& default_interface;
  const IID* events;  // null: the class raises none
};

}  // namespace kesp
