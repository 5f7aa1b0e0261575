#include "recording/RecordingInfo.h"

#include <algorithm>
#include <sstream>

#include "recording/AndroidFiles.h"
#include "recording/Bytes.h"

namespace zelkit {

namespace {

constexpr std::size_t kRecordHeaderSize = 8;
constexpr std::size_t kBuildIdField = 24;
constexpr std::uint16_t kHasBuildIdSize = 1 << 15;
constexpr std::uint8_t kLongestBuildId = 20;

/// Reads a text of a feature section: its size including padding, then the text up to its NUL.
std::string takeText(Bytes& bytes) {
  const std::uint32_t size = bytes.u32();
  return std::string(bytes.text(size));
}

std::vector<std::string> takeTexts(Bytes& bytes) {
  std::vector<std::string> texts;
  for (std::uint32_t left = bytes.u32(); left > 0 && bytes.ok(); --left) {
    texts.push_back(takeText(bytes));
    if (!bytes.ok()) texts.pop_back();
  }
  return texts;
}

/// Returns the names in the feature HEADER_EVENT_DESC: count, size of an attribute, then attribute, count of
/// ids, name and ids of each event. The events are in the order of the attribute section.
std::vector<std::string> takeEventNames(Bytes& bytes) {
  std::vector<std::string> names;
  const std::uint32_t count = bytes.u32();
  const std::uint32_t attributeSize = bytes.u32();
  for (std::uint32_t i = 0; i < count && bytes.ok(); ++i) {
    bytes.skip(attributeSize);
    const std::uint64_t ids = bytes.u32();
    names.push_back(takeText(bytes));
    bytes.skip(ids * sizeof(std::uint64_t));
  }
  return names;
}

std::map<std::string, std::string> takeMeta(Bytes& bytes) {
  std::map<std::string, std::string> meta;
  while (bytes.left() > 0 && bytes.ok()) {
    const std::string key(bytes.text());
    meta[key] = bytes.text();
  }
  return meta;
}

void takeBuildIds(Bytes& bytes, RecordingInfo& info) {
  while (bytes.left() > 0) {
    bytes.skip(sizeof(std::uint32_t));
    const std::uint16_t misc = bytes.u16();
    const std::uint16_t size = bytes.u16();
    const std::string_view body =
        bytes.take(std::max<std::size_t>(size, kRecordHeaderSize) - kRecordHeaderSize);
    if (!bytes.ok()) return info.damage.emplace_back("the table of build-ids is damaged"), void();
    info.takeBuildId(misc, body);
  }
}

/// Returns the name that Android's recorder stores for an event, in lines of "name,type,config".
std::string androidEventName(const EventDescription& event, const std::map<std::string, std::string>& meta) {
  const auto entry = meta.find("event_type_info");
  if (entry == meta.end()) return {};
  const std::string wanted = "," + std::to_string(event.type) + "," + std::to_string(event.config);
  std::istringstream lines(entry->second);
  for (std::string line; std::getline(lines, line);)
    if (line.ends_with(wanted)) return line.substr(0, line.size() - wanted.size());
  return {};
}

}  // namespace

std::string hexadecimal(std::string_view bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text += digits[static_cast<unsigned char>(c) >> 4];
    text += digits[static_cast<unsigned char>(c) & 15];
  }
  return text;
}

void RecordingInfo::takeBuildId(std::uint16_t misc, std::string_view body) {
  Bytes bytes(body);
  bytes.skip(sizeof(std::uint32_t));
  const std::string_view field = bytes.take(kBuildIdField);
  const std::string path(bytes.text(bytes.left()));
  if (!bytes.ok() || path.empty()) return;
  std::size_t size = kLongestBuildId;
  if ((misc & kHasBuildIdSize) != 0)
    size = std::min(static_cast<std::uint8_t>(field[kLongestBuildId]), kLongestBuildId);
  std::string_view id = field.substr(0, size);
  // Before the size was stored, build-ids of 16 bytes were padded with zeros.
  if ((misc & kHasBuildIdSize) == 0 && id.substr(16) == std::string_view("\0\0\0\0", 4))
    id = id.substr(0, 16);
  buildIds[path] = hexadecimal(id);
}

void RecordingInfo::nameEvents(std::string_view eventTypes) {
  for (std::size_t i = 0; i < events.size() && i < eventNames.size(); ++i)
    if (events[i].name.empty()) events[i].name = eventNames[i];
  for (EventDescription& event : events)
    if (event.name.empty()) event.name = androidEventName(event, androidMeta);
  constexpr std::size_t entrySize = 72;
  for (Bytes table(eventTypes); table.left() >= entrySize;) {
    const std::uint64_t number = table.u64();
    const std::string_view name = table.text(entrySize - sizeof number);
    for (EventDescription& event : events)
      if (event.isTracePoint() && event.config == number && event.name.empty()) event.name = name;
  }
}

void RecordingInfo::takeFeature(Feature feature, std::string_view section) {
  Bytes bytes(section);
  switch (feature) {
    case Feature::tracingData:
      tracingData = section;
      return;
    case Feature::buildIds:
      return takeBuildIds(bytes, *this);
    case Feature::hostName:
      hostName = takeText(bytes);
      break;
    case Feature::kernelRelease:
      kernelRelease = takeText(bytes);
      break;
    case Feature::perfVersion:
      perfVersion = takeText(bytes);
      break;
    case Feature::architecture:
      architecture = takeText(bytes);
      break;
    case Feature::cpuCount:
      cpuCount = bytes.u32();
      break;
    case Feature::commandLine:
      commandLine = takeTexts(bytes);
      break;
    case Feature::eventDescriptions:
      eventNames = takeEventNames(bytes);
      break;
    case Feature::androidMeta:
      androidMeta = takeMeta(bytes);
      break;
    case Feature::androidFiles:
      files = readAndroidFiles(section, damage);
      return;
    case Feature::androidFiles2:
      files = readAndroidFiles2(section, damage);
      return;
    default:
      return;
  }
  if (!bytes.ok())
    damage.push_back("feature section " + std::to_string(static_cast<std::uint32_t>(feature)) +
                     " is damaged");
}

}  // namespace zelkit
