#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/RecordingBuilder.h"

/// A recording that perf itself accepts too: attributes, stream ids, event types and, for trace-points, the
/// descriptions of their layouts are where perf's file format has them.
class PerfFile {
 public:
  /// A trace-point: its number, which is its stream id as well, its name and its fields as the kernel's
  /// format files describe them.
  struct TracePoint {
    unsigned int number;
    std::string group;
    std::string name;
    std::string fields;
  };

  /// Of the software clock, with addresses, ids, times, CPUs, periods and back-traces.
  static PerfFile ofSamples();
  /// Of trace-points, with addresses, ids, times, stream ids, CPUs and raw data.
  static PerfFile ofTracePoints(const std::vector<TracePoint>& points);

  /// Writes the file around the records of the data section.
  void save(const std::string& path, const std::string& records) const;

 private:
  PerfFile();
  void attribute(unsigned int type, std::uint64_t config, std::uint64_t sampleType, std::uint64_t id);

  struct Attribute {
    std::string event;
    std::uint64_t id;
  };
  std::vector<Attribute> _attributes;
  Bytes _eventTypes;
  std::map<unsigned int, std::string> _features;  ///< the sections after the records, by number
};
