// A serial transport on the COM port whose other end is the test's, and a handler of its events.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/serial_wire.h"

namespace kesp::clients {

// Short enough for tests that wait for it, and long enough for a reply on a machine that is busy elsewhere.
inline constexpr long kSerialTimeOut = 1500;
// So long that a test which has to wait for it is ended first.
inline constexpr long kEndlessTimeOut = 600000;

// No test's port, and none of the machine.
inline constexpr short kMissingPort = 250;

// The number of the test's COM port, as the interfaces take it.
inline short SerialPortNumber() {
  return static_cast<short>(SerialWire::PortNumber());
}

// The same as text, for names of events and descriptions of errors.
inline std::wstring SerialPortText() {
  return std::to_wstring(SerialWire::PortNumber());
}

// Points the transport at the test's COM port: 9600 bit/s of all rates, and kSerialTimeOut.
inline void UseSerialLine(const ComPtr<_CKespCOMPort3>& port) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_Port, SerialPortNumber()), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MaxBaudRate, br921600), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MinBaudRate, br150), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_BaudRate, br9600), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_TimeOut, kSerialTimeOut), S_OK);
}

// The serial transport inside a communication object.
inline ComPtr<_CKespCOMPort3> SerialTransport(const ComPtr<_CKespCommObj>& comm) {
  EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, csRS232), S_OK);
  ComPtr<_CKespCOMPort3> port;
  EXPECT_EQ(ReadObject(comm, &_CKespCommObj::get_CommObject).As(&port), S_OK);
  return port;
}

class SerialFixture : public testing::Test {
 protected:
  using Milliseconds = SerialWire::Milliseconds;

  SerialFixture() { UseSerialLine(port_); }

  HRESULT OpenPort() { return port_->OpenPort(&answer_); }
  void MustOpen() { ASSERT_EQ(RefusalOf(OpenPort()), Refusal{}); }
  HRESULT WriteLine(const std::wstring& cmd, const std::wstring& address = {}, const std::wstring& value = {},
                    VARIANT_BOOL cr_before = VARIANT_FALSE) {
    return port_->WriteLine(Text(cmd).get(), Text(address).get(), Text(value).get(), cr_before, &answer_);
  }
  // The reply is in reply_.
  HRESULT ReadLine() { return port_->ReadLine(reply_.in_out(), &answer_); }
  HRESULT Download() { return port_->Download(reply_.in_out(), &answer_); }
  // The reply is in bytes_.
  HRESULT ReadLineBinary(long silence = 100) {
    return port_->ReadLineBinary(bytes_.get(), silence, &answer_);
  }
  bool Answer() const { return answer_ == VARIANT_TRUE; }

  bool IsAvailable() {
    VARIANT_BOOL available = VARIANT_FALSE;
    EXPECT_EQ(port_->IsPortAvailable(SerialPortNumber(), &available), S_OK);
    return available == VARIANT_TRUE;
  }
  void SetTimeOut(long milliseconds) {
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TimeOut, milliseconds), S_OK);
  }

  Apartment apartment_;
  SerialWire wire_;
  ComPtr<_CKespCOMPort3> port_ = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  Text reply_;
  Value bytes_;
  VARIANT_BOOL answer_ = VARIANT_FALSE;
};

// With a recorder connected.
class SerialEventsFixture : public SerialFixture {
 protected:
  const Lines& journal() const { return recorder_->journal; }
  // An event's entry in the journal whose last argument is the port.
  static std::wstring Entry(const std::wstring& name, const std::wstring& arguments = {}) {
    return name + L"(" + arguments + (arguments.empty() ? L"" : L",") + SerialPortText() + L")";
  }

  ComPtr<EventRecorder> recorder_ = EventRecorder::Make(__uuidof(__CKespCOMPort3));
  Connection connection_{port_.Get(), __uuidof(__CKespCOMPort3), recorder_.Get()};
};

}  // namespace kesp::clients
