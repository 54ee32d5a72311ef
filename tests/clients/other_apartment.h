// Work in another apartment, and the way of an object there.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "tests/clients/automation.h"

namespace kesp::clients {

// A thread with an apartment of that kind, which the one that made it serves while it waits for it.
class OtherApartment {
 public:
  OtherApartment(DWORD kind, const std::function<void()>& work)
      : thread_([this, kind, work] {
          {
            const Apartment apartment(kind);
            work();
          }
          is_done_ = true;
        }) {}
  ~OtherApartment() { Join(); }
  OtherApartment(const OtherApartment&) = delete;
  OtherApartment& operator=(const OtherApartment&) = delete;

  // Until its apartment is gone, whose end may call this one.
  void Join() {
    if (!thread_.joinable()) return;
    EXPECT_TRUE(PumpUntil([&] { return is_done_.load(); }, 60000));
    thread_.join();
  }

 private:
  std::atomic<bool> is_done_ = false;
  std::thread thread_;
};

inline void RunElsewhere(DWORD kind, const std::function<void()>& work) {
  OtherApartment(kind, work).Join();
}

// The kinds of apartments that there are, and their names in those of tests.
inline auto ApartmentKinds() {
  return testing::Values(DWORD{COINIT_APARTMENTTHREADED}, DWORD{COINIT_MULTITHREADED});
}
inline std::string ApartmentKindName(const testing::TestParamInfo<DWORD>& info) {
  return info.param == COINIT_MULTITHREADED ? "Multithreaded" : "SingleThreaded";
}

// Hands an interface to another apartment.
template <class Interface>
class Passage {
 public:
  explicit Passage(Interface* object) {
    EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(__uuidof(Interface), object, &stream_), S_OK);
  }
  ComPtr<Interface> Arrive() {
    ComPtr<Interface> object;
    EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream_, __uuidof(Interface),
                                             reinterpret_cast<void**>(object.GetAddressOf())),
              S_OK);
    return object;
  }

 private:
  IStream* stream_ = nullptr;
};

}  // namespace kesp::clients
