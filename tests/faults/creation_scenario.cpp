// Each class made through its factory, and some of its members used.
#include <vector>

#include "tests/faults/client.h"
#include "tests/faults/scenarios.h"

namespace kesp::faults {

namespace {

class Creation : public Scenario {
 public:
  void Run(Verdict& verdict) override {
    comm_ = Make<_CKespCommObj>(__uuidof(CKespCommObj), verdict);
    port_ = Make<_CKespCOMPort3>(__uuidof(CKespCOMPort3), verdict);
    tcp_ = Make<_CKespTCP>(__uuidof(CKespTCP), verdict);
    ieee_ = Make<_CKespIEEE>(__uuidof(CKespIEEE), verdict);
    WorkAgain(verdict);
  }
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr || port_ == nullptr || tcp_ == nullptr || ieee_ == nullptr) return;
    Use(verdict);
  }

 private:
  void Use(Verdict& verdict) {
    Text key;
    verdict.Succeeded(comm_->GetKey(key.out()), "CKespCommObj.GetKey");
    verdict.Succeeded(port_->GetKey(key.out()), "CKespCOMPort3.GetKey");
    Text settings;
    if (verdict.Succeeded(port_->GetSettings(settings.out()), "GetSettings")) {
      verdict.Expect(settings.str() == L"<unknown>,N,8,1", "GetSettings gives " + Narrow(settings.str()));
    }
    verdict.Succeeded(tcp_->GetKey(key.out()), "CKespTCP.GetKey");
    ComPtr<_CInstruments> devices;
    if (!verdict.Succeeded(tcp_->get_Devices(devices.GetAddressOf()), "Devices")) return;
    long count = -1;
    if (verdict.Succeeded(devices->get_Count(&count), "Count")) verdict.Expect(count == 0, "Count is not 0");
    UseCollection(devices.Get(), verdict);
    // Something that is refused, so that error information is made.
    verdict.Expect(FAILED(port_->put_Port(-1)), "Port takes -1");
  }

  static void UseCollection(_CInstruments* devices, Verdict& verdict) {
    const ComPtr<_CInstrument> made = Make<_CInstrument>(__uuidof(CInstrument), verdict);
    if (made == nullptr || !verdict.Succeeded(made->put_Model(Text(L"model").get()), "Model")) return;
    if (!verdict.Succeeded(made->put_IPAddress(Text(L"10.0.0.1").get()), "IPAddress")) return;
    if (verdict.Succeeded(devices->AddReference(made.Get(), Text(L"key").get()), "AddReference")) {
      Read(devices, made.Get(), verdict);
    }
    verdict.Succeeded(devices->Clear(), "Clear");
  }

  static void Read(_CInstruments* devices, _CInstrument* expected, Verdict& verdict) {
    ComPtr<_CInstrument> found;
    if (verdict.Succeeded(devices->Item(*Value(L"key").get(), found.GetAddressOf()), "Item")) {
      verdict.Expect(found.Get() == expected, "Item gives another object");
    }
    ComPtr<IUnknown> enumerator;
    ComPtr<IEnumVARIANT> variants;
    if (!verdict.Succeeded(devices->get_NewEnum(enumerator.GetAddressOf()), "NewEnum")) return;
    if (!verdict.SucceededBarely(enumerator.As(&variants), "IEnumVARIANT")) return;
    Value item;
    ULONG fetched = 0;
    if (verdict.SucceededBarely(variants->Next(1, item.get(), &fetched), "Next")) {
      verdict.Expect(fetched == 1 && item.type() == VT_DISPATCH, "Next gives no object");
    }
  }

  ComPtr<_CKespCommObj> comm_;
  ComPtr<_CKespCOMPort3> port_;
  ComPtr<_CKespTCP> tcp_;
  ComPtr<_CKespIEEE> ieee_;
};

}  // namespace

std::unique_ptr<Scenario> MakeCreation() {
  return std::make_unique<Creation>();
}

}  // namespace kesp::faults
