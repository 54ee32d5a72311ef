// Framing, and the block check of the addressed controllers.
#include "serial/command_frame.h"

#include "support/text_edit.h"

namespace kesp {

namespace {

constexpr char kStartOfText = '\x02';
constexpr char kEndOfText = '\x03';
constexpr char kEndOfTransmission = '\x04';
constexpr char kEnquiry = '\x05';
constexpr char kCarriageReturn = '\r';

std::string DoubledAddress(std::string_view address) {
  std::string doubled(address.substr(0, 1));
  doubled.append(address.substr(0, 2));
  if (address.size() > 1) doubled.append(address.substr(1, 1));
  return doubled;
}

char BlockCheck(std::string_view body) {
  unsigned check = 0;
  for (const char c : body) check ^= static_cast<unsigned char>(c);
  return static_cast<char>(check);
}

std::string OmegaFrame(std::string_view cmd, std::string_view address, std::string_view value) {
  std::string frame = kEndOfTransmission + DoubledAddress(address);
  if (value.empty()) return frame.append(cmd) + kEnquiry + kCarriageReturn;
  const std::string body = std::string(cmd).append(value) + kEndOfText;
  return frame + kStartOfText + body + BlockCheck(body) + kCarriageReturn;
}

}  // namespace

std::optional<std::string> CommandFrame(EKespControllerStyle3 style, std::string_view cmd,
                                        std::string_view omega_address, std::string_view omega_value) {
  switch (style) {
    case EKespControllerStyle3::CS_KESP:
      return Trim(std::string(cmd) + kCarriageReturn);
    case EKespControllerStyle3::CS_OMEGA:
      if (omega_address.empty()) return std::nullopt;
      return Trim(OmegaFrame(cmd, omega_address, omega_value));
    case EKespControllerStyle3::CS_MAXSTREAM:
      return Trim(cmd);
    default:
      return std::string();
  }
}

}  // namespace kesp
