// The dialog of a radio modem's own settings, as the settings dialog of its port sees it.
#pragma once

#include <cstdint>

namespace kesp {

class CKespCOMPort3;

class RFModemDialog {
 public:
  virtual ~RFModemDialog() = default;

  // Lets the user read and change what the modem on that port has stored, and waits until he has done.
  // help_context is the number of the topic that Help opens.
  virtual void Show(CKespCOMPort3& port, std::int32_t help_context) = 0;
};

}  // namespace kesp
