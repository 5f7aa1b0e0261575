#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "recording/EventDescription.h"
#include "recording/Sample.h"

namespace zelkit {

/// Determines the event of a record from the record's id.
class EventIds {
 public:
  explicit EventIds(const std::vector<EventDescription>& events);

  /// Returns the index of a sample's event, from the sample's body; nothing if its id is unknown.
  std::optional<std::size_t> eventOf(std::string_view sampleBody);

  /// Returns the offsets of the time in samples of the event, and at the end of other records.
  [[nodiscard]] const SampleFields& fields(std::size_t event) const { return _fields[event]; }

 private:
  std::vector<SampleFields> _fields;                        ///< by event
  std::vector<std::pair<std::uint64_t, std::size_t>> _ids;  ///< id and event, ascending
  std::pair<std::uint64_t, std::size_t> _last{};            ///< the id found last
};

}  // namespace zelkit
