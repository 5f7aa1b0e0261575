#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "recording/RecordingInfo.h"
#include "tracepoints/EventFormat.h"

namespace zelkit {

/// A field of the payload that the engine decodes.
struct OldField {
  enum class Kind { number, characters, text };

  std::string_view name;  ///< in the format text; "a|b" if kernels use two names
  std::size_t offset;     ///< in the payload
  std::size_t size;
  Kind kind;
};

/// A trace-point that the engine knows, with the payload of a 32-bit kernel 3.10, which starts after the
/// common header of 8 bytes: u16 number, u8 flags, u8 preempt count, i32 pid.
struct OldEvent {
  std::string_view name;
  std::size_t size;  ///< of the payload without its texts
  std::vector<OldField> fields;
};

/// Returns the trace-points that the engine charts.
const std::vector<OldEvent>& oldEvents();

/// Rewrites the raw data of trace-points, field by field by name, into the layout that the engine decodes.
class OldPayloads {
 public:
  explicit OldPayloads(const RecordingInfo& info);

  /// An entry of the event table of an old recording.
  struct TableEntry {
    std::uint16_t number;
    std::string name;
  };
  [[nodiscard]] const std::vector<TableEntry>& table() const { return _table; }
  /// Returns whether the raw data of an event, given by its index in the recording, can be rewritten.
  [[nodiscard]] bool knows(std::size_t event) const { return _recipes.contains(event); }
  /// Returns whether the recording's formats are damaged.
  [[nodiscard]] bool damaged() const { return _damaged; }

  /// Rewrites the raw data of a sample. Returns false if the engine does not know the event, or if the sample
  /// is shorter than its format requires.
  bool make(std::size_t event, std::string_view raw, std::uint16_t& number, std::string& made) const;

 private:
  struct Step {
    FormatField from;
    const OldField* to;
  };
  struct Recipe {
    std::uint16_t number = 0;
    const OldEvent* event = nullptr;
    std::vector<Step> steps = {};
  };

  void learn(std::size_t event, const OldEvent& old, const EventFormat& format);

  std::vector<TableEntry> _table;
  std::map<std::size_t, Recipe> _recipes;  ///< by event
  bool _damaged = false;
};

}  // namespace zelkit
