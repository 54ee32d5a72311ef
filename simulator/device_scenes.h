// A device's life as a test tells it: scene by scene, at moments of the test's choice.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "simulator/description.h"
#include "simulator/played_device.h"

namespace kesp::simulator {

// What comes in at a moment, and what the device sends and notes by then. Notes are separated by "; ".
// "[close]",
// "[reset]" and "[flood 10]" stand for what is not bytes.
struct Scene {
  int at;
  std::string in;
  std::string out;
  std::string notes = {};
};

inline Scene Heard(Device& device, int at, const std::string& in) {
  Scene scene{at, in, {}, {}};
  device.Take(in, Moment(at));
  while (const std::optional<Deed> deed = device.Next(Moment(at))) {
    if (!deed->event.empty()) scene.notes += (scene.notes.empty() ? "" : "; ") + deed->event;
    const Step& step = deed->step;
    for (std::size_t i = 0; i < step.times && !step.flood; ++i) scene.out += step.bytes;
    if (step.flood) scene.out += "[flood " + std::to_string(step.flood->count()) + "]";
    if (!step.ending) continue;
    scene.out += *step.ending == Ending::kClose ? "[close]" : "[reset]";
    break;
  }
  return scene;
}

// Notes are compared where the test tells some.
inline void Perform(Device& device, const std::vector<Scene>& scenes) {
  for (std::size_t i = 0; i < scenes.size(); ++i) {
    const Scene& scene = scenes[i];
    const Scene heard = Heard(device, scene.at, scene.in);
    EXPECT_EQ(heard.out, scene.out) << "scene " << i << " at " << scene.at;
    if (scene.notes.empty()) continue;
    EXPECT_EQ(heard.notes, scene.notes) << "scene " << i << " at " << scene.at;
  }
}

inline std::unique_ptr<Device> DeviceOf(Description description) {
  if (auto* device = std::get_if<std::unique_ptr<Device>>(&description)) return std::move(*device);
  return std::make_unique<PlayedDevice>(
      std::make_shared<Instrument>(std::get<Personality>(std::move(description))), Place::kOwnLine);
}

inline void Perform(const std::string& json, const std::vector<Scene>& scenes) {
  SCOPED_TRACE(json);
  Perform(*DeviceOf(ReadDescription(json, "d")), scenes);
}

}  // namespace kesp::simulator
