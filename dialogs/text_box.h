// A text box for a number: what may be typed into it, and what becomes of it when it is left.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "dialogs/controls.h"

namespace kesp {

// Which keys a text box takes.
enum class KeyFilter { kDigits, kSignedDecimal };

// The range into which a number is brought when its box is left.
struct NumberRange {
  std::int32_t minimum;
  std::int32_t maximum;
};

// A box into which a number is typed. Its text is whatever the user wrote; the form asks for its value.
class TextBox final : public Control {
 public:
  // Without a range the text stays as it is when the box is left.
  TextBox(ControlOwner& form, int id, int page, KeyFilter filter,
          std::optional<NumberRange> range = std::nullopt)
      : Control(form, id, page), filter_(filter), range_(range) {}

  // Takes the range from the arrows beside the box, which hold it in one place.
  TextBox(ControlOwner& form, int id, int page, KeyFilter filter, const UpDown& arrows)
      : TextBox(form, id, page, filter, NumberRange{arrows.minimum(), arrows.maximum()}) {}

  const std::wstring& text() const { return text_; }
  void SetText(const std::wstring& value);

  // The leading number of the text; 0 when there is none.
  double Value() const;

  // The part of the text that is selected, in characters.
  std::size_t selection_start() const { return selection_start_; }
  std::size_t selection_length() const { return selection_length_; }

  KeyFilter filter() const { return filter_; }

  // The user changed the text.
  void Type(const std::wstring& value) { text_ = value; }

  // Selects all of the text, as a box does when it gets the focus.
  void SelectAll();

  // Brings the number into the range, and writes it back as a plain number, as a box does that is left.
  void Leave();

  void Accept(ControlVisitor& visitor) const override;

 private:
  const KeyFilter filter_;
  const std::optional<NumberRange> range_;
  std::wstring text_;
  std::size_t selection_start_ = 0;
  std::size_t selection_length_ = 0;
};

}  // namespace kesp
