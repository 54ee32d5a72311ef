// A record that counts how often it is asked for its address.
#pragma once

#include <string>

#include "network/instrument.h"

namespace kesp {

class CountingInstrument final : public Instrument {
 public:
  explicit CountingInstrument(int& asked);
  ~CountingInstrument() override;

  std::wstring Model() const override { return {}; }
  void SetModel(const std::wstring& /*value*/) override {}
  std::wstring Serial() const override { return {}; }
  void SetSerial(const std::wstring& /*value*/) override {}
  std::wstring IPAddress() const override;
  void SetIPAddress(const std::wstring& value) override { address_ = value; }
  EIPType IPType() const override { return EIPType::ipStatic; }
  void SetIPType(EIPType /*value*/) override {}
  std::wstring MACAddress() const override { return {}; }
  void SetMACAddress(const std::wstring& /*value*/) override {}

 private:
  int& asked_;
  std::wstring address_;
};

}  // namespace kesp
