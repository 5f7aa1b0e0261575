/// The tables of shared frames in the processed profile of the Firefox Profiler.
#pragma once

#include <optional>
#include <vector>

#include "document/exports/JsonColumns.h"
#include "document/exports/TextTable.h"
#include "document/exports/ThreadSamples.h"

namespace zelkit {

/// Indices into meta.categories. The viewer requires a grey one as default.
enum class FirefoxCategory : int { kOther, kUser, kKernel };

/// The frames of a profile and what they refer to. Each frame has a function of its own.
class FirefoxFrames {
 public:
  /// Takes the frames of all samples. Their names are added to the strings, which must outlive the object.
  FirefoxFrames(const ThreadSamples& samples, TextTable& strings);

  /// Writes the list "libs".
  void writeLibraries(JsonColumns& json) const;
  /// Writes the tables of "shared" but for its strings, to which names are added.
  void writeTables(JsonColumns& json) const;

 private:
  struct Frame {
    std::uint32_t name = 0;
    std::optional<std::uint32_t> library;
    std::optional<std::uint32_t> source;
    std::optional<std::uint32_t> line;
    FirefoxCategory category = FirefoxCategory::kOther;
    /// The function's address within its library, if known.
    std::optional<std::uint64_t> address;
    std::optional<std::uint64_t> size;
  };

  Frame frameOf(std::uint32_t key);
  void writeStacks(JsonColumns& json) const;
  void writeFrames(JsonColumns& json) const;
  void writeFunctions(JsonColumns& json) const;
  void writeSymbols(JsonColumns& json) const;
  void writeResources(JsonColumns& json) const;
  void writeSources(JsonColumns& json) const;

  const ThreadSamples& _samples;
  TextTable& _strings;
  std::vector<Frame> _frames;
  /// By node of the tree, from node 1 on.
  std::vector<std::uint32_t> _frameOfNode;
  TextTable _libraries;
  TextTable _sources;
};

}  // namespace zelkit
