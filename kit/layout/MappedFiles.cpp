#include "layout/MappedFiles.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "layout/OldRecords.h"
#include "recording/RecordingInfo.h"

namespace zelkit {

namespace {

constexpr std::string_view kDeletedMark = " (deleted)";
/// Programs linked above this cannot get a range that starts with their address 0.
constexpr std::uint64_t kHighestLinkEnd = 0x40000000;
constexpr std::uint64_t kPage = 0x1000;

bool isAnonymous(std::string_view path) {
  constexpr std::string_view starts[] = {
      "//anon", "/dev/zero", "/anon_hugepage", "/memfd:", "[anon", "[heap]", "[stack", "/SYSV"};
  return path.empty() || std::any_of(std::begin(starts), std::end(starts),
                                     [&](auto start) { return path.starts_with(start); });
}

std::string hexText(std::uint64_t number) {
  char text[24];
  std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(number));
  return text;
}

}  // namespace

std::string shortenedFromLeft(std::string_view text, std::size_t size) {
  constexpr std::string_view mark = "...";
  if (text.size() <= size) return std::string(text);
  std::string_view end = text.substr(text.size() - (size - mark.size()));
  if (const std::size_t slash = end.find('/'); slash != std::string_view::npos) end.remove_prefix(slash);
  return std::string(mark) + std::string(end);
}

std::size_t MappedFiles::enter(const MappingEvent& mapping) {
  MappedPiece piece;
  piece.path = mapping.name.substr(0, mapping.name.find(kDeletedMark));
  piece.buildId = hexadecimal(mapping.buildId);
  if (const auto known = _buildIds.find(piece.path); piece.buildId.empty() && known != _buildIds.end())
    piece.buildId = known->second;
  if (isAnonymous(piece.path)) piece.pid = mapping.pid;
  piece.madeCode = mapping.madeCode || piece.pid != 0;
  const std::string key =
      piece.path + '\n' + piece.buildId + '\n' + std::to_string(piece.pid) + (piece.madeCode ? "\nmade" : "");
  const auto [entry, fresh] = _enteredByKey.emplace(key, _entered.size());
  if (fresh) _entered.push_back(std::move(piece));
  return entry->second;
}

MappedFiles::Place MappedFiles::placeOf(std::size_t entered, std::uint64_t start, std::uint64_t length,
                                        std::uint64_t offset) {
  MappedPiece piece = _entered[entered];
  piece.start = start;
  piece.length = length;
  piece.offset = offset;
  std::optional<FileKnowledge::Link> link;
  if (_knowledge != nullptr) link = _knowledge->linkOf(piece);
  MappedFile file{.name = piece.path, .path = piece.path, .buildId = piece.buildId};
  file.known = link.has_value();
  if (!link) link = guess(piece);
  std::string key = std::to_string(entered);
  if (link->inPlace) {
    if (piece.pid != 0) file.name = "/tmp/perf-" + std::to_string(piece.pid) + ".map";
    file.name += ":" + hexText(start);
    key += ':' + hexText(start) + ':' + hexText(length);
    link->address = start;
  }
  file.pid = piece.pid;
  file.fixed = link->fixed;
  file.inPlace = link->inPlace;
  file.stripped = link->stripped;
  file.end = std::max(link->end, link->address + length);
  if (link->inPlace || file.end > kHighestLinkEnd || file.end < link->address) {
    file.low = link->address & ~(kPage - 1);
    file.end = link->address + length;
    key += '@' + hexText(file.low);
  }
  return {addFile(key, std::move(file)), link->address};
}

std::size_t MappedFiles::addFile(const std::string& key, MappedFile file) {
  const auto [entry, fresh] = _byKey.emplace(key, _files.size());
  if (!fresh) {
    MappedFile& known = _files[entry->second];
    known.end = std::max(known.end, file.end);
    return entry->second;
  }
  std::string name = shortenedFromLeft(file.name, OldRecords::kLongestFileName);
  if (name != file.name) ++_shortened;
  // Distinguishes files of one path, and long names with the same end.
  for (int number = 2; _byName.contains(name); ++number) {
    const std::string mark = " #" + std::to_string(number);
    name = shortenedFromLeft(file.name, OldRecords::kLongestFileName - mark.size()) + mark;
  }
  file.name = name;
  _byName.emplace(name, _files.size());
  _files.push_back(std::move(file));
  return entry->second;
}

const MappedFile* MappedFiles::find(const std::string& name) const {
  const auto found = _byName.find(name);
  return found != _byName.end() ? &_files[found->second] : nullptr;
}

/// Returns the assumed position in a file that is not available: address = offset, as with most linkers.
FileKnowledge::Link MappedFiles::guess(const MappedPiece& piece) const {
  FileKnowledge::Link link;
  link.address = piece.offset;
  link.inPlace = piece.madeCode;
  if (!link.inPlace && piece.offset <= piece.start && isUsualLinkAddress(piece.start - piece.offset)) {
    link.address = piece.start;
    link.fixed = true;
  }
  return link;
}

/// Returns whether it is the usual link address of programs that are not position-independent.
/// Position-independent ones are never there.
bool MappedFiles::isUsualLinkAddress(std::uint64_t address) const {
  if (_architecture.starts_with("arm")) return address == 0x8000 || address == 0x10000;
  if (_architecture == "x86_64" || _architecture == "aarch64") return address == 0x400000;
  return _architecture.ends_with("86") && address == 0x8048000;
}

}  // namespace zelkit
