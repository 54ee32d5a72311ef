// Icons, loaded in the size that this screen shows small icons in.
#include "dialogs/control_images_win.h"

#include <algorithm>

#include "dialogs/activation_context_win.h"

namespace kesp {

ControlImages::ControlImages(const std::vector<Image>& images) {
  const int width = GetSystemMetrics(SM_CXSMICON);
  const int height = GetSystemMetrics(SM_CYSMICON);
  list_ = ImageList_Create(width, height, ILC_COLOR32 | ILC_MASK, static_cast<int>(images.size()), 0);
  for (const Image& image : images) {
    const auto icon = static_cast<HICON>(
        LoadImageW(ThisModule(), MAKEINTRESOURCEW(image.icon), IMAGE_ICON, width, height, LR_DEFAULTCOLOR));
    ImageList_ReplaceIcon(list_, -1, icon);
    DestroyIcon(icon);
    keys_.emplace_back(image.key);
  }
}

ControlImages::~ControlImages() {
  ImageList_Destroy(list_);
}

int ControlImages::IndexOf(const std::string& key) const {
  const auto found = std::find(keys_.begin(), keys_.end(), key);
  return found == keys_.end() ? -1 : static_cast<int>(found - keys_.begin());
}

}  // namespace kesp
