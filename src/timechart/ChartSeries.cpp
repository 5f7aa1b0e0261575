#include "timechart/ChartSeries.h"

#include <algorithm>

#include "timechart/TimeOrder.h"

bool hasChanges(std::span<const ChartEntryS> samples) {
  return std::any_of(samples.begin(), samples.end(),
                     [](const ChartEntryS& sample) { return sample.value != 0; });
}

ChartSamples ChartSeries::inTimeOrder() const {
  ChartSamples samples = _samples.all();
  sortByTime(samples);
  return samples;
}
