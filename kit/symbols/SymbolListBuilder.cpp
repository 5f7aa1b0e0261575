#include "symbols/SymbolListBuilder.h"

#include <algorithm>
#include <utility>

#include "symbols/SymbolListBlock.h"

namespace zelkit {

namespace {

constexpr std::uint64_t kLargestFunction = std::uint64_t{64} << 20;
constexpr std::uint64_t kLargestPiece = std::uint64_t{1} << 20;
/// The longest gap without the start of a function that counts as padding between functions.
constexpr std::uint64_t kLongestPadding = 63;
constexpr std::size_t kMostText = 0xFFFFFFFF;

}  // namespace

/// Cuts overlapping functions into the pieces of a block. Functions are added in ascending order.
class SymbolListBuilder::Pieces {
 public:
  /// Writes everything up to the address, which must not be below that of an earlier call. Returns whether an
  /// open function continues there.
  bool advanceTo(std::uint64_t address) {
    while (_done < address && hasOpen()) writePiece(address);
    _done = address;
    return hasOpen();
  }

  /// Opens a function. Everything up to its address must have been written.
  void begin(const Entry& function) { _open.push_back(function); }

  [[nodiscard]] const std::vector<ListEntry>& all() const { return _pieces; }

 private:
  /// Returns whether a function covers the next address. The last open one is then the innermost.
  bool hasOpen() {
    while (!_open.empty() && _open.back().end <= _done) _open.pop_back();
    return !_open.empty();
  }

  void writePiece(std::uint64_t limit) {
    const Entry& innermost = _open.back();
    const std::uint64_t size = std::min(std::min(innermost.end, limit) - _done, kLargestPiece);
    if (continuesLast(innermost, size)) {
      _pieces.back().size += static_cast<std::uint32_t>(size);
    } else {
      _pieces.push_back({.address = _done,
                         .size = static_cast<std::uint32_t>(size),
                         .name = innermost.name,
                         .file = innermost.file,
                         .line = innermost.line});
    }
    _done += size;
  }

  /// Returns whether the last piece is of the same function and adjacent.
  [[nodiscard]] bool continuesLast(const Entry& function, std::uint64_t size) const {
    if (_pieces.empty()) return false;
    const ListEntry& last = _pieces.back();
    return last.name == function.name && last.address + last.size == _done &&
           last.size + size <= kLargestPiece;
  }

  std::vector<ListEntry> _pieces;
  std::vector<Entry> _open;  ///< outermost first
  std::uint64_t _done = 0;   ///< address up to which the pieces are written
};

/// Inserts unnamed code between the functions. The ranges of code and the starts are sorted.
class SymbolListBuilder::Gaps {
 public:
  Gaps(const std::vector<Range>& code, const std::vector<std::uint64_t>& starts)
      : _code(code), _starts(starts) {}

  std::vector<ListEntry> fill(const std::vector<ListEntry>& functions) {
    std::uint64_t done = 0;
    for (const ListEntry& function : functions) {
      addBetween(done, function.address);
      _entries.push_back(function);
      done = function.address + function.size;
    }
    addBetween(done, kNoLimit);
    return std::move(_entries);
  }

 private:
  void addBetween(std::uint64_t from, std::uint64_t to) {
    while (_nextCode < _code.size() && from < to) {
      const Range& code = _code[_nextCode];
      addUnnamed(std::max(from, code.from), std::min(to, code.to));
      if (code.to > to) return;  // the range continues after the function
      from = std::max(from, code.to);
      ++_nextCode;
    }
  }

  /// Adds a gap, cut at the starts within it.
  void addUnnamed(std::uint64_t from, std::uint64_t to) {
    auto start = std::lower_bound(_starts.begin(), _starts.end(), from);
    while (from < to) {
      const bool begins = start != _starts.end() && *start == from;
      while (start != _starts.end() && *start <= from) ++start;
      const std::uint64_t end = start != _starts.end() ? std::min(to, *start) : to;
      if (begins || end - from > kLongestPadding) addPieces(from, end);
      from = end;
    }
  }

  void addPieces(std::uint64_t from, std::uint64_t to) {
    while (from < to) {
      const std::uint64_t size = std::min(to - from, kLargestPiece);
      _entries.push_back(
          {.address = from, .size = static_cast<std::uint32_t>(size), .name = 0, .file = 0, .line = 0});
      from += size;
    }
  }

  const std::vector<Range>& _code;
  const std::vector<std::uint64_t>& _starts;
  std::size_t _nextCode = 0;
  std::vector<ListEntry> _entries;
};

void SymbolListBuilder::add(const Symbol& symbol, std::uint64_t limit, std::uint64_t rank) {
  if (symbol.name.empty() || symbol.address >= limit) return;
  // Offsets have 32 bits; functions after 4 GiB of names are dropped.
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

void SymbolListBuilder::addCode(std::uint64_t from, std::uint64_t to) {
  if (from < to) _code.push_back({from, to});
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
  Pieces pieces;
  for (std::size_t i = 0; i < _entries.size(); ++i) {
    Entry& entry = _entries[i];
    const bool isInside = pieces.advanceTo(entry.address);
    if (entry.end == entry.address) {
      if (isInside) continue;
      entry.end = i + 1 < _entries.size() ? std::min(entry.limit, _entries[i + 1].address) : entry.limit;
    }
    pieces.begin(entry);
  }
  pieces.advanceTo(kNoLimit);
  // Tables of unwinding are sorted.
  if (!std::is_sorted(_starts.begin(), _starts.end())) std::sort(_starts.begin(), _starts.end());
  std::sort(_code.begin(), _code.end(), [](const Range& a, const Range& b) { return a.from < b.from; });
  const std::vector<ListEntry> entries = Gaps(_code, _starts).fill(pieces.all());
  const ListHeader header{.magic = kListMagic,
                          .count = entries.size(),
                          .textSize = static_cast<std::uint32_t>(_texts.size()),
                          .hasFiles = _files.empty() ? 0U : 1U};
  std::string block;
  block.reserve(sizeof header + entries.size() * sizeof(ListEntry) + _texts.size());
  block.append(reinterpret_cast<const char*>(&header), sizeof header);
  block.append(reinterpret_cast<const char*>(entries.data()), entries.size() * sizeof(ListEntry));
  block += _texts;
  *this = {};
  return SymbolList::fromBytes(std::move(block));
}

}  // namespace zelkit
