// Late binding: names, identifiers, counts of arguments, defaults, and what a mistake gets.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>

#include "KespCommObj.h"
#include "tests/clients/instrument_address.h"
#include "tests/clients/late_object.h"
#include "tests/clients/public_classes.h"

namespace kesp::clients {
namespace {

using Words = std::initializer_list<WORD>;

class LateBoundTest : public testing::Test {
 protected:
  // The network transport of comm_, pointed at the instrument.
  LateObject UseTheInstrument() const {
    comm_.Put(L"CommStyle", Plain(Value(csTCPIP)));
    const LateObject transport(V_DISPATCH(comm_.Get(L"CommObject").value.get()));
    const Value host(InstrumentHost().c_str());
    EXPECT_EQ(transport.Put(L"IPAddress", Plain(host)).result, S_OK);
    EXPECT_EQ(transport.Put(L"Port", Plain(Value(InstrumentPort()))).result, S_OK);
    return transport;
  }

  Apartment apartment_;
  LateObject comm_{Create<IDispatch>(__uuidof(CKespCommObj))};
  LateObject tcp_{Create<IDispatch>(__uuidof(CKespTCP))};
  LateObject port_{Create<IDispatch>(__uuidof(CKespCOMPort3))};
};

TEST_F(LateBoundTest, Names_GiveTheDeclaredIdentifiersWithoutRegardToCase) {
  for (const PublicClass& one : kPublicClasses) {
    ComPtr<IDispatch> dispatch;
    MakeObject(one).As(&dispatch);
    const LateObject object(dispatch);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), S_OK);
    FUNCDESC* function = nullptr;
    for (UINT i = 0; info->GetFuncDesc(i, &function) == S_OK; ++i) {
      const DISPID id = function->memid;
      info->ReleaseFuncDesc(function);
      // IUnknown's and IDispatch's own.
      if (id >= 0x60000000) continue;
      Text declared;
      info->GetDocumentation(id, declared.out(), nullptr, nullptr, nullptr);
      std::wstring name = declared.str();
      EXPECT_EQ(object.IdOf(name), id) << testing::PrintToString(name);
      for (wchar_t& letter : name) letter = static_cast<wchar_t>(towupper(letter));
      EXPECT_EQ(object.IdOf(name), id) << testing::PrintToString(name);
    }
  }
}

TEST_F(LateBoundTest, NamesOfArguments_ArePositions) {
  std::vector<DISPID> ids;
  EXPECT_EQ(comm_.IdsOf({L"Query", L"result", L"cmd", L"OmegaAddress", L"OmegaValue"}, ids), S_OK);
  EXPECT_EQ(ids, (std::vector<DISPID>{12, 0, 1, 2, 3}));
}

TEST_F(LateBoundTest, UnknownName_IsUnknown) {
  std::vector<DISPID> ids;
  EXPECT_EQ(comm_.IdsOf({L"NoSuchMember"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids, std::vector<DISPID>{DISPID_UNKNOWN});
  EXPECT_EQ(comm_.IdsOf({L"Query", L"NoSuchArgument"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[1], DISPID_UNKNOWN);
}

TEST_F(LateBoundTest, UnknownIdentifierOrUse_IsNotFound) {
  EXPECT_EQ(comm_.Invoke(999, DISPATCH_METHOD, {}).result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(comm_.Invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {}).result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(comm_.Put(L"CommError", Plain(Value(1))).result, DISP_E_MEMBERNOTFOUND) << "read only";
}

TEST_F(LateBoundTest, WrongInterfaceIdentifier_IsRefused) {
  DISPPARAMS none{};
  Value result;
  EXPECT_EQ(
      comm_.get()->Invoke(1, IID_IDispatch, 0, DISPATCH_PROPERTYGET, &none, result.get(), nullptr, nullptr),
      DISP_E_UNKNOWNINTERFACE);
  LPOLESTR name = const_cast<LPOLESTR>(L"AutoClose");
  DISPID id = 0;
  EXPECT_EQ(comm_.get()->GetIDsOfNames(IID_IDispatch, &name, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
}

TEST_F(LateBoundTest, NullPointers_AreRefused) {
  Value result;
  EXPECT_EQ(
      comm_.get()->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, result.get(), nullptr, nullptr),
      E_POINTER);
  LPOLESTR name = const_cast<LPOLESTR>(L"AutoClose");
  EXPECT_EQ(comm_.get()->GetIDsOfNames(IID_NULL, &name, 1, 0, nullptr), E_POINTER);
}

TEST_F(LateBoundTest, ResultNotWanted_CallSucceeds) {
  DISPPARAMS none{};
  EXPECT_EQ(comm_.get()->Invoke(comm_.IdOf(L"GetKey"), IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr,
                                nullptr),
            S_OK);
}

// Languages differ in what they ask for: Pascal and .NET for a property where they see brackets.
TEST_F(LateBoundTest, MethodOrPropertyRead_WhicheverIsAskedFor) {
  const LateObject devices(V_DISPATCH(tcp_.Get(L"Devices").value.get()));
  Value instrument;
  V_VT(instrument.get()) = VT_DISPATCH;
  Create<IDispatch>(__uuidof(CInstrument)).CopyTo(&V_DISPATCH(instrument.get()));
  const VARIANT first = Plain(Value(1));
  for (const WORD flags :
       Words{DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_METHOD | DISPATCH_PROPERTYGET}) {
    devices.Call(L"Clear");
    EXPECT_EQ(devices.Invoke(devices.IdOf(L"AddReference"), flags, {Plain(instrument)}).result, S_OK)
        << flags;
    EXPECT_EQ(V_I4(devices.Invoke(devices.IdOf(L"Count"), flags, {}).value.get()), 1) << flags;
    EXPECT_EQ(comm_.Invoke(comm_.IdOf(L"GetKey"), flags, {}).value.text().size(), 11U) << flags;
    EXPECT_EQ(comm_.Invoke(comm_.IdOf(L"BinaryTimeoutms"), flags, {}).result, S_OK) << flags;
    // The item by its name, as the default member, and through the property that holds the collection.
    for (const Outcome& item :
         {devices.Invoke(devices.IdOf(L"Item"), flags, {first}), devices.Invoke(DISPID_VALUE, flags, {first}),
          tcp_.Invoke(tcp_.IdOf(L"Devices"), flags, {first})}) {
      EXPECT_EQ(item.result, S_OK) << flags;
      ASSERT_EQ(item.value.type(), VT_DISPATCH) << flags;
      EXPECT_TRUE(IsSameObject(V_DISPATCH(item.value.get()), V_DISPATCH(instrument.get()))) << flags;
    }
  }
}

TEST_F(LateBoundTest, EnumeratorsName_WithAnUnderscore) {
  const LateObject devices(V_DISPATCH(tcp_.Get(L"Devices").value.get()));
  EXPECT_EQ(devices.IdOf(L"NewEnum"), DISPID_NEWENUM);
  EXPECT_EQ(devices.IdOf(L"_NewEnum"), DISPID_NEWENUM);
  EXPECT_EQ(devices.IdOf(L"_newenum"), DISPID_NEWENUM);
  std::vector<DISPID> ids;
  EXPECT_EQ(devices.IdsOf({L"_NewEnum", L"NoSuchArgument"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids, (std::vector<DISPID>{DISPID_NEWENUM, DISPID_UNKNOWN}));
  EXPECT_EQ(tcp_.IdsOf({L"_NewEnum"}, ids), DISP_E_UNKNOWNNAME) << "no collection";
}

TEST_F(LateBoundTest, TooManyArguments_AreRefused) {
  Value text(L"x");
  EXPECT_EQ(comm_.Call(L"GetKey", {Plain(text)}).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(comm_.Call(L"Update", {Plain(text), Plain(text), Plain(text), Plain(text)}).result,
            DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(comm_.Invoke(comm_.IdOf(L"AutoClose"), DISPATCH_PROPERTYGET, {Plain(text)}).result,
            DISP_E_BADPARAMCOUNT);
}

TEST_F(LateBoundTest, MissingArguments_AreRefused) {
  const auto is_missing = [](HRESULT result) {
    return result == DISP_E_PARAMNOTOPTIONAL || result == DISP_E_BADPARAMCOUNT;
  };
  Value result;
  EXPECT_TRUE(is_missing(comm_.Call(L"Query").result));
  EXPECT_TRUE(is_missing(comm_.Call(L"Query", {Variable(result)}).result));
  EXPECT_TRUE(is_missing(comm_.Call(L"Update").result));
  Value left_out;
  V_VT(left_out.get()) = VT_ERROR;
  V_ERROR(left_out.get()) = DISP_E_PARAMNOTFOUND;
  // Windows says that the argument is not optional, Wine that it has the wrong type.
  const HRESULT result_of_gap = comm_.Call(L"Update", {Plain(left_out)}).result;
  EXPECT_TRUE(result_of_gap == DISP_E_PARAMNOTOPTIONAL || result_of_gap == DISP_E_TYPEMISMATCH);
}

TEST_F(LateBoundTest, PropertyPutWithoutValue_IsRefused) {
  EXPECT_NE(comm_.Invoke(comm_.IdOf(L"AutoClose"), DISPATCH_PROPERTYPUT, {}).result, S_OK);
}

// Enumerations take any number, and text that is one; by value and by reference alike.
TEST_F(LateBoundTest, EnumerationPut_TakesNumbersOfAllTypes) {
  for (const wchar_t* name : {L"DataBits", L"StopBits", L"Parity", L"ControllerStyle"}) {
    Value small;
    V_VT(small.get()) = VT_I2;
    V_I2(small.get()) = 1;
    Value real;
    V_VT(real.get()) = VT_R8;
    V_R8(real.get()) = 2.0;
    long number = 3;
    VARIANT reference;
    V_VT(&reference) = VT_BYREF | VT_I4;
    V_I4REF(&reference) = &number;
    const std::pair<VARIANT, long> values[] = {
        {Plain(small), 1}, {Plain(real), 2}, {reference, 3}, {Plain(Value(0)), 0}};
    for (const auto& [value, expected] : values) {
      EXPECT_EQ(port_.Put(name, value).result, S_OK)
          << testing::PrintToString(std::wstring(name)) << expected;
      EXPECT_EQ(V_I4(port_.Get(name).value.get()), expected) << testing::PrintToString(std::wstring(name));
    }
    const Value text(L"2");
    EXPECT_EQ(port_.Put(name, Plain(text)).result, S_OK) << testing::PrintToString(std::wstring(name));
    EXPECT_EQ(V_I4(port_.Get(name).value.get()), 2);
  }
}

Value OfType(VARTYPE type) {
  Value value;
  V_VT(value.get()) = type;
  return value;
}

Value Real(double number) {
  Value value = OfType(VT_R8);
  V_R8(value.get()) = number;
  return value;
}

// A property that takes its value by reference only reads the variable.
TEST_F(LateBoundTest, PutByReference_VariableStaysAsItIs) {
  struct Case {
    Value value;
    HRESULT result;
    long stored;
  };
  const Case cases[] = {
      {Value(1), S_OK, 1},
      {Real(2), S_OK, 2},
      {Value(L"1"), S_OK, 1},
      {Value(), S_OK, 0},
      {Real(1e12), DISP_E_OVERFLOW, 0},
      {Value(L"99999999999"), DISP_E_OVERFLOW, 0},
      {Value(L"fast"), DISP_E_TYPEMISMATCH, 0},
      {OfType(VT_NULL), DISP_E_TYPEMISMATCH, 0},
      {OfType(VT_DISPATCH), DISP_E_TYPEMISMATCH, 0},
      {OfType(VT_ARRAY | VT_UI1), DISP_E_TYPEMISMATCH, 0},
  };
  const std::pair<const LateObject*, const wchar_t*> properties[] = {
      {&comm_, L"CommStyle"}, {&port_, L"DataBits"}, {&port_, L"StopBits"}, {&port_, L"Parity"}};
  for (const Case& one : cases) {
    for (const auto& [object, name] : properties) {
      SCOPED_TRACE(testing::PrintToString(std::wstring(name)) + ", type " + std::to_string(one.value.type()));
      Value variable = one.value;
      const VARIANT before = Plain(variable);
      for (const VARIANT& value : {Variable(variable), Plain(variable)}) {
        EXPECT_EQ(object->Put(name, Plain(Value(0))).result, S_OK);
        const Outcome outcome = object->Put(name, value);
        EXPECT_EQ(outcome.result, one.result);
        EXPECT_EQ(outcome.bad_argument, FAILED(one.result) ? 0U : 999U);
        EXPECT_EQ(V_I4(object->Get(name).value.get()), one.stored);
        EXPECT_EQ(std::memcmp(&before, variable.get(), sizeof before), 0);
      }
    }
  }
}

TEST_F(LateBoundTest, TextThatIsNoNumber_IsATypeMismatch) {
  const Value text(L"fast");
  EXPECT_EQ(port_.Put(L"ControllerStyle", Plain(text)).result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(port_.Put(L"Port", Plain(text)).result, DISP_E_TYPEMISMATCH);
}

TEST_F(LateBoundTest, NumberTooLarge_IsAnOverflow) {
  EXPECT_EQ(tcp_.Put(L"Port", Plain(Value(70000))).result, DISP_E_OVERFLOW);
}

TEST_F(LateBoundTest, Boolean_OneCountsAsTrue) {
  Value one;
  V_VT(one.get()) = VT_BOOL;
  V_BOOL(one.get()) = 1;
  EXPECT_EQ(comm_.Put(L"CRBeforeCommand", Plain(one)).result, S_OK);
  EXPECT_EQ(V_BOOL(comm_.Get(L"CRBeforeCommand").value.get()), VARIANT_TRUE);
}

TEST_F(LateBoundTest, Refusal_TravelsInExcepInfo) {
  const Outcome outcome = tcp_.Put(L"Port", Plain(Value(0)));
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ERR_INVALID_PORT);
  EXPECT_EQ(outcome.source, L"[CKespTCP - Port]");
  EXPECT_EQ(outcome.description, L"Invalid Port");
}

TEST_F(LateBoundTest, RefusalWithoutExcepInfo_IsARefusalAllTheSame) {
  Value zero(0);
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{.rgvarg = zero.get(), .rgdispidNamedArgs = &put, .cArgs = 1, .cNamedArgs = 1};
  const HRESULT result = tcp_.get()->Invoke(tcp_.IdOf(L"Port"), IID_NULL, 0, DISPATCH_PROPERTYPUT,
                                            &parameters, nullptr, nullptr, nullptr);
  EXPECT_TRUE(result == DISP_E_EXCEPTION || result == ERR_INVALID_PORT) << std::hex << result;
}

// Numbers of the run-time library travel as those of a control, so that a script reads 9.
TEST_F(LateBoundTest, BareNumber_HasTheFacilityOfAControl) {
  const LateObject instruments(Create<IDispatch>(__uuidof(CInstruments)));
  const Outcome outcome = instruments.Call(L"Item", {Plain(Value(1))});
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(static_cast<unsigned long>(outcome.scode), 0x800A0009ul);
  EXPECT_EQ(outcome.description, L"Subscript out of range");
}

TEST_F(LateBoundTest, OptionalArguments_HaveTheirDefaults) {
  const LateObject transport = UseTheInstrument();
  Value result;
  const Value cmd(L"ECHO 1");
  EXPECT_TRUE(comm_.Call(L"Query", {Variable(result), Plain(cmd)}).IsTrue());
  EXPECT_EQ(result.text(), L"ECHO 1");
  Value left_out;
  V_VT(left_out.get()) = VT_ERROR;
  V_ERROR(left_out.get()) = DISP_E_PARAMNOTFOUND;
  EXPECT_TRUE(comm_.Call(L"Query", {Variable(result), Plain(cmd), Plain(left_out), Plain(cmd)}).IsTrue());
  // WriteLine's command and ReadLineBinary's gap are optional, too.
  EXPECT_TRUE(transport.Call(L"Initialize").IsTrue());
  EXPECT_TRUE(transport.Call(L"WriteLine").IsTrue());
  EXPECT_TRUE(transport.Call(L"WriteLine", {Plain(cmd)}).IsTrue());
  EXPECT_TRUE(transport.Call(L"ReadLineBinary", {Variable(result)}).IsTrue());
  EXPECT_EQ(BytesOf(*result.get()), "ECHO 1\r");
}

TEST_F(LateBoundTest, NamedArguments_InAnyOrder) {
  UseTheInstrument();
  Value result;
  const Value cmd(L"ECHO 2");
  EXPECT_TRUE(comm_.Call(L"Query", {}, {{L"cmd", Plain(cmd)}, {L"result", Variable(result)}}).IsTrue());
  EXPECT_EQ(result.text(), L"ECHO 2");
  Value other;
  EXPECT_TRUE(
      comm_.Call(L"Query", {Variable(other)}, {{L"OmegaValue", Plain(cmd)}, {L"cmd", Plain(cmd)}}).IsTrue());
  EXPECT_EQ(other.text(), L"ECHO 2");
}

}  // namespace
}  // namespace kesp::clients
