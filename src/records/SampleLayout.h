#pragma once

#include <cstdint>
#include <string>

#include "records/RecordingFacts.h"

/// Returns the names of the fields of samples with these PERF_SAMPLE_* bits, in the order of the bits: "ip,
/// tid, time". See linux/perf_event.h.
std::string sampleFields(std::uint64_t sampleType);

/// Returns a text about the first field of the event's samples that is not where PerfRecordSampleS, or
/// PerfRecordSampleEventS for trace-points, reads it: "the id is where the core is read". Returns an
/// empty text if there is none; fields after those that are read do no harm.
std::string misplacedField(const RecordedEvent& event);

/// Returns whether the event is a trace-point.
bool isTracePoint(const RecordedEvent& event);

/// Returns whether the event has no samples: perf adds a dummy event to get map records.
bool hasNoSamples(const RecordedEvent& event);
