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
  /// Whether the field locates a text: the low 16 bits of its word are an offset from the start of the raw
  /// data (__data_loc), or from the end of the field (__rel_loc).
  enum class Text { no, located, locatedAfter } text = Text::no;
};

/// The layout of a trace-point's raw data, from the kernel's text "events/SYSTEM/NAME/format". Only the
/// positions of fields are read; the print format is ignored.
struct EventFormat {
  std::string system;
  std::string name;
  std::uint32_t id = 0;
  std::map<std::string, FormatField, std::less<>> fields;

  [[nodiscard]] std::string fullName() const { return system + ":" + name; }
  /// Returns the field, or null.
  [[nodiscard]] const FormatField* field(std::string_view fieldName) const;

  /// Parses one format text. Lines of another form are skipped.
  static EventFormat of(std::string_view system, std::string_view text);
};

/// Reads all formats of a recording's tracing data:
///
/// 0x17 0x08 0x44 "tracing", version with its NUL, u8 byte order, u8 size of a long, u32 page size,
/// "header_page" NUL, u64 size, text; "header_event" likewise; u32 count of ftrace's own formats, each u64
/// size and text; u32 count of systems, each a name with its NUL, u32 count of formats, each u64 size and
/// text
///
/// Sets `damaged` if the data is damaged; returns the formats before the damage.
std::vector<EventFormat> readEventFormats(std::string_view tracingData, bool& damaged);

}  // namespace zelkit
