// The three detections, told step by step by their events.
#include "console/detection_win.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "console/baud_rates.h"
#include "console/com_calls_win.h"
#include "console/detection_plan.h"
#include "console/event_sink_win.h"

namespace kesp::console {
namespace {

// AutoDetectUpdate in each of the event interfaces, and its last argument.
constexpr DISPID kTcpUpdate = 13;
constexpr UINT kTcpAbort = 3;
constexpr DISPID kComUpdate = 14;
constexpr UINT kComAbort = 3;
constexpr DISPID kIeeeUpdate = 8;
constexpr UINT kIeeeAbort = 2;

constexpr int kFirstDevice = 1;
constexpr int kLastDevice = 30;

EDetectLevel LevelOf(DetectLevel level) {
  return static_cast<EDetectLevel>(level);
}

std::optional<std::string> AnswerOf(VARIANT_BOOL found, const ComText& answer) {
  if (found == VARIANT_FALSE) return std::nullopt;
  return answer.str();
}

// The library tries 57600 bit/s at the most if it is told nothing.
void AllowFastInstruments(_CKespCOMPort3* port) {
  constexpr EKespBaudRate3 kFast = static_cast<EKespBaudRate3>(BaudRateNumber(115200));
  if (Read(port, &_CKespCOMPort3::get_MaxBaudRate) < kFast) Check(port->put_MaxBaudRate(kFast));
}

DetectionPlan PlanOf(_CKespCOMPort3* port, DetectLevel level) {
  const int present = Read(port, &_CKespCOMPort3::get_BaudRate);
  const int lowest = Read(port, &_CKespCOMPort3::get_MinBaudRate);
  const int highest = Read(port, &_CKespCOMPort3::get_MaxBaudRate);
  std::vector<int> rates;
  // A radio modem has one rate.
  if (!Read(port, &_CKespCOMPort3::get_UseRFModem))
    for (int rate = std::max(lowest, 0); rate <= highest; ++rate) rates.push_back(kBaudRates.at(rate));
  return DetectionPlan::OfRates(kBaudRates.at(present), rates, level);
}

// Why a port was no place to find an instrument, if it is the port's fault.
void CheckOpening(_CKespCOMPort3* port) {
  VARIANT_BOOL opened = VARIANT_FALSE;
  Check(port->OpenPort(&opened));
  Check(port->ClosePort());
}

}  // namespace

std::optional<std::string> DetectAt(_CKespTCP* tcp, DetectLevel level, const OnDetectionStep& on_step) {
  const std::string host = Read(tcp, &_CKespTCP::get_IPAddress);
  const DetectionPlan plan = DetectionPlan::OfHost(host, level);
  const EventConnection events(tcp, __uuidof(__CKespTCP), [&](DISPID event, EventArguments arguments) {
    if (event == kTcpUpdate && !on_step(plan.StepAt(host, arguments.Text(0)))) arguments.SetTrue(kTcpAbort);
  });
  ComText answer;
  VARIANT_BOOL found = VARIANT_FALSE;
  const HRESULT result = tcp->AutoDetect(answer.out(), LevelOf(level), &found);
  events.Rethrow();
  Check(result);
  return AnswerOf(found, answer);
}

std::optional<std::string> DetectAt(_CKespCOMPort3* port, const std::string& omega, DetectLevel level,
                                    const OnDetectionStep& on_step) {
  AllowFastInstruments(port);
  const DetectionPlan plan = PlanOf(port, level);
  bool aborted = false;
  const EventConnection events(port, __uuidof(__CKespCOMPort3), [&](DISPID event, EventArguments arguments) {
    if (event != kComUpdate) return;
    const std::string where = DetectionPlan::NameOfRate(kBaudRates.at(arguments.Number(1)));
    aborted = !on_step(plan.StepAt(where, arguments.Text(2)));
    if (aborted) arguments.SetTrue(kComAbort);
  });
  ComText answer;
  VARIANT_BOOL found = VARIANT_FALSE;
  const HRESULT result = port->AutoDetect(answer.out(), LevelOf(level), ComText(omega).get(), &found);
  events.Rethrow();
  Check(result);
  if (found == VARIANT_FALSE && !aborted) CheckOpening(port);
  return AnswerOf(found, answer);
}

std::optional<std::string> DetectAt(_CKespIEEE* ieee, std::optional<int> only, DetectLevel level,
                                    const OnDetectionStep& on_step) {
  const int first = only.value_or(kFirstDevice);
  const int last = only.value_or(kLastDevice);
  const DetectionPlan plan = DetectionPlan::OfDevices(first, last, level);
  const bool clears = Read(ieee, &_CKespIEEE::get_ClearDevice);
  // The first event comes before any address is opened, with the address as it is.
  bool begun = false;
  const EventConnection events(ieee, __uuidof(__CKespIEEE), [&](DISPID event, EventArguments arguments) {
    if (event != kIeeeUpdate || !std::exchange(begun, true)) return;
    const int address = arguments.Number(1);
    const DetectionStep step = plan.StepAt(DetectionPlan::NameOfDevice(address), arguments.Text(0));
    if (address > last || !on_step(step)) return arguments.SetTrue(kIeeeAbort);
    // The device behind the last one is opened before it can be left out: it must not be cleared.
    if (address == last) Write(ieee, &_CKespIEEE::put_ClearDevice, false);
  });
  // The search begins at 1, or behind the address that is set.
  const bool begins_behind = first > kFirstDevice;
  if (begins_behind) Check(ieee->put_PrimaryAddress(static_cast<short>(first - 1)));
  ComText answer;
  VARIANT_BOOL found = VARIANT_FALSE;
  const HRESULT result =
      ieee->AutoDetect(answer.out(), LevelOf(level), begins_behind ? soFindNext : soFindFirst, &found);
  Check(result);
  events.Rethrow();
  Write(ieee, &_CKespIEEE::put_ClearDevice, clears);
  return AnswerOf(found, answer);
}

}  // namespace kesp::console
