// The settings of the serial line at which an instrument understands its client.
#include "simulator/line_rule.h"

namespace kesp::simulator {
namespace {

bool SameParity(char wanted, const LineSettings& settings) {
  const auto visible = [](char parity) { return parity == 'E' ? 'N' : parity; };
  return settings.whole ? wanted == settings.parity : visible(wanted) == visible(settings.parity);
}

std::string OrDash(const std::optional<unsigned>& number) {
  return number ? std::to_string(*number) : "-";
}

}  // namespace

const std::string kGarbage("\xFE\x87\x00\x1C\xF8\x83\x9F\xE3", 8);

bool Suits(const LineRule& rule, const LineSettings& settings) {
  return rule.baud == settings.baud && (!rule.parity || SameParity(*rule.parity, settings)) &&
         (!rule.data_bits || !settings.whole || *rule.data_bits == settings.data_bits) &&
         (!rule.stop_bits || *rule.stop_bits == settings.stop_bits);
}

std::string TextOf(const LineRule& rule) {
  return std::to_string(rule.baud) + "," + rule.parity.value_or('-') + "," + OrDash(rule.data_bits) + "," +
         OrDash(rule.stop_bits);
}

}  // namespace kesp::simulator
