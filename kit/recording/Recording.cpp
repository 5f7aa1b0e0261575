#include "recording/Recording.h"

#include <algorithm>
#include <stdexcept>

#include "recording/RecordWalk.h"

namespace zelkit {

namespace {

constexpr std::uint64_t kIdsSectionSize = 16;

FileHeader readHeader(const InputFile& file) {
  try {
    return FileHeader::read(file.bytes());
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file.path() + ": " + error.what());
  }
}

}  // namespace

Recording::Recording(const std::string& path) : _file(path), _header(readHeader(_file)) {
  describe();
}

Recording::Recording(std::string path, std::string bytes)
    : _file(std::move(path), std::move(bytes)), _header(readHeader(_file)) {
  describe();
}

void Recording::describe() {
  if (!_header.damage.empty()) note(_header.damage);
  readAttributes();
  readFeatures();
  const bool tellsAllAhead = !_header.pipe && !_info.android() && !_header.features.empty();
  if (!tellsAllAhead) readOwnRecords();
  _info.nameEvents(_header.eventTypes.of(_file.bytes()));
  if (_info.events.empty()) throw std::runtime_error(_file.path() + ": it has no event");
}

void Recording::note(const std::string& damage) {
  if (std::find(_info.damage.begin(), _info.damage.end(), damage) == _info.damage.end())
    _info.damage.push_back(damage);
}

void Recording::readAttributes() {
  if (_header.pipe) return;
  Bytes list(_header.attributes.of(_file.bytes()));
  while (list.left() >= _header.attributeSize) {
    EventDescription event = EventDescription::of(list.take(_header.attributeSize - kIdsSectionSize));
    Section section;
    section.offset = list.u64();
    section.size = list.u64();
    for (Bytes ids(section.of(_file.bytes())); ids.left() >= sizeof(std::uint64_t);)
      event.ids.push_back(ids.u64());
    _info.events.push_back(std::move(event));
  }
}

void Recording::readFeatures() {
  for (const FileHeader::FeatureSection& entry : _header.features) {
    const std::string_view bytes = entry.section.of(_file.bytes());
    if (bytes.size() < entry.section.size) note("a section after the data is truncated");
    _info.takeFeature(entry.feature, bytes);
  }
}

/// Reads the records of perf and Android themselves in a first pass, as they describe all others and may come
/// after them.
void Recording::readOwnRecords() {
  constexpr std::size_t releaseStep = std::size_t{16} << 20;
  RecordReader reader(data(), false);
  std::size_t released = 0;
  Record record;
  while (reader.next(record)) {
    if (reader.position() > released + releaseStep) {
      released = reader.position();
      _file.release();
    }
    if (record.type < kFirstOfPerf) continue;
    const std::string_view whole(reader.place(), record.body.size() + Record::kHeaderSize);
    takeOwnRecord(record, whole, reader.tracingData());
  }
}

void Recording::takeOwnRecord(const Record& record, std::string_view whole, std::string_view tracingData) {
  switch (record.type) {
    case kRecordAttribute:
      return takeAttribute(record.body);
    case kRecordTracingData:
      _info.tracingData = tracingData;
      return;
    case kRecordBuildId:
      return _info.takeBuildId(record.misc, record.body);
    case kRecordFeature: {
      Bytes body(record.body);
      const auto feature = static_cast<Feature>(body.u64());
      return _info.takeFeature(feature, body.take(body.left()));
    }
    case kRecordSplit:
      _split.append(record.body);
      return;
    case kRecordSplitEnd: {
      Record joined;
      std::size_t size = 0;
      if (Record::first(_split, joined, size) && joined.type == kRecordKernelSymbols)
        takeOwnRecord(joined, _split, {});
      _split.clear();
      return;
    }
    case kRecordKernelSymbols: {
      Bytes body(record.body);
      _info.kernelTable = body.text(std::min<std::uint64_t>(body.u32(), body.left()));
      return;
    }
    case kRecordEventIds:
      return takeEventIds(record.body);
    case kRecordCallChain:
      return takeCallChain(whole.substr(Record::kHeaderSize));
    default:
      return;
  }
}

/// Pipe mode: the attribute, which contains its own size, then the event's ids.
void Recording::takeAttribute(std::string_view body) {
  const std::size_t size = std::min<std::size_t>(numberAt<std::uint32_t>(body, 4), body.size());
  EventDescription event = EventDescription::of(body.substr(0, size));
  for (Bytes ids(body.substr(size)); ids.left() >= sizeof(std::uint64_t);) event.ids.push_back(ids.u64());
  _info.events.push_back(std::move(event));
}

void Recording::takeEventIds(std::string_view body) {
  Bytes bytes(body);
  for (std::uint64_t left = bytes.u64(); left > 0 && bytes.ok(); --left) {
    const std::uint64_t event = bytes.u64();
    const std::uint64_t id = bytes.u64();
    if (bytes.ok() && event < _info.events.size())
      _info.events[static_cast<std::size_t>(event)].ids.push_back(id);
  }
}

void Recording::takeCallChain(std::string_view body) {
  Bytes bytes(body);
  bytes.skip(sizeof(std::uint32_t));
  const std::uint32_t tid = bytes.u32();
  bytes.skip(sizeof(std::uint64_t));
  const std::uint64_t time = bytes.u64();
  const std::uint64_t count = bytes.u64();
  const std::string_view entries =
      bytes.take(count > bytes.left() ? ~std::uint64_t{0} : count * sizeof(std::uint64_t));
  if (bytes.ok()) _laterChains[{time, tid}] = Chain(entries);
}

void Recording::walk(EventSink& sink, const Progress& progress) {
  RecordWalk(*this, sink, progress).run(true);
}

void Recording::walkUnordered(EventSink& sink) {
  RecordWalk(*this, sink, {}).run(false);
}

}  // namespace zelkit
