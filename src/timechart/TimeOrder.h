#pragma once

#include <algorithm>
#include <iterator>

/// Sorts by the member `time`; elements of one time keep their order.
///
/// A recording holds the buffers of the CPUs in turns, so what comes from it is nearly in order: two sorted
/// halves overlap only where they meet, and only there are they merged.
template <typename Iterator>
void sortByTime(Iterator first, Iterator last) {
  constexpr auto isBefore = [](const auto& a, const auto& b) { return a.time < b.time; };
  if (std::is_sorted(first, last, isBefore)) return;
  const Iterator middle = first + (last - first) / 2;
  sortByTime(first, middle);
  sortByTime(middle, last);
  if (!isBefore(*middle, *std::prev(middle))) return;
  std::inplace_merge(std::upper_bound(first, middle, *middle, isBefore), middle,
                     std::lower_bound(middle, last, *std::prev(middle), isBefore), isBefore);
}
