#include "document/exports/PackedDocument.h"

#include <charconv>

#include "document/exports/WholeUnits.h"

namespace zelkit {

namespace {

constexpr std::size_t kBlockSamples = 4096;
constexpr std::uint64_t kFirstContextMarker = ~std::uint64_t{4094};  // enum perf_callchain_context

bool isNumber(std::string_view text) {
  double number = 0.0;
  return std::from_chars(text.data(), text.data() + text.size(), number).ptr == text.data() + text.size();
}

}  // namespace

void PackedDocument::open(const char* section) {
  if (_section == section) return;
  if (_section.empty()) _json.startObject();
  close();
  _section = section;
  _json.key(section);
  if (_section == "entries") return _json.startArray();
  _json.startObject();
  if (_section == "Description") return;
  _json.key("data");
  _json.startArray();
}

void PackedDocument::close() {
  if (_section.empty()) return;
  if (_section != "Description") _json.endArray();
  if (_section != "entries") _json.endObject();
}

void PackedDocument::description(std::string_view name, std::string_view value) {
  open("Description");
  _json.key(validUtf8(name));
  // The version is a text, whatever it looks like.
  if (isNumber(value) && name != "Version")
    _json.raw(value, rapidjson::kNumberType);
  else
    _json.value(validUtf8(value));
}

void PackedDocument::process(const ProcessRow& row) {
  open("processes");
  _json.startArray();
  for (const std::uint32_t number : {row.key, row.pid, row.tid}) _json.value(number);
  _json.value(validUtf8(row.name));
  _json.endArray();
}

void PackedDocument::library(const LibraryRow& row) {
  open("libraries");
  _json.startArray();
  _json.value(row.key);
  _json.value(row.pidKey);
  _json.value(validUtf8(row.name));
  _json.value(row.start);
  _json.value(row.size);
  _json.endArray();
}

void PackedDocument::file(const FileRow& row) {
  open("files");
  _json.startArray();
  _json.value(row.key);
  _json.value(validUtf8(row.name));
  _json.startArray();
  for (const SourceLine& line : row.functions) {
    _json.startArray();
    _json.value(line.functionKey);
    _json.value(line.line);
    _json.endArray();
  }
  _json.endArray();
  _json.endArray();
}

void PackedDocument::function(const FunctionRow& row) {
  open("functions");
  _json.startArray();
  _json.value(row.key);
  _json.value(validUtf8(row.name));
  _json.value(row.start);
  _json.value(row.size);
  _json.startArray();
  for (const std::uint32_t key : row.libraryKeys) _json.value(key);
  _json.endArray();
  _json.endArray();
}

void PackedDocument::sample(const SampleRow& row) {
  open("blocks");
  const std::int64_t time = wholeUnits(row.time, kNanosecondsPerSecond);
  _timeSteps.push_back(time - _latestTime);
  _latestTime = time;
  _cores.push_back(row.cpu);
  _threadColumn.push_back(threadOf(row));
  _siteColumn.push_back(siteOf(row));
  _traceColumn.push_back(traceOf(row));
  if (_timeSteps.size() == kBlockSamples) writeBlock();
}

std::uint64_t PackedDocument::threadOf(const SampleRow& row) {
  const auto [place, isNew] = _threads.try_emplace({row.pidKey, row.tid}, _threads.size());
  if (isNew) _newThreads.insert(_newThreads.end(), {row.pidKey, row.tid});
  return place->second;
}

std::uint64_t PackedDocument::siteOf(const SampleRow& row) {
  return _sites.child(_sites.child(StackTree::kRoot, row.mapKey), row.ip);
}

std::uint64_t PackedDocument::traceOf(const SampleRow& row) {
  _frames.clear();
  bool repeatsOwn = false;
  for (const TraceEntry& entry : row.trace) {
    if (entry.address >= kFirstContextMarker) continue;
    if (_frames.empty()) repeatsOwn = entry.address == row.ip;
    _frames.push_back(entry.key);
  }
  return _traces.path(_traces.child(StackTree::kRoot, 2 * row.trace.size() + (repeatsOwn ? 1 : 0)), _frames);
}

void PackedDocument::writeBlock() {
  _json.startArray();
  writeColumn(_newThreads);
  writeNewNodes(_sites, _writtenSites);
  writeNewNodes(_traces, _writtenTraces);
  writeColumn(_timeSteps);
  for (Numbers* column : {&_cores, &_threadColumn, &_siteColumn, &_traceColumn}) writeColumn(*column);
  _json.endArray();
}

void PackedDocument::writeNewNodes(const StackTree& tree, StackTree::Node& written) {
  _json.startArray();
  for (; written < tree.size(); ++written) {
    _json.value(written - tree.parent(written));
    _json.value(tree.label(written));
  }
  _json.endArray();
}

template <typename Column>
void PackedDocument::writeColumn(Column& column) {
  _json.startArray();
  for (const auto number : column) _json.value(number);
  _json.endArray();
  column.clear();
}

void PackedDocument::seriesStart(const SeriesHead& head) {
  open("entries");
  _json.startObject();
  const std::pair<const char*, const std::string*> texts[] = {
      {"id", &head.id},     {"name", &head.name},        {"treeId", &head.treeId},
      {"type", &head.type}, {"class", &head.chartClass}, {"tip", &head.tip}};
  for (const auto& [key, text] : texts)
    if (!text->empty()) _json.member(key, validUtf8(*text));
  _json.member("show", head.shown ? 1 : 0);
  _json.key("hints");
  _json.startObject();
  if (!head.colourOnWhite.empty()) _json.member("white", validUtf8(head.colourOnWhite));
  if (!head.colourOnBlack.empty()) _json.member("black", validUtf8(head.colourOnBlack));
  _json.endObject();
  _json.key("data");
  _json.startArray();
}

void PackedDocument::point(double time, double value) {
  _json.startArray();
  _json.value(time);
  _json.value(value);
  _json.endArray();
}

void PackedDocument::event(const SeriesEvent& event) {
  _json.startArray();
  _json.value(event.time);
  _json.value(event.code);
  _json.value(validUtf8(event.name));
  _json.value(validUtf8(event.arguments));
  _json.endArray();
}

void PackedDocument::seriesEnd() {
  _json.endArray();
  _json.endObject();
}

void PackedDocument::finish() {
  if (!_timeSteps.empty()) writeBlock();
  close();
  if (!_section.empty()) _json.endObject();
  _json.flush();
}

}  // namespace zelkit
