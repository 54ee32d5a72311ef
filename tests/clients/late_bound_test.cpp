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

TEST_F(LateBoundTest, UnknownNameIdentifierOrUse_IsRefused) {
  std::vector<DISPID> ids;
  EXPECT_EQ(comm_.IdsOf({L"NoSuchMember"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids, std::vector<DISPID>{DISPID_UNKNOWN});
  EXPECT_EQ(comm_.IdsOf({L"Query", L"NoSuchArgument"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[1], DISPID_UNKNOWN);
  EXPECT_EQ(comm_.Invoke(999, DISPATCH_METHOD, {}).result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(comm_.Invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {}).result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(comm_.Put(L"CommError", Plain(Value(1))).result, DISP_E_MEMBERNOTFOUND) << "read only";
}

TEST_F(LateBoundTest, WrongInterfaceIdentifierOrNullPointer_IsRefused) {
  const auto invoke = [this](REFIID iid, DISPPARAMS* arguments, VARIANT* result) {
    return comm_.get()->Invoke(comm_.IdOf(L"GetKey"), iid, 0, DISPATCH_METHOD, arguments, result, nullptr,
                               nullptr);
  };
  DISPPARAMS none{};
  Value result;
  EXPECT_EQ(invoke(IID_IDispatch, &none, result.get()), DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(invoke(IID_NULL, nullptr, result.get()), E_POINTER);
  EXPECT_EQ(invoke(IID_NULL, &none, nullptr), S_OK) << "a result that is not wanted";
  LPOLESTR name = const_cast<LPOLESTR>(L"AutoClose");
  DISPID id = 0;
  EXPECT_EQ(comm_.get()->GetIDsOfNames(IID_IDispatch, &name, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(comm_.get()->GetIDsOfNames(IID_NULL, &name, 1, 0, nullptr), E_POINTER);
}

// Languages differ in what they ask for: Pascal and .NET for a property where they see brackets.
TEST_F(LateBoundTest, MethodOrPropertyRead_WhicheverIsAskedFor) {
  const Value key(L"KEY");
  const LateObject devices(V_DISPATCH(tcp_.Get(L"Devices").value.get()));
  Value instrument;
  V_VT(instrument.get()) = VT_DISPATCH;
  Create<IDispatch>(__uuidof(CInstrument)).CopyTo(&V_DISPATCH(instrument.get()));
  for (const WORD flags :
       Words{DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_METHOD | DISPATCH_PROPERTYGET}) {
    devices.Call(L"Clear");
    EXPECT_EQ(devices.Invoke(devices.IdOf(L"AddReference"), flags, {Plain(instrument), Plain(key)}).result,
              S_OK)
        << flags;
    EXPECT_EQ(V_I4(devices.Invoke(devices.IdOf(L"Count"), flags, {}).value.get()), 1) << flags;
    EXPECT_EQ(comm_.Invoke(comm_.IdOf(L"GetKey"), flags, {}).value.text().size(), 11U) << flags;
    EXPECT_EQ(comm_.Invoke(comm_.IdOf(L"BinaryTimeoutms"), flags, {}).result, S_OK) << flags;
    EXPECT_EQ(devices.Invoke(DISPID_NEWENUM, flags, {}).value.type(), VT_UNKNOWN) << flags;
    // The item by its name, as the default member, and through the property that holds the collection.
    for (const VARIANT& index : {Plain(Value(1)), Plain(key)}) {
      for (const Outcome& item : {devices.Invoke(devices.IdOf(L"Item"), flags, {index}),
                                  devices.Invoke(DISPID_VALUE, flags, {index}),
                                  tcp_.Invoke(tcp_.IdOf(L"Devices"), flags, {index})}) {
        EXPECT_EQ(item.result, S_OK) << flags;
        ASSERT_EQ(item.value.type(), VT_DISPATCH) << flags;
        EXPECT_TRUE(IsSameObject(V_DISPATCH(item.value.get()), V_DISPATCH(instrument.get()))) << flags;
      }
    }
  }
}

// Arguments of a property go to the default member of the object that it holds, where that has one.
TEST_F(LateBoundTest, ArgumentsOfAProperty_ThatNobodyTakes_AreRefused) {
  const auto read = [](const LateObject& object, const wchar_t* name) {
    return object.Invoke(object.IdOf(name), DISPATCH_PROPERTYGET, {Plain(Value(2))});
  };
  EXPECT_EQ(read(tcp_, L"Devices").scode, ControlError(9));
  EXPECT_EQ(read(tcp_, L"GetKey").result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(read(port_, L"SmartSwitch").result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(read(port_, L"Port").result, DISP_E_BADPARAMCOUNT);
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

TEST_F(LateBoundTest, TooManyOrMissingArguments_AreRefused) {
  const Value text(L"x");
  EXPECT_EQ(comm_.Call(L"GetKey", {Plain(text)}).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(comm_.Call(L"Update", {Plain(text), Plain(text), Plain(text), Plain(text)}).result,
            DISP_E_BADPARAMCOUNT);
  // What the automation library says of a missing argument differs between Windows and Wine.
  Value result;
  Value left_out;
  V_VT(left_out.get()) = VT_ERROR;
  V_ERROR(left_out.get()) = DISP_E_PARAMNOTFOUND;
  for (const Outcome& outcome : {comm_.Call(L"Query"), comm_.Call(L"Query", {Variable(result)}),
                                 comm_.Call(L"Update"), comm_.Call(L"Update", {Plain(left_out)})}) {
    EXPECT_TRUE(outcome.result == DISP_E_PARAMNOTOPTIONAL || outcome.result == DISP_E_BADPARAMCOUNT ||
                outcome.result == DISP_E_TYPEMISMATCH)
        << std::hex << outcome.result;
  }
  EXPECT_NE(comm_.Invoke(comm_.IdOf(L"AutoClose"), DISPATCH_PROPERTYPUT, {}).result, S_OK);
}

// Enumerations take any number, and text that is one. A property that takes its value by reference only reads
// the variable.
TEST_F(LateBoundTest, PutByReference_VariableStaysAsItIs) {
  struct Case {
    Value value;
    HRESULT result;
    long stored;
  };
  Value small = OfType(VT_I2);
  V_I2(small.get()) = 1;
  const Case cases[] = {
      {Value(1), S_OK, 1},
      {small, S_OK, 1},
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

// What the automation library itself converts, because the argument is a value.
TEST_F(LateBoundTest, PutByValue_IsConvertedOrRefused) {
  const Value text(L"fast");
  EXPECT_EQ(port_.Put(L"ControllerStyle", Plain(Real(1))).result, S_OK);
  EXPECT_EQ(V_I4(port_.Get(L"ControllerStyle").value.get()), 1);
  EXPECT_EQ(port_.Put(L"ControllerStyle", Plain(text)).result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(port_.Put(L"Port", Plain(text)).result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(tcp_.Put(L"Port", Plain(Value(70000))).result, DISP_E_OVERFLOW);
}

TEST_F(LateBoundTest, RefusalWithoutExcepInfo_IsARefusalAllTheSame) {
  Value zero(0);
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{.rgvarg = zero.get(), .rgdispidNamedArgs = &put, .cArgs = 1, .cNamedArgs = 1};
  const HRESULT result = tcp_.get()->Invoke(tcp_.IdOf(L"Port"), IID_NULL, 0, DISPATCH_PROPERTYPUT,
                                            &parameters, nullptr, nullptr, nullptr);
  EXPECT_TRUE(result == DISP_E_EXCEPTION || result == ERR_INVALID_PORT) << std::hex << result;
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
  // A variable that says so leaves an argument out, too; that for the result may hold anything.
  result = left_out;
  EXPECT_TRUE(comm_.Call(L"Query", {Variable(result), Plain(cmd), Variable(left_out), Plain(cmd)}).IsTrue());
  EXPECT_EQ(result.text(), L"ECHO 1");
  Value bytes = left_out;
  EXPECT_TRUE(comm_.Call(L"QueryBinary", {Variable(bytes), Plain(cmd), Variable(left_out)}).IsTrue());
  EXPECT_EQ(BytesOf(*bytes.get()), "ECHO 1\r");
  // WriteLine's command and ReadLineBinary's gap are optional, too.
  EXPECT_TRUE(transport.Call(L"Initialize").IsTrue());
  EXPECT_TRUE(transport.Call(L"WriteLine").IsTrue());
  EXPECT_TRUE(transport.Call(L"WriteLine", {Variable(left_out)}).IsTrue());
  EXPECT_TRUE(transport.Call(L"WriteLine", {Plain(cmd)}).IsTrue());
  EXPECT_TRUE(transport.Call(L"ReadLineBinary", {Variable(result)}).IsTrue());
  EXPECT_EQ(BytesOf(*result.get()), "ECHO 1\r");
}

// As a plain value in its place: the reply is lost, and nothing else.
TEST_F(LateBoundTest, ResultOfAnyTypeThatIsLeftOut_IsCarriedOut) {
  UseTheInstrument();
  Value left_out;
  V_VT(left_out.get()) = VT_ERROR;
  V_ERROR(left_out.get()) = DISP_E_PARAMNOTFOUND;
  const Value cmd(L"ECHO 1");
  EXPECT_TRUE(comm_.Call(L"QueryBinary", {Plain(left_out), Plain(cmd)}).IsTrue());
  EXPECT_EQ(left_out.type(), VT_ERROR);
}

// A variable leaves out only what may be left out.
TEST_F(LateBoundTest, RequiredArgumentThatAVariableLeavesOut_IsTheMembersToJudge) {
  Value left_out;
  V_VT(left_out.get()) = VT_ERROR;
  V_ERROR(left_out.get()) = DISP_E_PARAMNOTFOUND;
  const LateObject devices(Create<IDispatch>(__uuidof(CInstruments)));
  const Outcome outcome = devices.Call(L"Item", {Variable(left_out)});
  EXPECT_EQ((Refusal{outcome.scode, outcome.source, outcome.description}),
            (Refusal{ControlError(13), L"KespCommObj", L"Type mismatch"}));
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
