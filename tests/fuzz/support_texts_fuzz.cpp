// Text and bytes, paths, keys, help files, and the logs with their daily rollover.
#include <array>
#include <map>
#include <set>
#include <string>

#include "support/clock_fake.h"
#include "support/files_fake.h"
#include "support/guid_source_fake.h"
#include "support/help_file.h"
#include "support/log.h"
#include "support/object_key.h"
#include "support/paths.h"
#include "support/text.h"
#include "support/text_edit.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

void RequireRoundTrip(const CodePage& page, std::string_view bytes) {
  const std::wstring text = page.FromBytes(bytes);
  Require(text.size() == bytes.size(), "each byte is a character");
  Require(page.ToBytes(text) == bytes && page.ToExactBytes(text) == std::string(bytes),
          "every byte comes back");
}

// A code page out of the bytes: what they change of the usual one.
void ConvertByAnyCodePage(FuzzInput& input) {
  std::array<char16_t, 256> characters{};
  for (std::size_t byte = 0; byte < characters.size(); ++byte) characters[byte] = static_cast<char16_t>(byte);
  for (std::size_t count = input.Below(32); count > 0; --count) {
    const std::uint8_t byte = input.Byte();
    characters[byte] = static_cast<char16_t>(input.Flag() ? input.Word() : input.Byte());
  }
  const CodePage page(characters);
  const std::wstring all = page.FromBytes(AllBytes());
  Require(std::set<wchar_t>(all.begin(), all.end()).size() == 256, "each byte has a character of its own");
  RequireRoundTrip(page, AllBytes());
}

void Convert(std::string_view bytes) {
  RequireRoundTrip(SystemCodePage(), bytes);
  const std::wstring text = WideText(bytes);
  const std::string converted = SystemCodePage().ToBytes(text);
  Require(converted.size() <= text.size(), "no character takes more than a byte");
  const std::optional<std::string> exact = SystemCodePage().ToExactBytes(text);
  Require(!exact || *exact == converted, "exact bytes are the same bytes");
  Require(!exact || SystemCodePage().FromBytes(*exact) == text, "exact bytes give the text back");
}

void CutBlanks(const std::wstring& text) {
  std::wstring expected = text;
  while (expected.ends_with(L' ')) expected.pop_back();
  while (expected.starts_with(L' ')) expected.erase(0, 1);
  Require(kesp::Trim(text) == expected, "blanks at the ends go");
  const std::wstring stripped = StripLineEnds(text);
  Require(stripped.find_first_of(L"\r\n") == std::wstring::npos, "no line end is left");
  Require(!stripped.starts_with(L' ') && !stripped.ends_with(L' '), "no blank is left at the ends");
  Require(StripLineEnds(stripped) == stripped, "stripping twice changes nothing more");
}

void Split(const std::wstring& folder, const std::wstring& name) {
  const std::wstring path = JoinPath(folder, name);
  Require(path.size() + 1 >= folder.size() + name.size(), "joining loses a separator at the most");
  Require(path.starts_with(folder), "the folder stands in front");
  const std::wstring parent = FolderOfPath(path);
  Require(path.starts_with(parent) && (parent.empty() || parent.ends_with(L'\\')),
          "the folder is a beginning");
  Require(path.find(L'\\', parent.size()) == std::wstring::npos, "up to the last separator");
  const std::wstring last = FileNameOfPath(path);
  Require(last.find_first_of(L"\\/") == std::wstring::npos, "a name has no separator");
  Require(path.find(last) != std::wstring::npos, "a name is a part of the path");
  const bool is_folder = !folder.empty() && (!folder.ends_with(L':') || folder.size() == 2);
  const bool is_plain = !name.empty() && name.find_first_of(L"\\/:") == std::wstring::npos && is_folder;
  Require(!is_plain || last == name, "a name that was joined is found again");
  const bool is_html = FormatOfHelpFile(path) == HelpFormat::kHtmlHelp;
  Require(!is_html || path.size() >= 4, "an ending has four characters");
  Require(FormatOfHelpFile(path + L".CHM") == HelpFormat::kHtmlHelp, "an ending counts in any case");
}

void MakeKey(FuzzInput& input) {
  GuidSourceFake guids;
  GuidFields guid{
      .data1 = static_cast<std::uint32_t>(input.Long()), .data2 = input.Word(), .data3 = input.Word()};
  for (std::uint8_t& byte : guid.data4) byte = input.Byte();
  guids.Push(guid);
  guids.Push(guid);
  const std::wstring text = NewGuidText(guids);
  Require(text.size() == 32 && text.find_first_not_of(L"0123456789ABCDEF") == std::wstring::npos,
          "32 digits");
  Require(std::stoul(text.substr(0, 8), nullptr, 16) == guid.data1, "the first field is a number");
  Require(std::stoul(text.substr(30), nullptr, 16) == guid.data4[7], "the last byte comes last");
  Require(NewObjectKey(guids) == text.substr(0, 10) + L"K", "a key is the beginning");
}

// Every line is in a file of its day, whole, and no file is lost.
void Log(FuzzInput& input) {
  ClockFake clock;
  FilesFake files(clock);
  LogWriter log(clock, files);
  std::string all;
  std::size_t lines = 0;
  while (input.HasMore()) {
    const std::uint8_t step = input.Byte();
    if (step % 4 == 0) {
      clock.SetToday({2000 + step % 3, 1 + step % 12, 1 + step % 28});
    } else if (step == 255) {
      files.Refuse(FilesFake::Operation::kRename);
    } else {
      clock.SetTickCount(input.Long());
      const std::wstring message = WideText(input.Bytes(input.Below(20)));
      log.WriteWithDailyRollover(L"a.trace", message);
      const std::string line = SystemCodePage().ToBytes(
          L"17/05/2024 12:34:56\t" + std::to_wstring(clock.tick()) + L"\t" + message + L"\r\n");
      Require(files.Content(L"a.trace").ends_with(line), "a line is written whole, and last");
      Require(files.files().at(L"a.trace").modified == clock.Today(), "into the file of the day");
      all += line;
      ++lines;
    }
  }
  std::size_t written = 0;
  for (const auto& [name, file] : files.files()) {
    written += file.content.size();
    Require(name == L"a.trace" || (name.starts_with(L"a.trace 20") && name.size() == 18),
            "older files have a day");
  }
  Require(written == all.size(), "no line is lost");
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  switch (input.Below(6)) {
    case 0:
      kesp::ConvertByAnyCodePage(input);
      break;
    case 1:
      kesp::MakeKey(input);
      break;
    case 2:
      kesp::Log(input);
      break;
    case 3:
      kesp::CutBlanks(kesp::WideText(input.Rest()));
      break;
    case 4: {
      const std::wstring folder = kesp::WideText(input.Text());
      kesp::Split(folder, kesp::WideText(input.Rest()));
      break;
    }
    default:
      kesp::Convert(input.Rest());
  }
  return 0;
}
