// The library as a COM server: creation, class factories, and what outlives what.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
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

class PublicClassTest : public ServerTest, public testing::WithParamInterface<PublicClass> {
 protected:
  // What creating an object comes to, with that object around it.
  HRESULT CreateInstance(IUnknown* outer = nullptr) {
    object_.Reset();
    return CoCreateInstance(GetParam().clsid, outer, CLSCTX_INPROC_SERVER, IID_IUnknown,
                            reinterpret_cast<void**>(object_.GetAddressOf()));
  }

  const bool is_creatable_ = GetParam().is_creatable();
  ComPtr<IUnknown> object_;
};

TEST_P(PublicClassTest, ProgIds_LeadToTheClassWhenItIsCreatableAndBack) {
  const std::wstring prog_id = std::wstring(L"KespCommObj.") + GetParam().name;
  for (const std::wstring& name : {prog_id, prog_id + L".1"}) {
    CLSID clsid = GUID_NULL;
    EXPECT_EQ(CLSIDFromProgID(name.c_str(), &clsid), is_creatable_ ? S_OK : CO_E_CLASSSTRING);
    EXPECT_EQ(clsid, is_creatable_ ? GetParam().clsid : GUID_NULL);
  }
  if (!is_creatable_) return;
  LPOLESTR back = nullptr;
  ASSERT_EQ(ProgIDFromCLSID(GetParam().clsid, &back), S_OK);
  EXPECT_EQ(std::wstring(back), prog_id + L".1");
  CoTaskMemFree(back);
}

TEST_P(PublicClassTest, CreateInstance_MakesAnObjectOfTheClassOrRefuses) {
  EXPECT_EQ(CreateInstance(), is_creatable_ ? S_OK : REGDB_E_CLASSNOTREG);
  if (!is_creatable_) return;
  ComPtr<IUnknown> interface_of_class;
  EXPECT_EQ(object_->QueryInterface(GetParam().default_interface,
                                    reinterpret_cast<void**>(interface_of_class.GetAddressOf())),
            S_OK);
  const ComPtr<EventRecorder> outer = EventRecorder::Make(__uuidof(__CKespTCP));
  EXPECT_EQ(CreateInstance(outer.Get()), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object_, nullptr);
}

TEST_P(PublicClassTest, GetClassObject_RefusesTheClassThatClientsCannotCreate) {
  const LibraryModule module;
  ComPtr<IClassFactory> factory;
  const HRESULT result = module.GetClassObject(GetParam().clsid, IID_IClassFactory,
                                               reinterpret_cast<void**>(factory.GetAddressOf()));
  EXPECT_EQ(result, is_creatable_ ? S_OK : CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(factory != nullptr, is_creatable_);
}

INSTANTIATE_TEST_SUITE_P(All, PublicClassTest, testing::ValuesIn(kPublicClasses),
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

TEST_F(FactoryTest, UnknownInterfaceOrClassOrNoPointer_IsRefused) {
  const LibraryModule module;
  const std::function<HRESULT(REFIID, void**)> makers[] = {
      [&](REFIID iid, void** object) { return factory_->CreateInstance(nullptr, iid, object); },
      [&](REFIID iid, void** object) { return factory_->QueryInterface(iid, object); },
      [&](REFIID iid, void** object) { return module.GetClassObject(__uuidof(CKespTCP), iid, object); }};
  for (const auto& make : makers) {
    void* object = this;
    EXPECT_EQ(make(IID_IStream, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(make(IID_IUnknown, nullptr), E_POINTER);
  }
  void* object = this;
  EXPECT_EQ(module.GetClassObject(IID_IStream, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
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
