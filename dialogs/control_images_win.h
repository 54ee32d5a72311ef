// The pictures of the lists: small icons from the resources, by key.
#pragma once

#include <string>
#include <vector>

#include "dialogs/common_controls_win.h"

namespace kesp {

// An image list for one combo box, as large as the system's small icons.
class ControlImages {
 public:
  struct Image {
    const char* key;
    int icon;  // number of the resource
  };

  explicit ControlImages(const std::vector<Image>& images);
  ~ControlImages();
  ControlImages(const ControlImages&) = delete;
  ControlImages& operator=(const ControlImages&) = delete;

  HIMAGELIST handle() const { return list_; }

  // Its number in the list; -1 for an unknown key.
  int IndexOf(const std::string& key) const;

 private:
  HIMAGELIST list_;
  std::vector<std::string> keys_;
};

}  // namespace kesp
