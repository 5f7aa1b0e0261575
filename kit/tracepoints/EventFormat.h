#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// A field of a trace-point's raw data.
struct FormatField {
  std::size_t offset = 0;
  std::size_t size = 0;
  /// Whether the field tells where a text lies: the low 16 bits of its word are an offset in the raw data, or
  /// behind the field itself.
  enum class Text { no, located, locatedBehind } text = Text::no;
};

/// The layout of a trace-point's raw data, from the text that the kernel keeps in
/// "events/SYSTEM/NAME/format". Of the text only what tells places is read: names in it come from the
/// recording, and nothing is printed by it.
struct EventFormat {
  std::string system;
  std::string name;
  std::uint32_t id = 0;
  std::map<std::string, FormatField, std::less<>> fields;

  [[nodiscard]] std::string fullName() const { return system + ":" + name; }
  /// Returns the field, or null.
  [[nodiscard]] const FormatField* field(std::string_view fieldName) const;

  /// Reads one format text. A line of another form is passed over.
  static EventFormat of(std::string_view system, std::string_view text);
};

/// Reads all formats of a recording's tracing data:
///
///     0x17 0x08 0x44 "tracing", version with its NUL, u8 byte order, u8 size of a long, u32 page size,
///     "header_page" NUL, u64 size, text; "header_event" likewise;
///     u32 count of ftrace's own formats, each u64 size and text;
///     u32 count of systems, each a name with its NUL, u32 count of formats, each u64 size and text
///
/// Returns what came before a damage, of which `damaged` tells.
std::vector<EventFormat> readEventFormats(std::string_view tracingData, bool& damaged);

}  // namespace zelkit
