#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "recording/EventDescription.h"
#include "recording/FileHeader.h"

namespace zelkit {

/// A function whose name is in the recording itself.
struct RecordedSymbol {
  std::uint64_t address = 0;  ///< as in the file's symbol table; for the kernel the run-time address
  std::uint64_t size = 0;
  std::string_view name;
};

/// A file whose symbols Android's recorder has stored in the recording.
struct RecordedFile {
  /// Android's numbers for kinds of files.
  enum class Kind : std::uint32_t {
    kernel = 0,
    kernelModule = 1,
    elf = 2,
    dex = 3,
    symbolMap = 4,
    unknown = 5
  };

  std::string path;
  Kind kind = Kind::unknown;
  std::uint64_t lowestAddress = 0;          ///< of the executable segment
  std::uint64_t offsetOfLowestAddress = 0;  ///< of that segment in the file
  std::vector<RecordedSymbol> symbols = {};
};

/// What a recording says about itself, its machine and its files.
struct RecordingInfo {
  std::string hostName;
  std::string kernelRelease;
  std::string perfVersion;
  std::string architecture;  ///< as printed by uname -m
  std::uint32_t cpuCount = 0;
  std::vector<std::string> commandLine;
  std::vector<EventDescription> events;
  std::vector<std::string> eventNames;  ///< as perf describes them, in the order of `events`
  std::map<std::string, std::string>
      buildIds;  ///< by path, lower-case hexadecimal; that of the kernel by kKernel
  std::map<std::string, std::string> androidMeta;
  std::vector<RecordedFile> files;  ///< texts point into the recording
  std::string kernelTable;          ///< text of /proc/kallsyms, if it is in the recording
  std::string_view tracingData;     ///< the formats of trace-points as perf keeps them
  std::vector<std::string> damage;  ///< messages about damaged parts

  static constexpr const char* kKernel = "[kernel.kallsyms]";

  /// Returns whether Android's recorder made the recording.
  [[nodiscard]] bool android() const { return !files.empty() || !androidMeta.empty(); }

  /// Reads one feature, from its section or from a record of pipe mode.
  void takeFeature(Feature feature, std::string_view section);
  /// Sets the name of each event from wherever the recording has it. `eventTypes`: the table of old
  /// recordings, entries of a number (u64) and a name of 64 bytes.
  void nameEvents(std::string_view eventTypes);
  /// Reads the body of one build-id entry: pid, build-id, path.
  void takeBuildId(std::uint16_t misc, std::string_view body);
};

/// Returns the bytes as lower-case hexadecimal digits.
std::string hexadecimal(std::string_view bytes);

}  // namespace zelkit
