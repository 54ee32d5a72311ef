// What a process holds at a moment: the figures that must not grow while the same is done again and again.
#pragma once

#include <array>
#include <cstdint>

namespace kesp::soak {

struct Resources {
  std::int64_t handles = 0;
  std::int64_t runtime_blocks = 0;  // in use, of the C runtime's heap, where the library's own objects lie
  std::int64_t runtime_bytes = 0;
  std::int64_t system_blocks = 0;  // in use, of all other heaps: texts, and what the system keeps
  std::int64_t system_bytes = 0;
  std::int64_t private_bytes = 0;  // memory that only this process has
  std::int64_t gdi_objects = 0;
  std::int64_t user_objects = 0;
  std::int64_t threads = 0;
};

// One of them, and by how much it may be higher at the end without counting as grown.
struct ResourceKind {
  const char* name;
  std::int64_t Resources::*value;
  std::int64_t allowance;
};

// The allowances are for what the system keeps ready between two calls: one block lost in every 1000 queries
// of a full run is more than that, under Wine 8. Wine 10 hands small blocks out of groups, counts a group as
// one block, and makes larger ones as it goes on. Pages are given back late.
inline constexpr std::array<ResourceKind, 9> kResourceKinds = {{
    {"handles", &Resources::handles, 0},
    {"blocks of the runtime's heap", &Resources::runtime_blocks, 64},
    {"bytes of the runtime's heap", &Resources::runtime_bytes, 128 * 1024},
    {"blocks of the system's heaps", &Resources::system_blocks, 64},
    {"bytes of the system's heaps", &Resources::system_bytes, 128 * 1024},
    {"private bytes", &Resources::private_bytes, 1024 * 1024},
    {"GDI objects", &Resources::gdi_objects, 0},
    {"USER objects", &Resources::user_objects, 0},
    {"threads", &Resources::threads, 0},
}};

}  // namespace kesp::soak
