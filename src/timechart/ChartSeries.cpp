#include "timechart/ChartSeries.h"

#include <algorithm>

bool compareChartEntries(ChartEntryS a, ChartEntryS b) {
  return a.time < b.time;
}

void ChartSeries::sort() {
  // Most series arrive in order, and a look is cheaper than the sort's buffer.
  if (!std::is_sorted(_samples.begin(), _samples.end(), compareChartEntries))
    std::stable_sort(_samples.begin(), _samples.end(), compareChartEntries);
}
