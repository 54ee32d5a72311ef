// Work in another apartment, and the way of an object there.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/clients/automation.h"

namespace kesp::clients {

// Runs in an apartment of its own kind on a thread of its own, while the caller's apartment serves calls.
inline void RunElsewhere(DWORD kind, const std::function<void()>& work) {
  std::atomic<bool> done = false;
  std::thread thread([&] {
    {
      const Apartment apartment(kind);
      work();
    }
    done = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return done.load(); }, 60000));
  thread.join();
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
