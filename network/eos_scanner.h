// The search for the end-of-string text in the bytes that have been received so far.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kesp {

// Answers, each time more bytes have come, whether the end-of-string text is among all of them. It remembers
// how far it has looked and how much of the text the last bytes matched (the method of Knuth, Morris and
// Pratt), so that each byte is looked at once however many pieces a reply comes in: n bytes in k pieces cost
// O(n + k).
class EosScanner {
 public:
  // Looks for `text` from now on, from the first byte. An empty text, and one with a character that has no
  // byte in the system code page, is never found.
  explicit EosScanner(const std::wstring& text) { LookFor(text); }

  // The same for another text. For the text that is being looked for already it changes nothing.
  void LookFor(const std::wstring& text);

  // Whether the text occurs anywhere in `received`, which must begin with the bytes of the previous call.
  bool FoundIn(std::string_view received);

  // Forgets the bytes seen: to be called when they were taken or dropped.
  void Restart();

 private:
  std::size_t Advance(std::string_view received);

  std::string pattern_;
  std::vector<std::size_t>
      borders_;               // [i]: length of the longest proper border of the first i + 1 pattern bytes
  std::size_t searched_ = 0;  // bytes looked at
  std::size_t matched_ = 0;   // pattern bytes that the last bytes looked at match
  bool found_ = false;
};

}  // namespace kesp
