#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "timechart/ArrivalList.h"
#include "timechart/ChartSeries.h"

/// Merges two neighbouring runs, [start, middle) and [middle, end), by the member `time`.
template <typename Iterator, typename Element>
void mergeByTime(Iterator start, Iterator middle, Iterator end, std::vector<Element>& scratch) {
  constexpr auto isBefore = [](const Element& a, const Element& b) {
    return compareChartEntries({a.time, 0}, {b.time, 0});
  };
  // Elements before the whole second run stay where they are. Searched from the end, as runs overlap little.
  Iterator overlap = middle;
  while (overlap != start && isBefore(*middle, *std::prev(overlap))) --overlap;
  start = overlap;
  scratch.assign(start, middle);
  for (auto left = scratch.begin(); left != scratch.end(); ++start)
    *start = middle != end && isBefore(*middle, *left) ? *middle++ : *left++;
}

/// Sorts by the member `time`; elements of one time keep their order.
///
/// A recording contains the buffers of the CPUs in turn, so its times form ascending runs that overlap
/// little; neighbouring runs are merged in pairs.
template <typename Element>
void sortByTime(std::vector<Element>& elements) {
  const auto at = [&](std::size_t index) { return elements.begin() + static_cast<std::ptrdiff_t>(index); };
  std::vector<std::size_t> ends;  // ends of the runs
  for (std::size_t i = 1; i < elements.size(); ++i)
    if (compareChartEntries({elements[i].time, 0}, {elements[i - 1].time, 0})) ends.push_back(i);
  ends.push_back(elements.size());

  std::vector<Element> scratch;
  while (ends.size() > 1) {
    std::size_t start = 0;
    std::size_t merged = 0;
    for (std::size_t run = 0; run < ends.size(); run += 2) {
      const std::size_t end = ends[std::min(run + 1, ends.size() - 1)];
      if (ends[run] != end) mergeByTime(at(start), at(ends[run]), at(end), scratch);
      ends[merged++] = start = end;
    }
    ends.resize(merged);
  }
}

/// Returns the elements in order of time; those of one time keep their order.
template <typename Element>
std::vector<Element> inTimeOrder(const ArrivalList<Element>& list) {
  std::vector<Element> elements = list.all();
  sortByTime(elements);
  return elements;
}
