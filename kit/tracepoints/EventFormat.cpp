#include "tracepoints/EventFormat.h"

#include <charconv>

#include "recording/Bytes.h"

namespace zelkit {

namespace {

/// Returns the number that follows the key in the line, or 0.
std::size_t numberAfter(std::string_view line, std::string_view key) {
  std::size_t number = 0;
  const std::size_t at = line.find(key);
  if (at != std::string_view::npos)
    std::from_chars(line.data() + at + key.size(), line.data() + line.size(), number);
  return number;
}

/// Returns the name in a declaration such as "char prev_comm[16]" or "__data_loc char[] name".
std::string_view nameOf(std::string_view declaration) {
  if (declaration.ends_with(']')) declaration = declaration.substr(0, declaration.rfind('['));
  const std::size_t blank = declaration.find_last_of(" \t*");
  return blank == std::string_view::npos ? declaration : declaration.substr(blank + 1);
}

void readLine(std::string_view line, EventFormat& format) {
  constexpr std::string_view fieldKey = "field:";
  if (line.starts_with("name: ")) format.name = line.substr(6);
  if (line.starts_with("ID: ")) format.id = static_cast<std::uint32_t>(numberAfter(line, "ID: "));
  const std::size_t start = line.find_first_not_of(" \t");
  if (start == std::string_view::npos || !line.substr(start).starts_with(fieldKey)) return;
  line.remove_prefix(start + fieldKey.size());
  const std::string_view declaration = line.substr(0, line.find(';'));
  FormatField field;
  field.offset = numberAfter(line, "offset:");
  field.size = numberAfter(line, "size:");
  if (declaration.starts_with("__data_loc ")) field.text = FormatField::Text::located;
  if (declaration.starts_with("__rel_loc ")) field.text = FormatField::Text::locatedAfter;
  format.fields.emplace(nameOf(declaration), field);
}

bool skipHeaders(Bytes& bytes) {
  constexpr std::string_view magic = "\x17\x08\x44tracing";
  if (bytes.take(magic.size()) != magic) return false;
  bytes.text();
  bytes.skip(1 + 1 + sizeof(std::uint32_t));
  for (int header = 0; header < 2; ++header) {
    bytes.text();
    bytes.skip(bytes.u64());
  }
  for (std::uint32_t left = bytes.u32(); left > 0 && bytes.ok(); --left) bytes.skip(bytes.u64());
  return bytes.ok();
}

}  // namespace

const FormatField* EventFormat::field(std::string_view fieldName) const {
  const auto found = fields.find(fieldName);
  return found != fields.end() ? &found->second : nullptr;
}

EventFormat EventFormat::of(std::string_view system, std::string_view text) {
  EventFormat format;
  format.system = system;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    readLine(text.substr(0, end), format);
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return format;
}

std::vector<EventFormat> readEventFormats(std::string_view tracingData, bool& damaged) {
  std::vector<EventFormat> formats;
  Bytes bytes(tracingData);
  damaged = !skipHeaders(bytes);
  if (damaged) return formats;
  for (std::uint32_t systems = bytes.u32(); systems > 0 && bytes.ok(); --systems) {
    const std::string_view system = bytes.text();
    for (std::uint32_t count = bytes.u32(); count > 0 && bytes.ok(); --count) {
      const std::string_view text = bytes.take(bytes.u64());
      if (bytes.ok()) formats.push_back(EventFormat::of(system, text));
    }
  }
  damaged = !bytes.ok();
  return formats;
}

}  // namespace zelkit
