#include "verbs/Documents.h"

#include <filesystem>

#include "document/ByteSource.h"

namespace zelkit {

namespace {

/// Recordings and tars start with other bytes.
bool isDocument(const std::string& path) {
  if (path == "-") return true;
  if (Capture::isCapture(path)) return false;
  FileSource source(path);
  char first = 0;
  while (source.read(&first, 1) == 1 && (first == ' ' || first == '\n')) {
  }
  return first == '{' || first == '[';
}

/// Returns the title of documents: "perf" for "a/perf.data".
std::string titleOf(const std::string& path) {
  std::filesystem::path name = std::filesystem::path(path).lexically_normal();
  if (!name.has_filename()) name = name.parent_path();
  return name.stem().string();
}

}  // namespace

Status Documents::add(const std::string& path) {
  if (!isDocument(path)) return convert(path);
  _paths.push_back(path);
  return Status::kDone;
}

Status Documents::convert(const std::string& recording) {
  _folders.push_back(std::make_unique<TemporaryFolder>());
  const std::string stem = _folders.back()->path() + "/" + titleOf(recording);
  std::vector<MadeDocument> made;
  const Status status = convertRecording(
      recording, _options,
      [&](Kind, bool isSecond) { return stem + (isSecond ? ".timechart.json" : ".json"); }, made);
  for (const MadeDocument& document : made) _paths.push_back(document.path);
  return status;
}

}  // namespace zelkit
