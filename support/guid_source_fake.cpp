// The source of GUIDs that a test can foretell.
#include "support/guid_source_fake.h"

namespace kesp {

GuidSourceFake::GuidSourceFake() = default;

GuidSourceFake::~GuidSourceFake() = default;

std::optional<GuidFields> GuidSourceFake::NewGuid() {
  if (failing_) return std::nullopt;
  if (queue_.empty()) return GuidFields{++count_, 0, 0, {}};
  const GuidFields guid = queue_.front();
  queue_.pop_front();
  return guid;
}

void GuidSourceFake::Push(const GuidFields& guid) {
  queue_.push_back(guid);
}

}  // namespace kesp
