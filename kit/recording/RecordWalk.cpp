#include "recording/RecordWalk.h"

namespace zelkit {

namespace {

/// Bits of a record's misc field, PERF_RECORD_MISC_*.
constexpr std::uint16_t kModeMask = 7;
constexpr std::uint16_t kDataMapping = 1 << 13;
constexpr std::uint16_t kExec = 1 << 13;      ///< of a COMM record
constexpr std::uint16_t kForkExec = 1 << 13;  ///< of a FORK record
constexpr std::uint16_t kHasBuildId = 1 << 14;

constexpr std::uint32_t kExecutableProtection = 4;
/// Not a protection flag but a mark of Android's recorder.
constexpr std::uint32_t kMadeCode = 0x4000;
constexpr std::uint64_t kLongestBuildId = 20;
constexpr std::uint64_t kProgressStep = std::uint64_t{4} << 20;
/// The file's pages are released after so many bytes of records, which may be far apart.
constexpr std::uint64_t kReleaseStep = std::uint64_t{16} << 20;

Record recordAt(const char* place) {
  // Its size was checked when it was read.
  Record record;
  std::size_t size = 0;
  Record::first({place, 1 << 16}, record, size);
  return record;
}

}  // namespace

RecordWalk::RecordWalk(Recording& recording, EventSink& sink, Recording::Progress progress)
    : _recording(recording),
      _sink(sink),
      _progress(std::move(progress)),
      _ids(recording.events()),
      _reader(recording.data()) {}

void RecordWalk::run(bool ordered) {
  Record record;
  while (_reader.next(record)) {
    if (record.type == kRecordFinishedRound) {
      finishRound();
    } else if (record.type < kFirstOfPerf) {
      if (ordered) {
        queue(record, _reader.place());
      } else {
        emit(record);
      }
    }
    report(_reader.position());
    use(record);
  }
  if (!_reader.damage().empty()) _recording.note(_reader.damage());
  _order.finish([this](const TimeOrder::Entry& entry) { emitAt(entry.place); });
}

void RecordWalk::emitAt(const char* place) {
  const Record record = recordAt(place);
  emit(record);
  use(record);
}

/// Counts the bytes of the file that were read, and releases pages.
void RecordWalk::use(const Record& record) {
  _used += record.body.size() + Record::kHeaderSize;
  if (_used < kReleaseStep) return;
  _used = 0;
  _recording._file.release();
}

void RecordWalk::report(std::uint64_t done) {
  if (done < _reported + kProgressStep) return;
  _reported = done;
  if (_progress) _progress(done, _recording._header.data.size);
}

void RecordWalk::queue(const Record& record, const char* place) {
  const std::uint64_t time = timeOf(record);
  // Records that perf synthesises for existing processes have no time and come first.
  if (time == 0 || time == SampleFields::kNoTime) return emit(record);
  _order.add(time, place);
}

std::uint64_t RecordWalk::timeOf(const Record& record) {
  if (record.type != kRecordSample) return _ids.fields(0).trailerTime(record.body);
  const std::optional<std::size_t> event = _ids.eventOf(record.body);
  return event ? _ids.fields(*event).sampleTime(record.body) : SampleFields::kNoTime;
}

void RecordWalk::finishRound() {
  _order.finishRound([this](const TimeOrder::Entry& entry) { emitAt(entry.place); });
  std::vector<const char*> places;
  for (const TimeOrder::Entry& entry : _order.pending()) places.push_back(entry.place);
  _reader.keepOnly(places);
}

void RecordWalk::emit(const Record& record) {
  switch (record.type) {
    case kRecordSample:
      return emitSample(record);
    case kRecordMmap:
    case kRecordMmap2:
      return emitMapping(record);
    case kRecordComm:
      return emitName(record);
    case kRecordFork:
    case kRecordExit:
      return emitTask(record);
    case kRecordLost:
    case kRecordLostSamples:
      return emitLost(record);
    default:
      return _sink.other(record.type);
  }
}

void RecordWalk::emitSample(const Record& record) {
  const std::optional<std::size_t> event = _ids.eventOf(record.body);
  if (!event) return _sink.damaged(record.type);
  Sample sample;
  sample.event = *event;
  sample.mode = static_cast<Mode>(record.misc & kModeMask);
  if (!readSample(_recording.events()[*event], record.body, sample)) return _sink.damaged(record.type);
  if (!_recording._laterChains.empty()) {
    const auto later = _recording._laterChains.find({sample.time, sample.tid});
    if (later != _recording._laterChains.end()) sample.laterChain = later->second;
  }
  _sink.sample(sample);
}

/// Returns the body of a record without the id, time and so on at its end.
std::string_view RecordWalk::withoutTrailer(std::string_view body) const {
  const std::size_t size = _ids.fields(0).trailerSize();
  return size > body.size() ? body : body.substr(0, body.size() - size);
}

void RecordWalk::emitMapping(const Record& record) {
  Bytes bytes(withoutTrailer(record.body));
  MappingEvent mapping;
  mapping.pid = bytes.u32();
  mapping.tid = bytes.u32();
  mapping.start = bytes.u64();
  mapping.length = bytes.u64();
  mapping.pageOffset = bytes.u64();
  mapping.executable = (record.misc & kDataMapping) == 0;
  if (record.type == kRecordMmap2) {
    Bytes identity(bytes.take(24));
    if ((record.misc & kHasBuildId) != 0) {
      const std::uint64_t size = identity.u8();
      identity.skip(3);
      mapping.buildId = identity.take(size < kLongestBuildId ? size : kLongestBuildId);
    }
    const std::uint32_t protection = bytes.u32();
    const std::uint32_t flags = bytes.u32();
    mapping.madeCode = protection == kMadeCode;
    if ((protection | flags) != 0 && (protection & (kExecutableProtection | kMadeCode)) == 0)
      mapping.executable = false;
  }
  if (!bytes.ok()) return _sink.damaged(record.type);
  mapping.name = bytes.text(bytes.left());
  mapping.kernel =
      mapping.pid == MappingEvent::kKernelPid || static_cast<Mode>(record.misc & kModeMask) == Mode::kernel;
  _sink.mapping(mapping);
}

void RecordWalk::emitName(const Record& record) {
  Bytes bytes(withoutTrailer(record.body));
  NameEvent event;
  event.pid = bytes.u32();
  event.tid = bytes.u32();
  if (!bytes.ok()) return _sink.damaged(record.type);
  event.name = bytes.text(bytes.left());
  event.exec = (record.misc & kExec) != 0;
  _sink.name(event);
}

void RecordWalk::emitTask(const Record& record) {
  Bytes bytes(withoutTrailer(record.body));
  TaskEvent event;
  event.pid = bytes.u32();
  event.parentPid = bytes.u32();
  event.tid = bytes.u32();
  event.parentTid = bytes.u32();
  const std::uint64_t time = bytes.u64();
  if (!bytes.ok()) return _sink.damaged(record.type);
  // A record synthesised for an existing process is followed by records of all of its mappings.
  event.inheritsMappings = (record.misc & kForkExec) == 0 && time != 0;
  if (record.type == kRecordFork) {
    _sink.fork(event);
  } else {
    _sink.exit(event);
  }
}

void RecordWalk::emitLost(const Record& record) {
  Bytes bytes(record.body);
  const bool samplesOnly = record.type == kRecordLostSamples;
  if (!samplesOnly) bytes.skip(sizeof(std::uint64_t));
  const std::uint64_t count = bytes.u64();
  if (!bytes.ok()) return _sink.damaged(record.type);
  _sink.lost(count, samplesOnly);
}

}  // namespace zelkit
