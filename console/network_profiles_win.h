// Which network an adapter is connected to, in the words of Windows.
#pragma once

#include <map>
#include <string>

namespace kesp::console {

class NetworkProfiles {
 public:
  // Asks Windows. COM is initialised on this thread.
  NetworkProfiles();

  // adapter: "{6A1B...}". Returns "private", "public" or "domain"; empty: not known.
  std::string ProfileOf(const std::string& adapter) const;

 private:
  std::map<std::string, std::string> profiles_;
};

}  // namespace kesp::console
