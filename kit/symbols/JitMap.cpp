#include "symbols/JitMap.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>

#include "symbols/CheckedFile.h"
#include "symbols/SymbolListBuilder.h"

namespace zelkit {

namespace {

/// Parses a hexadecimal number and removes it and the blank after it from the line.
bool takeNumber(std::string_view& line, std::uint64_t& number) {
  if (line.starts_with("0x")) line.remove_prefix(2);
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number, 16);
  if (error != std::errc() || end == line.data() + line.size() || *end != ' ') return false;
  line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
  return true;
}

}  // namespace

SymbolList parseJitMap(std::string_view text, std::size_t& badLines) {
  SymbolListBuilder builder;
  std::uint64_t order = 0;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    Symbol symbol;
    if (takeNumber(line, symbol.address) && takeNumber(line, symbol.size) && symbol.size != 0 &&
        !line.empty()) {
      symbol.name = line;
      builder.add(symbol, SymbolListBuilder::kNoLimit, ++order);
    } else {
      ++badLines;
    }
  }
  return builder.build();
}

std::string findJitMap(const std::string& root, unsigned int pid) {
  const std::string path = resolveBelow(root, "tmp/perf-" + std::to_string(pid) + ".map");
  struct stat status = {};
  if (path.empty() || stat(path.c_str(), &status) != 0) return {};
  return status.st_uid == geteuid() || status.st_uid == 0 ? path : "";
}

SymbolList readJitMap(const std::string& path, std::size_t& badLines) {
  return parseJitMap(readWhole(path), badLines);
}

}  // namespace zelkit
