#include "symbols/SymbolListBuilder.h"

#include <algorithm>
#include <utility>

#include "symbols/SymbolListBlock.h"

namespace zelkit {

namespace {

constexpr std::uint64_t kLargestFunction = std::uint64_t{64} << 20;
constexpr std::uint64_t kLargestPiece = std::uint64_t{1} << 20;
constexpr std::size_t kMostText = 0xFFFFFFFF;

void append(std::string& bytes, const auto& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace

/// Cuts overlapping functions into the pieces of a block. The functions come in ascending order.
class SymbolListBuilder::Pieces {
 public:
  explicit Pieces(std::string& block) : _block(block) {}

  /// Whether a function that has begun covers the address.
  bool covers(std::uint64_t address) {
    while (!_open.empty() && _open.back().end <= address) _open.pop_back();
    return !_open.empty();
  }

  /// Writes what the open functions cover up to the start of this one, and opens it.
  void begin(const Entry& function) {
    writeTo(function.address);
    _done = function.address;
    _open.push_back(function);
  }

  void finish() { writeTo(kNoLimit); }

  [[nodiscard]] std::uint64_t count() const { return _count; }

 private:
  void writeTo(std::uint64_t address) {
    while (_done < address && covers(_done)) {
      const Entry& innermost = _open.back();
      const std::uint64_t end = std::min({innermost.end, address, _done + kLargestPiece});
      append(_block, ListEntry{.address = _done,
                               .size = static_cast<std::uint32_t>(end - _done),
                               .name = innermost.name,
                               .file = innermost.file,
                               .line = innermost.line});
      ++_count;
      _done = end;
    }
  }

  std::string& _block;
  std::vector<Entry> _open;  ///< the outermost first
  std::uint64_t _done = 0;   ///< the pieces up to here are written
  std::uint64_t _count = 0;
};

void SymbolListBuilder::add(const Symbol& symbol, std::uint64_t limit, std::uint64_t rank) {
  if (symbol.name.empty() || symbol.address >= limit) return;
  // Offsets have 32 bits: what comes after 4 GiB of names has none.
  if (symbol.name.size() + symbol.file.size() + 2 > kMostText - _texts.size()) return;
  const std::uint64_t room = std::min(limit - symbol.address, kLargestFunction);
  const auto file = _files.find(symbol.file);
  _entries.push_back({.address = symbol.address,
                      .end = symbol.address + std::min(symbol.size, room),
                      .limit = symbol.address + room,
                      .rank = rank,
                      .name = store(symbol.name),
                      .file = file != _files.end() ? file->second : 0,
                      .line = symbol.line});
  if (file == _files.end() && !symbol.file.empty())
    _entries.back().file = _files.emplace(symbol.file, store(symbol.file)).first->second;
}

std::uint32_t SymbolListBuilder::store(std::string_view text) {
  const auto offset = static_cast<std::uint32_t>(_texts.size());
  // A list's texts end at their first NUL.
  _texts.append(text.substr(0, text.find('\0'))) += '\0';
  return offset;
}

void SymbolListBuilder::keepBestOfEachAddress() {
  std::stable_sort(_entries.begin(), _entries.end(), [](const Entry& a, const Entry& b) {
    return a.address != b.address ? a.address < b.address : a.rank < b.rank;
  });
  std::size_t kept = 0;
  for (const Entry& entry : _entries) {
    if (kept > 0 && _entries[kept - 1].address == entry.address) --kept;
    _entries[kept++] = entry;
  }
  _entries.resize(kept);
}

SymbolList SymbolListBuilder::build() {
  keepBestOfEachAddress();
  std::string block;
  append(block, ListHeader{.magic = kListMagic, .count = 0});
  Pieces pieces(block);
  for (std::size_t i = 0; i < _entries.size(); ++i) {
    Entry& entry = _entries[i];
    if (entry.end == entry.address) {
      if (pieces.covers(entry.address)) continue;
      entry.end = i + 1 < _entries.size() ? std::min(entry.limit, _entries[i + 1].address) : entry.limit;
    }
    pieces.begin(entry);
  }
  pieces.finish();
  const ListHeader header{.magic = kListMagic, .count = pieces.count()};
  block.replace(0, sizeof header, reinterpret_cast<const char*>(&header), sizeof header);
  block += _texts;
  *this = {};
  return SymbolList::fromBytes(std::move(block));
}

}  // namespace zelkit
