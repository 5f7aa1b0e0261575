#include "timechart/ChartSeries.h"

#include "timechart/TimeOrder.h"

ChartSamples ChartSeries::inTimeOrder() const {
  ChartSamples samples = _samples.all();
  sortByTime(samples);
  return samples;
}

ChartSamples ChartSeries::changes() const {
  ChartSamples changes;
  for (const ChartEntryS& sample : inTimeOrder()) addChange(changes, sample.time, sample.value);
  return changes;
}
