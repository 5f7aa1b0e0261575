#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One event of a recording.
struct RecordedEvent {
  std::string name;              ///< empty if the header does not describe its events
  std::uint32_t type = 0;        ///< as in perf_event_attr of linux/perf_event.h
  std::uint64_t config = 0;      ///< the same
  std::uint64_t sampleType = 0;  ///< PERF_SAMPLE_* bits: the fields that its samples hold
};

/// What a perf.data file says of itself outside its records: the header, the attribute section and the
/// feature sections, as perf's file format has them. The conversion does not depend on it.
struct RecordingFacts {
  enum class Format { recording, pipe, otherByteOrder, unknown };

  Format format = Format::unknown;
  std::uint64_t fileSize = 0;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataEnd = 0;
  bool hasEventTable = false;  ///< whether there is room for an entry before the data section
  bool isCompressed = false;
  std::vector<RecordedEvent> events;
  std::string release;       ///< of the recorded kernel, such as "6.1.0-50-armmp"; empty if it is not told
  std::string architecture;  ///< of the recorded machine, such as "armv7l"; empty if it is not told
};

/// Returns the facts of a recording, or nothing if the file is no regular one or cannot be opened. What is
/// damaged or missing is left out.
std::optional<RecordingFacts> readRecordingFacts(const std::string& path);

/// Returns how many different files the map records of a recording name, by the name without directories, as
/// symbols are looked for once by that. 0 for a data section so large that counting takes long.
std::size_t countMappedFiles(const std::string& path, const RecordingFacts& facts);

/// The name by which countMappedFiles counts a map's file, or an empty one for what names no file.
std::string mappedFile(const std::string& mapName);
