// The system's code page where there is none: Windows-1252.
#include "support/ansi_text.h"
#include "support/text.h"

namespace kesp {

const CodePage& SystemCodePage() {
  return Windows1252();
}

std::string ToAnsi(std::wstring_view text) {
  return Windows1252().ToBytes(text);
}

}  // namespace kesp
