// Communication objects over each of the transports.
#include "tests/threads/lines.h"

#include <cstdlib>
#include <sstream>

#include "tests/clients/instrument_address.h"

namespace kesp::threads {
namespace {

using clients::Read;
using clients::Write;

// Longer than anything takes on a busy machine.
constexpr short kTimeOutMs = 10000;

}  // namespace

bool Line::Answers(int number) {
  const std::wstring cmd = L"ECHO " + std::to_wstring(number);
  if (!client_.Query(cmd)) {
    ADD_FAILURE() << testing::PrintToString(name_) << ": "
                  << testing::PrintToString(Read(client_.comm_, &_CKespCommObj::get_CommErrorDescr));
    return false;
  }
  std::wstring reply = client_.reply_.str();
  while (!reply.empty() && reply.back() < L' ') reply.pop_back();
  EXPECT_EQ(reply, cmd);
  return reply == cmd;
}

std::unique_ptr<Line> NetworkLine(const std::wstring& host) {
  auto line = std::make_unique<Line>(L"TCP " + host);
  const auto tcp = clients::UseInstrument(line->client().comm_.Get());
  if (!host.empty()) {
    EXPECT_EQ(Write(tcp, &_CKespTCP::put_IPAddress, host), S_OK);
  }
  EXPECT_EQ(Write(tcp, &_CKespTCP::put_TimeOutmSecs, kTimeOutMs), S_OK);
  return line;
}

std::unique_ptr<Line> GpibLine(short device) {
  auto line = std::make_unique<Line>(L"GPIB " + std::to_wstring(device));
  const auto ieee = line->client().Use<_CKespIEEE>(csIEEE);
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_PrimaryAddress, device), S_OK);
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_EOSChar, L"10"), S_OK);
  // Replies end by END alone.
  EXPECT_EQ(Write(ieee, &_CKespIEEE::put_SetEOS, VARIANT_FALSE), S_OK);
  return line;
}

std::unique_ptr<Line> SerialLine(short port) {
  auto line = std::make_unique<Line>(L"COM" + std::to_wstring(port));
  const auto serial = line->client().Use<_CKespCOMPort3>(csRS232);
  EXPECT_EQ(Write(serial, &_CKespCOMPort3::put_Port, port), S_OK);
  EXPECT_EQ(Write(serial, &_CKespCOMPort3::put_MaxBaudRate, br921600), S_OK);
  EXPECT_EQ(Write(serial, &_CKespCOMPort3::put_MinBaudRate, br150), S_OK);
  EXPECT_EQ(Write(serial, &_CKespCOMPort3::put_BaudRate, br921600), S_OK);
  EXPECT_EQ(Write(serial, &_CKespCOMPort3::put_TimeOut, kTimeOutMs), S_OK);
  return line;
}

std::vector<short> SerialPorts() {
  const char* const text = std::getenv("KESP_THREADS_PORTS");
  std::istringstream numbers(text == nullptr ? "" : text);
  std::vector<short> ports;
  for (short port = 0; numbers >> port;) ports.push_back(port);
  return ports;
}

std::vector<std::unique_ptr<Line>> LinesOfThread(int number) {
  std::vector<std::unique_ptr<Line>> lines;
  // One of the two has its host looked up each time.
  lines.push_back(NetworkLine(number == 0 ? L"" : L"localhost"));
  lines.push_back(GpibLine(static_cast<short>(5 + number)));
  const std::vector<short> ports = SerialPorts();
  const auto own = static_cast<std::size_t>(number);
  if (own < ports.size()) lines.push_back(SerialLine(ports[own]));
  return lines;
}

}  // namespace kesp::threads
