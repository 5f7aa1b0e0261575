#include "timechart/ChartSeries.h"

#include "timechart/TimeOrder.h"

void ChartSeries::sort() {
  sortByTime(_samples);
}
