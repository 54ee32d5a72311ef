// The system's code page where there is none: Windows-1252.
#include "support/text.h"

namespace kesp {

const CodePage& SystemCodePage() {
  return Windows1252();
}

}  // namespace kesp
