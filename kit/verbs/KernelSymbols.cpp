#include "verbs/KernelSymbols.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "symbols/SymbolListBuilder.h"

namespace zelkit {

namespace {

/// Assumed size of the last symbol.
constexpr std::uint64_t kLastSize = 0x1000;

struct Line {
  std::uint64_t address = 0;
  char type = 0;
  std::string_view name;
};

/// Parses "address type name" with an optional tab and module; returns false for any other line.
bool readLine(std::string_view text, Line& line) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), line.address, 16);
  const auto used = static_cast<std::size_t>(end - text.data());
  if (error != std::errc{} || text.size() < used + 4) return false;
  line.type = text[used + 1];
  line.name = text.substr(used + 3);
  const auto isSpace = [](char byte) { return byte == ' ' || byte == '\t' || byte == '\r'; };
  line.name = {line.name.begin(), std::find_if(line.name.begin(), line.name.end(), isSpace)};
  // Mapping symbols of ARM are ignored.
  return !line.name.empty() && line.name.front() != '$';
}

bool isFunction(char type) {
  return type == 'T' || type == 't' || type == 'W' || type == 'w';
}

/// Returns the rank of one of several names at an address: global before local, then fewer underscores, then
/// longer, then the first one.
std::uint64_t rankOf(const Line& line, std::size_t index) {
  const std::size_t underscores = std::min<std::size_t>(line.name.find_first_not_of('_'), 15);
  const std::uint64_t binding = line.type == 'T' ? 2 : line.type == 't' ? 1 : 0;
  const std::uint64_t rank =
      binding << 16 | (15 - underscores) << 8 | std::min<std::size_t>(line.name.size(), 255);
  return rank << 32 | (0xFFFFFFFF - index);
}

std::vector<Line> readLines(std::string_view text) {
  constexpr std::size_t kShortestLine = sizeof "ffff0000 t x";
  std::vector<Line> lines;
  lines.reserve(text.size() / kShortestLine);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (Line line; readLine(text.substr(0, end), line) && line.address != 0) lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  const auto byAddress = [](const Line& left, const Line& right) { return left.address < right.address; };
  // Mostly the table is sorted.
  if (!std::is_sorted(lines.begin(), lines.end(), byAddress))
    std::stable_sort(lines.begin(), lines.end(), byAddress);
  return lines;
}

}  // namespace

SymbolList readKernelTable(std::string_view text) {
  const std::vector<Line> lines = readLines(text);
  SymbolListBuilder builder;
  builder.reserve(lines.size(), text.size());
  for (std::size_t i = 0, next = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    while (next < lines.size() && lines[next].address == line.address) ++next;
    const std::uint64_t end = next < lines.size() ? lines[next].address : line.address + kLastSize;
    if (isFunction(line.type))
      builder.add({line.address, end - line.address, line.name}, SymbolListBuilder::kNoLimit,
                  rankOf(line, i));
  }
  return builder.build();
}

SymbolList listOf(const RecordedFile& file) {
  SymbolListBuilder builder;
  for (const RecordedSymbol& symbol : file.symbols) builder.add({symbol.address, symbol.size, symbol.name});
  return builder.build();
}

std::uint64_t kernelStartOf(const RecordingInfo& info, std::uint64_t lowestMapping) {
  // Above the addresses of programs on every architecture.
  if (info.architecture.ends_with("64")) return 0xFFFF000000000000;
  // Modules of a 32-bit ARM kernel lie below it.
  const std::uint64_t usual = info.architecture.starts_with("arm") ? 0xBF000000 : 0xC0000000;
  return std::min(lowestMapping, usual);
}

}  // namespace zelkit
