#include "document/exports/FirefoxFrames.h"

namespace zelkit {

namespace {

/// The type of resource that is a library.
constexpr int kLibraryResource = 1;

}  // namespace

FirefoxFrames::FirefoxFrames(const ThreadSamples& samples, TextTable& strings)
    : _samples(samples), _strings(strings) {
  const StackTree& tree = samples.tree();
  std::map<std::uint32_t, std::uint32_t> byKey;
  for (StackTree::Node node = 1; node < tree.size(); ++node) {
    const std::uint32_t key = ThreadSamples::frameKey(tree, node);
    const auto [place, isNew] = byKey.try_emplace(key, static_cast<std::uint32_t>(_frames.size()));
    if (isNew) _frames.push_back(frameOf(key));
    _frameOfNode.push_back(place->second);
  }
}

FirefoxFrames::Frame FirefoxFrames::frameOf(std::uint32_t key) {
  Frame frame;
  frame.name = _strings.indexOf(validUtf8(_samples.frameName(key)));
  const ProfileTables::Library* library = _samples.libraryOf(key);
  if (library != nullptr) {
    frame.category = _samples.isKernel(key) ? FirefoxCategory::kKernel : FirefoxCategory::kUser;
    frame.library = _libraries.indexOf(validUtf8(library->name));
  }
  const ProfileTables::Function* function = _samples.findFunction(key);
  if (function == nullptr) return frame;
  if (!function->file.empty()) frame.source = _sources.indexOf(validUtf8(function->file));
  if (function->line != 0) frame.line = function->line;
  if (function->size != 0) frame.size = function->size;
  if (library != nullptr) frame.address = library->offsetOf(*function);
  return frame;
}

void FirefoxFrames::writeLibraries(JsonColumns& json) const {
  json.column("libs", _libraries.texts(), [&](const std::string* path) {
    const std::string name = path->substr(path->rfind('/') + 1);
    json.startObject();
    json.member("arch", "");
    json.member("name", name);
    json.member("path", *path);
    json.member("debugName", name);
    json.member("debugPath", *path);
    json.member("breakpadId", "");
    json.nullMember("codeId");
    json.endObject();
  });
}

void FirefoxFrames::writeTables(JsonColumns& json) const {
  json.object("stackTable", [&] { writeStacks(json); });
  json.object("frameTable", [&] { writeFrames(json); });
  json.object("funcTable", [&] { writeFunctions(json); });
  json.object("nativeSymbols", [&] { writeSymbols(json); });
  json.object("resourceTable", [&] { writeResources(json); });
  json.object("sources", [&] { writeSources(json); });
  json.object("sourceLocationTable", [&] {
    for (const char* name : {"source", "line", "column"}) json.noElements(name);
    json.length(0);
  });
}

void FirefoxFrames::writeStacks(JsonColumns& json) const {
  const StackTree& tree = _samples.tree();
  json.column("frame", _frameOfNode, [&](std::uint32_t frame) { json.value(frame); });
  StackTree::Node node = 0;
  json.column("prefixOffset", _frameOfNode, [&](std::uint32_t) {
    const StackTree::Node parent = tree.parent(++node);
    json.value(parent == StackTree::kRoot ? 0 : node - parent);
  });
  json.length(_frameOfNode.size());
}

void FirefoxFrames::writeFrames(JsonColumns& json) const {
  json.column("address", _frames, [&](const Frame& frame) { json.valueOrMinusOne(frame.address); });
  json.constant("inlineDepth", _frames, 0);
  json.column("category", _frames, [&](const Frame& frame) { json.value(static_cast<int>(frame.category)); });
  json.constant("subcategory", _frames, 0);
  std::uint32_t next = 0;
  json.column("func", _frames, [&](const Frame&) { json.value(next++); });
  json.column("lib", _frames, [&](const Frame& frame) { json.valueOrMinusOne(frame.library); });
  std::uint32_t symbol = 0;
  json.column("nativeSymbol", _frames,
              [&](const Frame& frame) { frame.address ? json.value(symbol++) : json.null(); });
  json.nulls("innerWindowID", _frames);
  json.column("line", _frames, [&](const Frame& frame) { json.valueOrNull(frame.line); });
  json.nulls("column", _frames);
  json.nulls("originalLocation", _frames);
  json.length(_frames.size());
}

void FirefoxFrames::writeFunctions(JsonColumns& json) const {
  json.column("name", _frames, [&](const Frame& frame) { json.value(frame.name); });
  json.constant("isJS", _frames, false);
  json.constant("relevantForJS", _frames, false);
  json.column("resource", _frames, [&](const Frame& frame) { json.valueOrMinusOne(frame.library); });
  json.column("source", _frames, [&](const Frame& frame) { json.valueOrNull(frame.source); });
  json.column("lineNumber", _frames, [&](const Frame& frame) { json.valueOrNull(frame.line); });
  json.nulls("columnNumber", _frames);
  json.nulls("originalLocation", _frames);
  json.length(_frames.size());
}

void FirefoxFrames::writeSymbols(JsonColumns& json) const {
  std::vector<const Frame*> symbols;
  for (const Frame& frame : _frames)
    if (frame.address) symbols.push_back(&frame);
  json.column("libIndex", symbols, [&](const Frame* frame) { json.valueOrMinusOne(frame->library); });
  json.column("address", symbols, [&](const Frame* frame) { json.valueOrMinusOne(frame->address); });
  json.column("name", symbols, [&](const Frame* frame) { json.value(frame->name); });
  json.column("functionSize", symbols, [&](const Frame* frame) { json.valueOrNull(frame->size); });
  json.length(symbols.size());
}

/// The resources are the libraries, in the same order.
void FirefoxFrames::writeResources(JsonColumns& json) const {
  const auto& names = _libraries.texts();
  std::uint32_t next = 0;
  json.column("lib", names, [&](const std::string*) { json.value(next++); });
  json.column("name", names, [&](const std::string* name) { json.value(_strings.indexOf(*name)); });
  json.nulls("host", names);
  json.constant("type", names, kLibraryResource);
  json.length(names.size());
}

void FirefoxFrames::writeSources(JsonColumns& json) const {
  const auto& names = _sources.texts();
  json.nulls("id", names);
  json.column("filename", names, [&](const std::string* name) { json.value(_strings.indexOf(*name)); });
  json.constant("startLine", names, 1);
  json.constant("startColumn", names, 1);
  json.nulls("sourceMapURL", names);
  json.nulls("content", names);
  json.length(names.size());
}

}  // namespace zelkit
