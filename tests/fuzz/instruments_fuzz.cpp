// What a discovery makes of answers: identities, addresses, the collection and its index.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "network/address_index.h"
#include "network/datagram_sender.h"
#include "network/instrument_identity.h"
#include "network/instruments.h"
#include "support/failure.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

void ReadIdentity(const std::wstring& answer) {
  std::vector<std::wstring> fields(1);
  for (const wchar_t c : answer) c == L',' ? fields.emplace_back() : fields.back() += c;
  const std::optional<InstrumentIdentity> identity = IdentityIn(answer);
  Require(identity.has_value() == (fields.size() >= 3), "an identity has three fields");
  if (!identity) return;
  Require(identity->model == fields[1] && identity->serial == fields[2], "model and serial are the fields");
}

void WriteAddress(std::uint32_t address) {
  const std::wstring text = DatagramSender{.address = address, .port = 0}.AddressText();
  std::uint32_t read = 0;
  std::uint32_t part = 0;
  int dots = 0;
  for (const wchar_t c : text) {
    if (c == L'.') {
      read = read << 8 | part;
      part = 0;
      ++dots;
    } else {
      part = part * 10 + static_cast<std::uint32_t>(c - L'0');
    }
  }
  Require(dots == 3 && text.size() <= 15 && (read << 8 | part) == address, "an address is written dotted");
}

// The collection as a plain list.
struct Model {
  struct Item {
    std::shared_ptr<Instrument> instrument;
    std::wstring key;  // folded
  };
  std::vector<Item> items;

  static std::wstring Folded(std::wstring key) {
    for (wchar_t& c : key) {
      if ((c >= L'A' && c <= L'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7))
        c = static_cast<wchar_t>(c | 0x20);
    }
    return key;
  }
  std::size_t Find(const std::wstring& key) const {
    std::size_t place = 0;
    while (place < items.size() && (key.empty() || items[place].key != Folded(key))) ++place;
    return place;
  }
  bool Holds(const std::wstring& address) const {
    for (const Item& item : items) {
      if (item.instrument->IPAddress() == address) return true;
    }
    return false;
  }
};

// The number of what the call raised; 0 for nothing.
template <typename Call>
std::int32_t NumberOf(const Call& call) {
  try {
    call();
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

void Add(CInstruments& instruments, Model& model, FuzzInput& input) {
  const auto instrument = MakeInstrument();
  instrument->SetIPAddress(std::to_wstring(input.Below(16)));
  const std::wstring key = WideText(input.Bytes(input.Below(3)));
  const bool is_taken = model.Find(key) != model.items.size();
  const std::int32_t number = NumberOf([&] { instruments.AddReference(instrument, key); });
  Require(number == (is_taken ? 457 : 0), "a key is given once");
  if (!is_taken) model.items.push_back({instrument, Model::Folded(key)});
}

void Remove(CInstruments& instruments, Model& model, FuzzInput& input) {
  CInstruments::IndexOrKey which = std::int32_t{0};
  std::size_t place = model.items.size();
  std::int32_t expected = 0;
  if (input.Flag()) {
    const std::wstring key = WideText(input.Bytes(input.Below(3)));
    which = key;
    place = model.Find(key);
    if (place == model.items.size()) expected = 5;
  } else {
    const auto index = static_cast<std::int8_t>(input.Byte());
    which = std::int32_t{index};
    if (index < 1 || static_cast<std::size_t>(index) > model.items.size()) expected = 9;
    if (expected == 0) place = static_cast<std::size_t>(index) - 1;
  }
  const std::shared_ptr<Instrument> wanted = expected == 0 ? model.items[place].instrument : nullptr;
  std::shared_ptr<Instrument> found;
  Require(NumberOf([&] { found = instruments.Item(which); }) == expected, "an item is there or refused");
  Require(found == wanted, "the item is the one of that place");
  Require(NumberOf([&] { instruments.Remove(which); }) == expected, "an item goes or is refused");
  if (expected == 0) model.items.erase(model.items.begin() + static_cast<std::ptrdiff_t>(place));
}

void Collect(FuzzInput& input) {
  CInstruments instruments;
  AddressIndex index;
  Model model;
  while (input.HasMore()) {
    switch (input.Below(8)) {
      case 0:
      case 1:
        Remove(instruments, model, input);
        break;
      case 2:
        if (input.Byte() == 0) {
          instruments.Clear();
          model.items.clear();
        }
        break;
      default:
        Add(instruments, model, input);
    }
    Require(instruments.Count() == static_cast<std::int32_t>(model.items.size()), "the count is right");
    const std::wstring address = std::to_wstring(input.Below(16));
    Require(index.Holds(instruments, address) == model.Holds(address), "the index follows the collection");
  }
  const std::vector<std::shared_ptr<Instrument>> items = instruments.Items();
  for (std::size_t i = 0; i < items.size(); ++i) {
    Require(items[i] == model.items[i].instrument, "the items stand in their order");
  }
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  if (input.Flag()) {
    kesp::Collect(input);
  } else {
    kesp::WriteAddress(static_cast<std::uint32_t>(input.Long()));
    kesp::ReadIdentity(kesp::WideText(input.Rest()));
  }
  return 0;
}
