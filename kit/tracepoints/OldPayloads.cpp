#include "tracepoints/OldPayloads.h"

#include <algorithm>
#include <cstring>

#include "recording/Bytes.h"

namespace zelkit {

namespace {

constexpr std::size_t kCommonHeader = 8;
constexpr std::size_t kPidOffset = 4;
/// A record has at most 256 bytes, 52 of them before the raw data.
constexpr std::size_t kLargestRaw = 204;
constexpr std::size_t kLongestText = 64;

/// Returns the field that has one of the names "a|b", or null.
const FormatField* fieldOf(const EventFormat& format, std::string_view names) {
  for (;;) {
    const std::size_t bar = names.find('|');
    if (const FormatField* field = format.field(names.substr(0, bar)); field != nullptr) return field;
    if (bar == std::string_view::npos) return nullptr;
    names.remove_prefix(bar + 1);
  }
}

/// Returns the bytes of a field, or nothing if the raw data ends before it does.
std::string_view bytesOf(const FormatField& field, std::string_view raw) {
  if (field.offset > raw.size() || field.size > raw.size() - field.offset) return {};
  return raw.substr(field.offset, field.size);
}

/// Returns the text that a field locates.
std::string_view locatedText(const FormatField& field, std::string_view raw) {
  const std::string_view word = bytesOf(field, raw);
  if (word.size() != sizeof(std::uint32_t)) return {};
  std::size_t offset = numberAt<std::uint32_t>(word, 0) & 0xFFFF;
  if (field.text == FormatField::Text::locatedAfter) offset += field.offset + field.size;
  if (offset > raw.size()) return {};
  const std::string_view rest = raw.substr(offset);
  return rest.substr(0, std::min(rest.find('\0'), kLongestText));
}

void putNumber(std::string& made, std::size_t offset, std::string_view bytes) {
  std::memcpy(&made[offset], bytes.data(), std::min(bytes.size(), sizeof(std::uint32_t)));
}

void putCharacters(std::string& made, std::size_t offset, std::size_t size, std::string_view bytes) {
  const std::string_view text = bytes.substr(0, std::min({bytes.size(), bytes.find('\0'), size - 1}));
  std::memcpy(&made[offset], text.data(), text.size());
}

/// Appends the text and puts its offset and length into the field.
void putText(std::string& made, std::size_t offset, std::string_view text) {
  const std::uint32_t word =
      static_cast<std::uint32_t>(made.size()) | static_cast<std::uint32_t>(text.size() + 1) << 16;
  std::memcpy(&made[offset], &word, sizeof word);
  made.append(text);
  made.push_back('\0');
}

}  // namespace

OldPayloads::OldPayloads(const RecordingInfo& info) {
  if (info.tracingData.empty()) return;
  const std::vector<EventFormat> formats = readEventFormats(info.tracingData, _damaged);
  for (std::size_t event = 0; event < info.events.size(); ++event) {
    if (!info.events[event].isTracePoint()) continue;
    const auto format = std::find_if(formats.begin(), formats.end(), [&](const EventFormat& candidate) {
      return candidate.id == info.events[event].config;
    });
    if (format == formats.end()) continue;
    const std::string name = format->fullName();
    const auto old = std::find_if(oldEvents().begin(), oldEvents().end(),
                                  [&](const OldEvent& candidate) { return candidate.name == name; });
    if (old != oldEvents().end()) learn(event, *old, *format);
  }
}

void OldPayloads::learn(std::size_t event, const OldEvent& old, const EventFormat& format) {
  Recipe recipe{static_cast<std::uint16_t>(_table.size() + 1), &old};
  const auto same = std::find_if(_table.begin(), _table.end(),
                                 [&](const TableEntry& entry) { return entry.name == old.name; });
  if (same != _table.end()) recipe.number = same->number;
  for (const OldField& field : old.fields)
    if (const FormatField* from = fieldOf(format, field.name); from != nullptr)
      recipe.steps.push_back({*from, &field});
  if (same == _table.end()) _table.push_back({recipe.number, std::string(old.name)});
  _recipes.emplace(event, std::move(recipe));
}

bool OldPayloads::make(std::size_t event, std::string_view raw, std::uint16_t& number,
                       std::string& made) const {
  const auto found = _recipes.find(event);
  if (found == _recipes.end() || raw.size() < kCommonHeader) return false;
  const Recipe& recipe = found->second;
  number = recipe.number;
  made.assign(kCommonHeader + recipe.event->size, '\0');
  // Flags and pid of the common header are kept; the number is replaced by that of the new table on writing.
  putNumber(made, 0, raw.substr(0, kPidOffset));
  putNumber(made, kPidOffset, raw.substr(kPidOffset, sizeof(std::uint32_t)));
  for (const Step& step : recipe.steps) {
    const std::size_t offset = kCommonHeader + step.to->offset;
    const std::string_view bytes = bytesOf(step.from, raw);
    if (bytes.empty()) return false;
    switch (step.to->kind) {
      case OldField::Kind::number:
        putNumber(made, offset, bytes);
        break;
      case OldField::Kind::characters:
        putCharacters(made, offset, step.to->size, bytes);
        break;
      case OldField::Kind::text:
        putText(made, offset, locatedText(step.from, raw));
        break;
    }
  }
  return made.size() <= kLargestRaw;
}

}  // namespace zelkit
