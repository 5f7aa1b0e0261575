#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "recording/EventDescription.h"
#include "recording/Sample.h"

namespace zelkit {

/// Tells which event a record belongs to, by the id that it bears.
class EventIds {
 public:
  explicit EventIds(const std::vector<EventDescription>& events);

  /// Returns the index of the event of a sample, of whose body these are the bytes; nothing if its id is
  /// unknown.
  std::optional<std::size_t> eventOf(std::string_view sampleBody);

  /// Where a sample of the event, or the end of any other record, tells the time.
  [[nodiscard]] const SampleFields& fields(std::size_t event) const { return _fields[event]; }

 private:
  std::vector<SampleFields> _fields;                        ///< by event
  std::vector<std::pair<std::uint64_t, std::size_t>> _ids;  ///< id and event, ascending
  std::pair<std::uint64_t, std::size_t> _last{};            ///< the id found last
};

}  // namespace zelkit
