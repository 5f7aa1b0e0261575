#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// A part of the file.
struct Section {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;

  /// Returns the bytes of the section, truncated at the end of the file.
  [[nodiscard]] std::string_view of(std::string_view file) const;
};

/// Numbers of feature sections, HEADER_* in perf's util/header.h; those from 128 up are Android's.
enum class Feature : std::uint32_t {
  tracingData = 1,
  buildIds = 2,
  hostName = 3,
  kernelRelease = 4,
  perfVersion = 5,
  architecture = 6,
  cpuCount = 7,
  commandLine = 11,
  eventDescriptions = 12,
  androidFiles = 128,
  androidMeta = 129,
  androidFiles2 = 132,
};

/// The header of a perf.data file:
///
///     magic "PERFILE2" (or "PERFFILE"), u64 size of the header
///     file:  u64 size of an attribute entry, sections of attributes, data and event types,
///            256 feature bits (absent where the header has 72 bytes)
///     pipe:  nothing more (the header has 16 bytes), records follow
///
/// The sections of the features are listed after the data, one for each bit set.
struct FileHeader {
  bool pipe = false;
  std::uint64_t attributeSize = 0;  ///< size of an entry, including the section of its ids
  Section attributes = {};
  Section data = {};
  Section eventTypes = {};  ///< names of trace-points as perf before 3.8 wrote them
  struct FeatureSection {
    Feature feature;
    Section section;
  };
  std::vector<FeatureSection> features = {};
  /// The parts of the header that are missing, such as the sections after the data in an aborted recording;
  /// empty if none.
  std::string damage = {};

  /// Reads the header. Throws std::runtime_error with the reason alone.
  static FileHeader read(std::string_view file);
};

}  // namespace zelkit
