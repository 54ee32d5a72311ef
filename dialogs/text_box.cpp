// What becomes of the text of a number's box when the focus comes and goes.
#include "dialogs/text_box.h"

#include "dialogs/control_visitor.h"
#include "dialogs/editing.h"

namespace kesp {

void TextBox::SetText(const std::wstring& value) {
  text_ = value;
  Changed(Change::kText);
}

double TextBox::Value() const {
  return LeadingNumber(text_);
}

void TextBox::SelectAll() {
  selection_start_ = 0;
  selection_length_ = text_.size();
  Changed(Change::kSelectedText);
}

void TextBox::Leave() {
  if (range_) SetText(PlainNumber(Clamp(Value(), range_->minimum, range_->maximum)));
}

void TextBox::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

}  // namespace kesp
