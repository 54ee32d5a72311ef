// The file of a conversation.
#include "console/conversation_log.h"

#include <stdexcept>

#include "console/utf8_path.h"

namespace kesp::console {

void ConversationLog::Begin(const std::string& name) {
  file_ = std::ofstream(PathOf(name), std::ios::binary | std::ios::app);
  name_ = name;
  if (!file_) throw std::runtime_error(name_ + " cannot be written");
}

void ConversationLog::Note(const std::string& time, char sign, std::string_view text) {
  if (!IsOn()) return;
  file_ << time << ' ' << sign << ' ' << text << '\n' << std::flush;
  if (file_) return;
  file_ = {};
  throw std::runtime_error(name_ + " cannot be written any more; the log ends here");
}

}  // namespace kesp::console
