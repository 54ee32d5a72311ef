// Reading a settings text part by part.
#include "serial/line_settings.h"

#include <algorithm>
#include <array>
#include <string>

#include "serial/baud_rate.h"

namespace kesp {

namespace {

constexpr std::size_t kParts = 4;

using Parts = std::array<std::wstring_view, kParts>;

std::optional<Parts> Split(std::wstring_view text) {
  if (std::count(text.begin(), text.end(), L',') != kParts - 1) return std::nullopt;
  Parts parts;
  for (std::wstring_view& part : parts) {
    const std::size_t end = std::min(text.find(L','), text.size());
    part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

std::optional<std::int32_t> ReadRate(std::wstring_view text) {
  for (auto rate = EKespBaudRate3::br150; IsBaudRate(rate);
       rate = static_cast<EKespBaudRate3>(static_cast<std::int32_t>(rate) + 1)) {
    if (const std::wstring name = BaudRateName(rate); name == text) return std::stoi(name);
  }
  return std::nullopt;
}

std::optional<LineParity> ReadParity(std::wstring_view text) {
  if (text == L"N") return LineParity::kNone;
  if (text == L"O") return LineParity::kOdd;
  if (text == L"E") return LineParity::kEven;
  if (text == L"M") return LineParity::kMark;
  if (text == L"S") return LineParity::kSpace;
  return std::nullopt;
}

std::optional<int> ReadDataBits(std::wstring_view text) {
  if (text.size() != 1 || text[0] < L'4' || text[0] > L'8') return std::nullopt;
  return text[0] - L'0';
}

std::optional<LineStopBits> ReadStopBits(std::wstring_view text) {
  if (text == L"1") return LineStopBits::kOne;
  if (text == L"1.5") return LineStopBits::kOneAndAHalf;
  if (text == L"2") return LineStopBits::kTwo;
  return std::nullopt;
}

}  // namespace

std::optional<LineSettings> ReadLineSettings(std::wstring_view text) {
  const std::optional<Parts> parts = Split(text);
  if (!parts) return std::nullopt;
  const auto rate = ReadRate((*parts)[0]);
  const auto parity = ReadParity((*parts)[1]);
  const auto data_bits = ReadDataBits((*parts)[2]);
  const auto stop_bits = ReadStopBits((*parts)[3]);
  if (!rate || !parity || !data_bits || !stop_bits) return std::nullopt;
  return LineSettings{
      .bits_per_second = *rate, .parity = *parity, .data_bits = *data_bits, .stop_bits = *stop_bits};
}

}  // namespace kesp
