// Each kind of control, drawn by the messages of its window class.
#include "dialogs/control_painter_win.h"

#include <utility>
#include <vector>

#include "dialogs/image_item_win.h"

namespace kesp {

namespace {

constexpr Change kAllChanges[] = {Change::kEntries,      Change::kSelection, Change::kText,
                                  Change::kSelectedText, Change::kChecked,   Change::kValue,
                                  Change::kEnabled,      Change::kVisible};

bool BeginsGroup(HWND window) {
  return (GetWindowLongPtrW(window, GWL_STYLE) & WS_GROUP) != 0;
}

// The other controls of a control's group, also those that are hidden or disabled.
std::vector<HWND> OthersOfGroup(HWND window) {
  HWND first = window;
  while (!BeginsGroup(first) && GetWindow(first, GW_HWNDPREV) != nullptr)
    first = GetWindow(first, GW_HWNDPREV);
  std::vector<HWND> others;
  for (HWND each = first; each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
    if (each != first && BeginsGroup(each)) break;
    if (each != window) others.push_back(each);
  }
  return others;
}

}  // namespace

// What is being drawn, for as long as it lives; then what was being drawn before.
class ControlPainter::Stroke {
 public:
  Stroke(ControlPainter& painter, HWND window, Change change)
      : painter_(painter),
        window_(std::exchange(painter.window_, window)),
        change_(std::exchange(painter.change_, change)),
        drawing_(std::exchange(painter.drawing_, true)) {}
  ~Stroke() {
    painter_.window_ = window_;
    painter_.change_ = change_;
    painter_.drawing_ = drawing_;
  }
  Stroke(const Stroke&) = delete;
  Stroke& operator=(const Stroke&) = delete;

 private:
  ControlPainter& painter_;
  HWND window_;
  Change change_;
  bool drawing_;
};

HWND ControlPainter::WindowOf(const Control& control) const {
  const auto found = windows_.find(&control);
  return found == windows_.end() ? nullptr : found->second;
}

void ControlPainter::SetImages(const Control& control, const ControlImages& images) {
  images_[&control] = &images;
  FitItems(WindowOf(control), images.handle());
}

void ControlPainter::DrawItem(const DRAWITEMSTRUCT& item) const {
  for (const auto& [control, images] : images_) {
    if (WindowOf(*control) != item.hwndItem) continue;
    const std::vector<ChoiceList::Entry>& entries = dynamic_cast<const ChoiceList&>(*control).entries();
    // The number is -1 while nothing is selected.
    const ChoiceList::Entry entry = item.itemID < entries.size() ? entries[item.itemID] : ChoiceList::Entry{};
    DrawImageItem(item, images->handle(), images->IndexOf(entry.image), entry.text);
  }
}

void ControlPainter::DrawAll(const Control& control) {
  for (const Change change : kAllChanges) Draw(control, change);
}

void ControlPainter::Draw(const Control& control, Change change) {
  HWND window = WindowOf(control);
  if (window == nullptr) return;
  const Stroke stroke(*this, window, change);
  switch (change) {
    case Change::kEnabled:
      EnableWindow(window, control.enabled() ? TRUE : FALSE);
      break;
    case Change::kVisible:
      ShowWindow(window, control.visible() ? SW_SHOWNA : SW_HIDE);
      break;
    default:
      control.Accept(*this);
  }
}

void ControlPainter::Visit(const Label& label) {
  // Captions that the form does not know stand in the resource.
  if (change_ == Change::kText && !label.text().empty()) SetWindowTextW(window_, label.text().c_str());
}

void ControlPainter::Visit(const Button& /*button*/) {}

void ControlPainter::Visit(const CheckBox& box) {
  if (change_ == Change::kChecked) Send(BM_SETCHECK, box.checked() ? BST_CHECKED : BST_UNCHECKED, 0);
}

void ControlPainter::Visit(const OptionButton& button) {
  if (change_ != Change::kChecked) return;
  const LRESULT wanted = button.selected() ? BST_CHECKED : BST_UNCHECKED;
  // Deselecting takes a button out of the Tab order, the first one, too, when none is selected.
  if (Send(BM_GETCHECK, 0, 0) != wanted) Send(BM_SETCHECK, static_cast<WPARAM>(wanted), 0);
  if (!button.selected()) return;
  // The Tab key is to find the option that is selected, and not the group's first one.
  for (HWND other : OthersOfGroup(window_)) SendMessageW(other, BM_SETCHECK, BST_UNCHECKED, 0);
}

void ControlPainter::Visit(const ChoiceList& list) {
  if (change_ == Change::kEntries) FillList(list);
  if (change_ != Change::kSelection && change_ != Change::kEntries) return;
  Send(CB_SETCURSEL, list.selection() ? *list.selection() : static_cast<WPARAM>(-1), 0);
}

void ControlPainter::FillList(const ChoiceList& list) const {
  Send(CB_RESETCONTENT, 0, 0);
  for (const ChoiceList::Entry& entry : list.entries()) {
    Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.text.c_str()));
  }
}

void ControlPainter::Visit(const UpDown& arrows) {
  if (change_ != Change::kValue) return;
  UDACCEL speed{0, static_cast<UINT>(arrows.step())};
  Send(UDM_SETACCEL, 1, reinterpret_cast<LPARAM>(&speed));
  Send(UDM_SETRANGE32, static_cast<WPARAM>(arrows.minimum()), arrows.maximum());
}

void ControlPainter::Visit(const ProgressBar& bar) {
  if (change_ != Change::kValue) return;
  Send(PBM_SETRANGE32, static_cast<WPARAM>(bar.minimum()), bar.maximum());
  Send(PBM_SETPOS, static_cast<WPARAM>(bar.value()), 0);
}

void ControlPainter::Visit(const Frame& /*frame*/) {}

void ControlPainter::Visit(const TabStrip& strip) {
  if (change_ == Change::kEntries) FillTabs(strip);
  if (change_ == Change::kSelection || change_ == Change::kEntries) Send(TCM_SETCURSEL, strip.selection(), 0);
}

void ControlPainter::FillTabs(const TabStrip& strip) const {
  Send(TCM_DELETEALLITEMS, 0, 0);
  int index = 0;
  for (const TabStrip::Tab& tab : strip.tabs()) {
    TCITEMW item{};
    item.mask = TCIF_TEXT | TCIF_PARAM;
    item.pszText = const_cast<wchar_t*>(tab.caption.c_str());
    item.lParam = tab.tag;
    Send(TCM_INSERTITEMW, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&item));
  }
}

void ControlPainter::Visit(const TextBox& box) {
  if (change_ == Change::kText) SetWindowTextW(window_, box.text().c_str());
  if (change_ == Change::kSelectedText) {
    Send(EM_SETSEL, box.selection_start(),
         static_cast<LPARAM>(box.selection_start() + box.selection_length()));
  }
}

}  // namespace kesp
