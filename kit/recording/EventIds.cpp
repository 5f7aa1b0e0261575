#include "recording/EventIds.h"

#include <algorithm>

namespace zelkit {

EventIds::EventIds(const std::vector<EventDescription>& events) {
  for (std::size_t i = 0; i < events.size(); ++i) {
    _fields.emplace_back(events[i]);
    for (const std::uint64_t id : events[i].ids) _ids.emplace_back(id, i);
  }
  std::stable_sort(_ids.begin(), _ids.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
}

std::optional<std::size_t> EventIds::eventOf(std::string_view sampleBody) {
  // All events have the id at the same offset, or there is only one event.
  if (_fields.empty()) return std::nullopt;
  if (_fields.size() == 1 || !_fields.front().hasSampleId()) return 0;
  const std::uint64_t id = _fields.front().sampleId(sampleBody);
  if (id == 0) return 0;
  if (id != _last.first) {
    const auto found = std::lower_bound(_ids.begin(), _ids.end(), std::pair(id, std::size_t{0}));
    if (found == _ids.end() || found->first != id) return std::nullopt;
    _last = *found;
  }
  return _last.second;
}

}  // namespace zelkit
