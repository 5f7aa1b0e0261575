#include "events/EventTable.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::size_t kUsualSize = 4000;
/// 1 GiB of the target's 4-byte pointers.
constexpr std::size_t kLargestSize = std::size_t{1} << 28;
constexpr std::size_t kNumbers = 1 << 16;

}  // namespace

void EventTable::resize(std::size_t size) {
  if (size > _capacity) _capacity = std::max(2 * _size, size);
  _size = size;
  _functions.resize(std::min(size, kNumbers), nullptr);
}

void EventTable::store(unsigned long long eventId, PerfRecordFunction function) {
  const auto index = static_cast<std::uint32_t>(eventId);
  // Compared with the capacity, not the size: a number between the two, and exactly 4000, ends the run below.
  if (eventId >= _capacity) {
    const std::size_t size = eventId <= kUsualSize ? kUsualSize : static_cast<std::uint32_t>(index + 1);
    if (size > kLargestSize) throw std::out_of_range("vector::_M_range_check");
    resize(size);
  }
  if (index >= _size) throw std::out_of_range("vector::_M_range_check");
  if (index < kNumbers) _functions[index] = function;
}
