// Every property of every public class, by its name: what a new object has, that a property keeps what is put
// and disturbs no other, and what is refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/clients/early_bound.h"
#include "tests/clients/late_object.h"
#include "tests/clients/library_module.h"
#include "tests/clients/public_classes.h"

namespace kesp::clients {
namespace {

// Values as texts, True as -1.
struct Property {
  const wchar_t* name;
  const wchar_t* initial;
  const wchar_t* other = nullptr;  // null for one that is not put here
};

// In an order in which they can be put.
const std::map<std::wstring, std::vector<Property>> kProperties = {
    {L"CKespCommObj",
     {{L"AutoClose", L"-1", L"0"},
      {L"BinaryTimeoutms", L"100", L"-5"},
      {L"CRBeforeCommand", L"0", L"-1"},
      {L"DebugFilename", L"{library}\\commobjout.log", L"C:\\t race.txt"},
      {L"Debugging", L"0", L"-1"},
      {L"CommError", L"0"},
      {L"CommErrorSource", L""},
      {L"CommErrorDescr", L""},
      {L"CommStyle", L"0", L"2"}}},
    {L"CKespCOMPort3",
     {{L"CheckNonAscii", L"-1", L"0"},      {L"TerminateOnLF", L"-1", L"0"},
      {L"CreateLogFile", L"0", L"-1"},      {L"LogFilename", L"CKespCOMPort3.log", L"a.log"},
      {L"UseSmartSwitch", L"0", L"-1"},     {L"UseIRDongle", L"0", L"-1"},
      {L"UseRFModem", L"0", L"-1"},         {L"UseRedirector", L"0", L"-1"},
      {L"StripCRLF", L"-1", L"0"},          {L"InstrAddr", L"0", L"26"},
      {L"RFModemPropHCID", L"0", L"70001"}, {L"DataBits", L"4", L"77"},
      {L"StopBits", L"0", L"-3"},           {L"Parity", L"0", L"3"},
      {L"ControllerStyle", L"0"},           {L"Port", L"1", L"256"},
      {L"MaxBaudRate", L"-1", L"8"},        {L"MinBaudRate", L"-1", L"1"},
      {L"BaudRate", L"-1", L"6"},           {L"TimeOut", L"3000", L"70000"}}},
    {L"CKespTCP",
     {{L"CheckNonAscii", L"-1", L"0"},
      {L"TerminateOnEOS", L"-1", L"0"},
      {L"StripCRLF", L"-1", L"0"},
      {L"TimeOutmSecs", L"3000", L"-1"},
      {L"EOSChar", L"\r", L""},
      {L"State", L"0"},
      {L"Port", L"0", L"32767"},
      {L"IPAddress", L"0.0.0.0", L"any text"},
      {L"CreateLogFile", L"0", L"-1"},
      {L"LogFilename", L"CKespTCP.log", L"a.log"},
      {L"Protocol", L"0", L"7"},
      {L"IPType", L"0", L"1"}}},
    {L"CKespIEEE",
     {{L"ClearDevice", L"-1", L"0"},
      {L"SetEOS", L"-1", L"0"},
      {L"TimeOutSecs", L"12", L"5"},
      {L"PrimaryAddress", L"1", L"30"},
      {L"SecondaryAddress", L"0", L"29"},
      {L"BoardIndex", L"0"},
      {L"EOSChar", L"", L"10"},
      {L"CreateLogFile", L"0", L"-1"},
      {L"LogFilename", L"CKespIEEE.log", L"a.log"}}},
    {L"CInstrument",
     {{L"Model", L"", L"7100"},
      {L"Serial", L"", L"SIM1"},
      {L"IPAddress", L"", L"10.0.0.7"},
      {L"IPType", L"0", L"1"},
      {L"MACAddress", L"", L"00-11"}}},
    {L"CInstruments", {{L"Count", L"0"}}},
    {L"CKespSmartSwitch3",
     {{L"SSPort", L"", L"B"}, {L"Style", L"2"}, {L"CurrentPort", L""}, {L"NumPorts", L"6"}}}};

std::wstring ValueOf(const LateObject& object, const std::wstring& property) {
  Value value = object.Get(property).value;
  EXPECT_EQ(VariantChangeType(value.get(), value.get(), 0, VT_BSTR), S_OK)
      << testing::PrintToString(property);
  return value.text();
}

class PropertiesTest : public testing::TestWithParam<PublicClass> {
 protected:
  using Values = std::map<std::wstring, std::wstring>;

  PropertiesTest() {
    ComPtr<IDispatch> dispatch;
    MakeObject(GetParam()).As(&dispatch);
    object_ = LateObject(dispatch);
  }

  Values All() const {
    Values all;
    for (const Property& one : properties_) all[one.name] = ValueOf(object_, one.name);
    return all;
  }

  Apartment apartment_;
  LateObject object_{nullptr};
  const std::vector<Property>& properties_ = kProperties.at(GetParam().name);
};

TEST_P(PropertiesTest, New_HasItsDefaults) {
  const std::wstring dll = RegisteredPath();
  for (const Property& one : properties_) {
    std::wstring initial = one.initial;
    if (initial.starts_with(L"{library}")) initial.replace(0, 9, dll.substr(0, dll.find_last_of(L'\\')));
    EXPECT_EQ(ValueOf(object_, one.name), initial) << testing::PrintToString(std::wstring(one.name));
  }
}

TEST_P(PropertiesTest, Put_IsKeptAndChangesNoOther) {
  Values expected = All();
  for (const Property& one : properties_) {
    if (one.other == nullptr) continue;
    const Value other(one.other);
    EXPECT_EQ(object_.Put(one.name, Plain(other)).result, S_OK)
        << testing::PrintToString(std::wstring(one.name));
    expected[one.name] = one.other;
    EXPECT_EQ(All(), expected);
  }
}

INSTANTIATE_TEST_SUITE_P(All, PropertiesTest, testing::ValuesIn(kPublicClasses),
                         [](const auto& info) { return NarrowName(info.param); });

struct RefusedValue {
  const CLSID& clsid;
  const wchar_t* property;
  const wchar_t* value;
  HRESULT number;
  const wchar_t* source;
  const wchar_t* description;
};

const RefusedValue kRefusedValues[] = {
    {__uuidof(CKespCommObj), L"CommStyle", L"3", ERR_COMM_STYLE_NOT_SUPPORTED, L"[CKespCommObj - CommStyle]",
     L"The selected communication style is currently not supported"},
    {__uuidof(CKespCOMPort3), L"Port", L"257", COMPORT3_ERR_INVALID_COM_PORT, L"CKespCOMPort3 - Port",
     L"Invalid COM port."},
    {__uuidof(CKespCOMPort3), L"TimeOut", L"-1", ERR_INVALID_TIMEOUT, L"[CKespCOMPort3 - TimeOut]",
     L"Invalid timeout setting."},
    {__uuidof(CKespCOMPort3), L"BaudRate", L"6", ERR_BAUD_RATE_NOT_SUPPORTED, L"CKespCOMPort3 - BaudRate",
     L"Baud rate not supported."},
    {__uuidof(CKespCOMPort3), L"MinBaudRate", L"14", ERR_BAUD_RATE_NOT_SUPPORTED,
     L"CKespCOMPort3 - MaxBaudRate", L"Baud rate not supported."},
    {__uuidof(CKespCOMPort3), L"MaxBaudRate", L"-2", ERR_BAUD_RATE_NOT_SUPPORTED,
     L"CKespCOMPort3 - MaxBaudRate", L"Baud rate not supported."},
    {__uuidof(CKespTCP), L"Port", L"0", ERR_INVALID_PORT, L"[CKespTCP - Port]", L"Invalid Port"},
    {__uuidof(CKespTCP), L"IPAddress", L"", ERR_INVALID_IP_ADDRESS, L"[CKespTCP - IPAddress]",
     L"Invalid IP Address"},
    {__uuidof(CKespIEEE), L"PrimaryAddress", L"31", ERR_INVALID_PRIMARY_ADDRESS,
     L"[CKespIEEE - PrimaryAddress]", L"Invalid primary address."},
    {__uuidof(CKespIEEE), L"SecondaryAddress", L"31", ERR_INVALID_SECONDARY_ADDRESS,
     L"[CKespIEEE - SecondaryAddress]", L"Invalid secondary address."},
    {__uuidof(CKespIEEE), L"BoardIndex", L"1", ERR_INVALID_BOARD_INDEX, L"[CKespIEEE - BoardIndex]",
     L"Invalid board index."},
};

class RefusalsTest : public testing::Test {
 protected:
  Apartment apartment_;
};

TEST_F(RefusalsTest, PutOutsideTheRange_TravelsInExcepInfoAndChangesNothing) {
  for (const RefusedValue& refused : kRefusedValues) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(refused.source)));
    const LateObject object(Create<IDispatch>(refused.clsid));
    const std::wstring before = ValueOf(object, refused.property);
    const Value value(refused.value);
    const Outcome outcome = object.Put(refused.property, Plain(value));
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ((Refusal{outcome.scode, outcome.source, outcome.description}),
              (Refusal{refused.number, refused.source, refused.description}));
    EXPECT_EQ(ValueOf(object, refused.property), before);
  }
}

TEST_F(RefusalsTest, PutThroughTheVtable_LeavesErrorInformationAndTakesNoTextForAnEmptyOne) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  EXPECT_EQ(RefusalOf(tcp->put_IPAddress(nullptr)),
            (Refusal{ERR_INVALID_IP_ADDRESS, L"[CKespTCP - IPAddress]", L"Invalid IP Address"}));
}

TEST_F(RefusalsTest, NullOutPointers_AreRefusedWithoutErrorInformation) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  const auto instruments = Create<_CInstruments>(__uuidof(CInstruments));
  VARIANT_BOOL yes = VARIANT_TRUE;
  Text text(L"kept");
  const Text cmd(L"t");
  const Value index(1);
  const std::function<HRESULT()> calls[] = {
      [&] { return comm->get_CommStyle(nullptr); },
      [&] { return comm->put_CommStyle(nullptr); },
      [&] { return comm->GetKey(nullptr); },
      [&] { return comm->get_CommObject(nullptr); },
      [&] { return comm->Query(nullptr, cmd.get(), nullptr, nullptr, &yes); },
      [&] { return comm->Query(text.in_out(), cmd.get(), nullptr, nullptr, nullptr); },
      [&] { return comm->QueryBinary(nullptr, cmd.get(), nullptr, nullptr, &yes); },
      [&] { return comm->Update(cmd.get(), nullptr, nullptr, nullptr); },
      [&] { return comm->Edit(EEditCommFlags{}, nullptr, 0, nullptr); },
      [&] { return tcp->get_EOSChar(nullptr); },
      [&] { return tcp->get_Devices(nullptr); },
      [&] { return tcp->Initialize(nullptr); },
      [&] { return tcp->ReadLine(nullptr, &yes); },
      [&] { return tcp->ReadLineBinary(nullptr, 100, &yes); },
      [&] { return tcp->Edit(EEditCommFlags{}, nullptr, 0, nullptr); },
      [&] { return port->get_SmartSwitch(nullptr); },
      [&] { return port->put_Parity(nullptr); },
      [&] { return port->BaudRateName(br9600, nullptr); },
      [&] { return port->Edit(EEditCommFlags{}, nullptr, 0, nullptr); },
      [&] { return instruments->Item(*index.get(), nullptr); },
      [&] { return instruments->get_NewEnum(nullptr); },
  };
  int number = 0;
  for (const auto& call : calls) {
    SetErrorInfo(0, nullptr);
    // An earlier refusal's error information must not be taken for this one's.
    tcp->put_Port(0);
    EXPECT_EQ(RefusalOf(call()), (Refusal{E_POINTER, L"", L""})) << number;
    ++number;
  }
  EXPECT_EQ(text.str(), L"kept");
}

// Clients write 1 as well as -1 for true.
TEST_F(RefusalsTest, Booleans_AnyNumberButZeroIsTrue) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  for (const VARIANT_BOOL value : {VARIANT_BOOL{1}, VARIANT_BOOL{-1}, VARIANT_BOOL{256}}) {
    EXPECT_EQ(comm->put_CRBeforeCommand(VARIANT_FALSE), S_OK);
    EXPECT_EQ(comm->put_CRBeforeCommand(value), S_OK);
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CRBeforeCommand), VARIANT_TRUE) << value;
  }
}

TEST_F(RefusalsTest, Keys_HaveTheirFormDifferAndStay) {
  std::vector<std::wstring> keys;
  for (const wchar_t* name :
       {L"CKespCommObj", L"CKespCommObj", L"CKespCOMPort3", L"CKespTCP", L"CKespIEEE"}) {
    CLSID clsid = GUID_NULL;
    EXPECT_EQ(CLSIDFromProgID((std::wstring(L"KespCommObj.") + name).c_str(), &clsid), S_OK);
    const LateObject object(Create<IDispatch>(clsid));
    keys.push_back(object.Call(L"GetKey").value.text());
    EXPECT_EQ(object.Call(L"GetKey").value.text(), keys.back());
    EXPECT_EQ(keys.back().size(), 11U);
    EXPECT_EQ(keys.back().find_first_not_of(L"0123456789ABCDEF"), 10U) << testing::PrintToString(keys.back());
    EXPECT_EQ(keys.back().back(), L'K');
  }
  std::sort(keys.begin(), keys.end());
  EXPECT_EQ(std::unique(keys.begin(), keys.end()), keys.end());
}

}  // namespace
}  // namespace kesp::clients
