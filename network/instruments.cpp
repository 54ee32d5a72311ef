// The ordered collection of instruments with optional keys.
#include "network/instruments.h"

#include <algorithm>
#include <utility>

#include "support/failure.h"

namespace kesp {

namespace {

// Lower case for the letters of ASCII and Latin-1; other characters stay. The C library's own folding depends
// on the locale that the host program has set.
wchar_t Fold(wchar_t c) {
  const bool ascii_capital = c >= L'A' && c <= L'Z';
  const bool latin1_capital = c >= 0xC0 && c <= 0xDE && c != 0xD7;
  return ascii_capital || latin1_capital ? static_cast<wchar_t>(c + 32) : c;
}

bool SameKey(const std::wstring& a, const std::wstring& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](wchar_t x, wchar_t y) { return Fold(x) == Fold(y); });
}

}  // namespace

void CInstruments::AddReference(std::shared_ptr<Instrument> item, const std::wstring& key) {
  if (item == nullptr) throw InvalidCall();
  if (!key.empty() && FindKey(key) != entries_.end()) throw KeyAlreadyInUse();
  entries_.push_back({std::move(item), key});
}

void CInstruments::Remove(const IndexOrKey& index_or_key) {
  const auto position = entries_.begin() + static_cast<std::ptrdiff_t>(PositionOf(index_or_key));
  // The item goes when the collection is whole again: letting go of it may run code of a client.
  const Entry removed = std::move(*position);
  entries_.erase(position);
  ++removals_;
}

void CInstruments::Clear() {
  std::vector<Entry> removed;
  removed.swap(entries_);
  ++removals_;
}

const std::shared_ptr<Instrument>& CInstruments::Item(const IndexOrKey& index_or_key) const {
  return entries_[PositionOf(index_or_key)].item;
}

std::int32_t CInstruments::Count() const {
  return static_cast<std::int32_t>(entries_.size());
}

std::vector<std::shared_ptr<Instrument>> CInstruments::Items() const {
  std::vector<std::shared_ptr<Instrument>> items;
  items.reserve(entries_.size());
  for (const Entry& entry : entries_) items.push_back(entry.item);
  return items;
}

bool CInstruments::Contains(const Instrument& item) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&item](const Entry& entry) { return entry.item.get() == &item; });
}

std::vector<CInstruments::Entry>::const_iterator CInstruments::FindKey(const std::wstring& key) const {
  return std::find_if(entries_.begin(), entries_.end(),
                      [&key](const Entry& entry) { return !entry.key.empty() && SameKey(entry.key, key); });
}

std::size_t CInstruments::PositionOf(const IndexOrKey& index_or_key) const {
  if (const auto* index = std::get_if<std::int32_t>(&index_or_key)) {
    if (*index < 1 || *index > Count()) throw OutOfRange();
    return static_cast<std::size_t>(*index) - 1;
  }
  const auto found = FindKey(std::get<std::wstring>(index_or_key));
  if (found == entries_.end()) throw InvalidCall();
  return static_cast<std::size_t>(found - entries_.begin());
}

}  // namespace kesp
