// The library as a COM server: creation, class factories, and what outlives what.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/clients/early_bound.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/late_object.h"
#include "tests/clients/library_module.h"
#include "tests/clients/public_classes.h"

namespace kesp::clients {
namespace {

class ServerTest : public testing::Test {
 protected:
  Apartment apartment_;
};

class PublicClassTest : public ServerTest, public testing::WithParamInterface<PublicClass> {};

TEST_P(PublicClassTest, ProgIds_LeadToTheClassWhenItIsCreatable) {
  for (const std::wstring suffix : {L"", L".1"}) {
    CLSID clsid = GUID_NULL;
    const HRESULT result =
        CLSIDFromProgID((std::wstring(L"KespCommObj.") + GetParam().name + suffix).c_str(), &clsid);
    if (GetParam().is_creatable()) {
      EXPECT_EQ(result, S_OK);
      EXPECT_EQ(clsid, GetParam().clsid);
    } else {
      EXPECT_EQ(result, CO_E_CLASSSTRING);
    }
  }
}

TEST_P(PublicClassTest, CreateInstance_MakesAnObjectOfTheClassOrRefuses) {
  ComPtr<IUnknown> object;
  const HRESULT result = CoCreateInstance(GetParam().clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                          reinterpret_cast<void**>(object.GetAddressOf()));
  if (!GetParam().is_creatable()) {
    EXPECT_EQ(result, REGDB_E_CLASSNOTREG);
    return;
  }
  ASSERT_EQ(result, S_OK);
  ComPtr<IUnknown> interface_of_class;
  EXPECT_EQ(object->QueryInterface(GetParam().default_interface,
                                   reinterpret_cast<void**>(interface_of_class.GetAddressOf())),
            S_OK);
}

class CreatableClassTest : public PublicClassTest {};

TEST_P(CreatableClassTest, ProgIdOfClsid_IsTheVersionedOne) {
  LPOLESTR prog_id = nullptr;
  ASSERT_EQ(ProgIDFromCLSID(GetParam().clsid, &prog_id), S_OK);
  EXPECT_EQ(std::wstring(prog_id), std::wstring(L"KespCommObj.") + GetParam().name + L".1");
  CoTaskMemFree(prog_id);
}

TEST_P(PublicClassTest, GetClassObject_RefusesTheClassThatClientsCannotCreate) {
  const LibraryModule module;
  ComPtr<IClassFactory> factory;
  const HRESULT result = module.GetClassObject(GetParam().clsid, IID_IClassFactory,
                                               reinterpret_cast<void**>(factory.GetAddressOf()));
  EXPECT_EQ(result, GetParam().is_creatable() ? S_OK : CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(factory != nullptr, GetParam().is_creatable());
}

TEST_P(CreatableClassTest, Aggregation_IsRefused) {
  ComPtr<IUnknown> object;
  const ComPtr<EventRecorder> outer = EventRecorder::Make(__uuidof(__CKespTCP));
  EXPECT_EQ(CoCreateInstance(GetParam().clsid, outer.Get(), CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(object.GetAddressOf())),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

INSTANTIATE_TEST_SUITE_P(All, PublicClassTest, testing::ValuesIn(kPublicClasses),
                         [](const auto& info) { return NarrowName(info.param); });

// All but the last.
INSTANTIATE_TEST_SUITE_P(All, CreatableClassTest,
                         testing::ValuesIn(kPublicClasses.begin(), kPublicClasses.end() - 1),
                         [](const auto& info) { return NarrowName(info.param); });

class FactoryTest : public ServerTest {
 protected:
  FactoryTest() {
    EXPECT_EQ(CoGetClassObject(__uuidof(CKespTCP), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                               reinterpret_cast<void**>(factory_.GetAddressOf())),
              S_OK);
  }

  ComPtr<IClassFactory> factory_;
};

TEST_F(FactoryTest, UnknownInterface_IsRefused) {
  void* object = this;
  EXPECT_EQ(factory_->CreateInstance(nullptr, IID_IStream, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  object = this;
  EXPECT_EQ(factory_->QueryInterface(IID_IStream, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(FactoryTest, NullOutPointer_IsRefused) {
  EXPECT_EQ(factory_->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(factory_->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(FactoryTest, UnknownClass_HasNoFactory) {
  const LibraryModule module;
  void* object = this;
  EXPECT_EQ(module.GetClassObject(IID_IStream, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(module.GetClassObject(__uuidof(CKespTCP), IID_IClassFactory, nullptr), E_POINTER);
  object = this;
  EXPECT_EQ(module.GetClassObject(__uuidof(CKespTCP), IID_IStream, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

// The port switch cannot be created, but every serial transport has one.
TEST_F(ServerTest, SmartSwitch_IsReachedThroughItsPortStaysTheSameAndOutlivesIt) {
  auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  const auto first = ReadObject(port, &_CKespCOMPort3::get_SmartSwitch);
  const auto second = ReadObject(port, &_CKespCOMPort3::get_SmartSwitch);
  EXPECT_TRUE(IsSameObject(first.Get(), second.Get()));
  port.Reset();
  EXPECT_EQ(Write(second, &_CKespSmartSwitch3::put_Style, ssBB8port), S_OK);
  EXPECT_EQ(Read(first, &_CKespSmartSwitch3::get_NumPorts), 8);
}

// A connection point belongs to its object and keeps it.
TEST_F(ServerTest, ConnectionPoint_OutlivesTheReferencesToItsObject) {
  ComPtr<IConnectionPointContainer> container;
  Create<IUnknown>(__uuidof(CKespTCP)).As(&container);
  ComPtr<IConnectionPoint> point;
  ASSERT_EQ(container->FindConnectionPoint(__uuidof(__CKespTCP), &point), S_OK);
  container.Reset();
  IID iid = GUID_NULL;
  EXPECT_EQ(point->GetConnectionInterface(&iid), S_OK);
  EXPECT_EQ(iid, __uuidof(__CKespTCP));
}

TEST_F(ServerTest, Transport_OutlivesItsFacade) {
  ComPtr<IDispatch> transport;
  Create<_CKespCommObj>(__uuidof(CKespCommObj))->get_CommObject(&transport);
  EXPECT_EQ(V_I2(LateObject(transport).Get(L"Port").value.get()), 1);
}

// They begin one after the other, because Wine may hang where several threads set up COM at once.
TEST_F(ServerTest, ManyThreadsCreateAndRelease) {
  constexpr int kThreads = 8;
  std::atomic<int> ready = 0;
  std::atomic<int> made = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      const Apartment apartment;
      MakeObject(kPublicClasses[0]);
      ++ready;
      EXPECT_TRUE(PumpUntil([&] { return ready == kThreads; }));
      for (int round = 0; round < 25; ++round) {
        for (const PublicClass& one : kPublicClasses) {
          if (MakeObject(one) != nullptr) ++made;
        }
      }
    });
    EXPECT_TRUE(PumpUntil([&] { return ready > i; }));
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(made, kThreads * 25 * 7);
}

}  // namespace
}  // namespace kesp::clients
