#pragma once

#include <cstdint>
#include <string>

#include "records/RecordingFacts.h"

/// Names the fields that samples with these PERF_SAMPLE_* bits hold, in the order of the bits: "ip, tid,
/// time". See linux/perf_event.h.
std::string sampleFields(std::uint64_t sampleType);

/// Says where the event's samples part from the layout in which they are read, PerfRecordSampleS or for
/// trace-points PerfRecordSampleEventS: "the id stands where the core is read". Empty if they do not. Fields
/// after those that are read do no harm.
std::string misplacedField(const RecordedEvent& event);

/// Whether the event is a trace-point.
bool isTracePoint(const RecordedEvent& event);

/// Whether the event is there for other records than samples: perf adds one to get those of maps.
bool hasNoSamples(const RecordedEvent& event);
