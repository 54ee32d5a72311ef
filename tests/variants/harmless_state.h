// Objects in states in which any of their members may be called: nothing waits long, and nothing but a device
// on the loopback interface is talked to.
#pragma once

#include "tests/variants/random_source.h"
#include "tests/variants/side.h"

namespace kesp::variants {

// Where the device listens, which sends each line back.
struct Device {
  std::wstring host;
  short port = 0;
};

// A state to begin with, which the same numbers make equal for two objects.
void MakeReady(const Side& side, RandomSource& random, const Device& device);

// Mends the settings that would let the next operation wait, look for somebody else, or open a port that is
// not this world's own.
void MakeHarmless(const Side& side, const Device& device);

// Lets the device of the GPIB forget a reply that nobody has read, before a call of an object that may talk
// to it: both worlds share it.
void ForgetReplies(IUnknown* object);

// Lets the simulated driver of the GPIB, where there is one, forget its record of all calls.
void RenewBus();

}  // namespace kesp::variants
