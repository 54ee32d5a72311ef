// A network transport that looks for instruments on a network of simulated hosts, and what it finds.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "KespCommObj.h"
#include "support/lines_fixture.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/late_object.h"
#include "tests/clients/temporary_file.h"

namespace kesp::clients {

// With settings of the client's own, to be found again afterwards.
class DiscoveryFixture : public testing::Test {
 protected:
  DiscoveryFixture() {
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Protocol, sckUDPProtocol), S_OK);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPType, ipDynamic), S_OK);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_TimeOutmSecs, 5000), S_OK);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_IPAddress, L"10.88.255.254"), S_OK);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Port, 1234), S_OK);
  }

  // Whether something was found. The milliseconds it took are in elapsed_.
  bool Discover() {
    VARIANT_BOOL found = 5;
    const DWORD start = GetTickCount();
    EXPECT_EQ(RefusalOf(tcp_->AutoDetect(result_.in_out(), dlAllCommands, &found)), Refusal{});
    elapsed_ = GetTickCount() - start;
    return found == VARIANT_TRUE;
  }

  ComPtr<_CInstrument> Item(long index) {
    ComPtr<_CInstrument> item;
    EXPECT_EQ(devices_->Item(Plain(Value(index)), item.GetAddressOf()), S_OK);
    return item;
  }
  long Count() { return Read(devices_, &_CInstruments::get_Count); }
  // Each device as "address/model/serial", in their order.
  Lines Devices() {
    Lines all;
    for (long index = 1; index <= Count(); ++index) {
      const ComPtr<_CInstrument> item = Item(index);
      all.push_back(Read(item, &_CInstrument::get_IPAddress) + L"/" + Read(item, &_CInstrument::get_Model) +
                    L"/" + Read(item, &_CInstrument::get_Serial));
    }
    return all;
  }
  // Sorted, where the order of the answers is nobody's.
  Lines SortedDevices() {
    Lines all = Devices();
    std::sort(all.begin(), all.end());
    return all;
  }

  void ExpectRestored() {
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_TimeOutmSecs), 5000);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_IPType), ipDynamic);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_Protocol), sckUDPProtocol);
    EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckClosed);
    EXPECT_EQ(result_.str(), L"");
  }

  void StartLog() {
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_LogFilename, log_.path()), S_OK);
    EXPECT_EQ(Write(tcp_, &_CKespTCP::put_CreateLogFile, VARIANT_TRUE), S_OK);
  }
  // The lines of the log that begin so.
  Lines LogLines(const std::wstring& beginning) const {
    Lines lines = log_.Messages();
    std::erase_if(lines, [&](const std::wstring& line) { return !line.starts_with(beginning); });
    return lines;
  }

  Apartment apartment_;
  ComPtr<_CKespTCP> tcp_ = Create<_CKespTCP>(__uuidof(CKespTCP));
  ComPtr<_CInstruments> devices_ = ReadObject(tcp_, &_CKespTCP::get_Devices);
  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespTCP));
  Connection connection_{tcp_.Get(), __uuidof(__CKespTCP), recorder_.Get()};
  TemporaryFile log_;
  Text result_{L"before"};
  DWORD elapsed_ = 0;
};

}  // namespace kesp::clients
