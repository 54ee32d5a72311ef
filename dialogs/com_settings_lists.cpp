// Parities, bits, controllers, switches and rates as the RS-232 dialog names them.
#include "dialogs/com_settings_lists.h"

#include "serial/baud_rate.h"

namespace kesp {

namespace {

template <typename Enumeration>
ChoiceList::Entry EntryOf(const wchar_t* text, Enumeration value, const char* image = "") {
  return {text, static_cast<std::int32_t>(value), image};
}

}  // namespace

std::vector<ChoiceList::Entry> ParityEntries() {
  return {EntryOf(L"None", EKespParity3::PARITY_NONE), EntryOf(L"Even", EKespParity3::PARITY_EVEN),
          EntryOf(L"Odd", EKespParity3::PARITY_ODD), EntryOf(L"Mark", EKespParity3::PARITY_MARK),
          EntryOf(L"Space", EKespParity3::PARITY_SPACE)};
}

std::vector<ChoiceList::Entry> DataBitsEntries() {
  return {EntryOf(L"4 bits", EKespDataBits3::DATA_4BITS), EntryOf(L"5 bits", EKespDataBits3::DATA_5BITS),
          EntryOf(L"6 bits", EKespDataBits3::DATA_6BITS), EntryOf(L"7 bits", EKespDataBits3::DATA_7BITS),
          EntryOf(L"8 bits", EKespDataBits3::DATA_8BITS)};
}

std::vector<ChoiceList::Entry> StopBitsEntries() {
  return {EntryOf(L"1 bit", EKespStopBits3::STOP_1BIT), EntryOf(L"1.5 bits", EKespStopBits3::STOP_1_5BITS),
          EntryOf(L"2 bits", EKespStopBits3::STOP_2BITS)};
}

std::vector<ChoiceList::Entry> ControllerStyleEntries() {
  return {EntryOf(L"Kesp 7100/7200/7300", EKespControllerStyle3::CS_KESP),
          EntryOf(L"Omega 847/848", EKespControllerStyle3::CS_OMEGA)};
}

std::vector<ChoiceList::Entry> SmartSwitchStyleEntries() {
  return {EntryOf(L"6-port", ESmartSwitchStyle3::ssBB6port, "6-port"),
          EntryOf(L"8-port", ESmartSwitchStyle3::ssBB8port, "8-port")};
}

std::vector<ChoiceList::Entry> BaudRateEntries(EKespBaudRate3 minimum, EKespBaudRate3 maximum) {
  std::vector<ChoiceList::Entry> entries;
  for (auto rate = static_cast<std::int32_t>(minimum); rate <= static_cast<std::int32_t>(maximum); ++rate) {
    const auto value = static_cast<EKespBaudRate3>(rate);
    entries.push_back(EntryOf(BaudRateName(value).c_str(), value));
  }
  return entries;
}

}  // namespace kesp
