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

/// What the header, the attribute section and the feature sections of a perf.data file say about the
/// recording; see tools/perf/Documentation/perf.data-file-format.txt of the kernel. The conversion does not
/// depend on it.
struct RecordingFacts {
  enum class Format { recording, pipe, otherByteOrder, unknown };

  Format format = Format::unknown;
  std::uint64_t fileSize = 0;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataEnd = 0;
  std::uint64_t missingBytes = 0;  ///< of the data section, beyond the end of the file
  bool hasEventTable = false;      ///< whether an entry fits before the data section
  bool isCompressed = false;
  std::vector<RecordedEvent> events;
  std::string release;       ///< of the recorded kernel, such as "6.1.0-50-armmp"; empty if unknown
  std::string architecture;  ///< of the recorded machine, such as "armv7l"; empty if unknown
};

/// Returns the facts of a recording, or nothing if it is not a regular file or cannot be opened. Damaged or
/// missing parts keep their defaults.
std::optional<RecordingFacts> readRecordingFacts(const std::string& path);

/// Returns how many different files the map records of a recording name. Files are distinguished by the name
/// without directories, as symbols are searched for once per such name. Returns 0 for a data section so large
/// that counting takes long.
std::size_t countMappedFiles(const std::string& path, const RecordingFacts& facts);

/// Returns the name by which countMappedFiles distinguishes files, or an empty one for a map without a file.
std::string mappedFile(const std::string& mapName);
