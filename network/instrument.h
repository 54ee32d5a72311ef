// One instrument found on the network, and the plain record of it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "support/enumerations.h"

namespace kesp {

// The five properties of an instrument. Abstract, so that a collection may hold records that live elsewhere
// (the COM border's own objects, or a client's).
class Instrument {
 public:
  virtual ~Instrument() = default;

  virtual std::wstring Model() const = 0;
  virtual void SetModel(const std::wstring& value) = 0;
  virtual std::wstring Serial() const = 0;
  virtual void SetSerial(const std::wstring& value) = 0;
  virtual std::wstring IPAddress() const = 0;
  virtual void SetIPAddress(const std::wstring& value) = 0;
  virtual EIPType IPType() const = 0;
  virtual void SetIPType(EIPType value) = 0;
  virtual std::wstring MACAddress() const = 0;
  virtual void SetMACAddress(const std::wstring& value) = 0;
};

// Makes a new record, with the defaults of CInstrument. The maker decides where it lives.
using InstrumentFactory = std::function<std::shared_ptr<Instrument>()>;

// The record itself: texts empty and ipStatic at first.
class CInstrument final : public Instrument {
 public:
  std::wstring Model() const override { return model_; }
  void SetModel(const std::wstring& value) override { model_ = value; }
  std::wstring Serial() const override { return serial_; }
  void SetSerial(const std::wstring& value) override { serial_ = value; }
  std::wstring IPAddress() const override { return ip_address_; }
  void SetIPAddress(const std::wstring& value) override { ip_address_ = value; }
  EIPType IPType() const override { return ip_type_; }
  void SetIPType(EIPType value) override { ip_type_ = value; }
  std::wstring MACAddress() const override { return mac_address_; }
  void SetMACAddress(const std::wstring& value) override { mac_address_ = value; }

 private:
  std::wstring model_;
  std::wstring serial_;
  std::wstring ip_address_;
  EIPType ip_type_ = EIPType::ipStatic;
  std::wstring mac_address_;
};

// The factory of plain records.
inline std::shared_ptr<Instrument> MakeInstrument() {
  return std::make_shared<CInstrument>();
}

}  // namespace kesp
