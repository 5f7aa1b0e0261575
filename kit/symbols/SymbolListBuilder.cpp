#include "symbols/SymbolListBuilder.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

#include "symbols/SymbolListBlock.h"

namespace zelkit {

namespace {

constexpr std::uint64_t kLargestFunction = std::uint64_t{64} << 20;
constexpr std::uint64_t kLargestPiece = std::uint64_t{1} << 20;
/// The longest gap without the start of a function that counts as padding between functions.
constexpr std::uint64_t kLongestPadding = 63;
constexpr std::size_t kMostText = 0xFFFFFFFF;
/// Symbols can share one long name, so the lengths of all names can add up to far more than a file holds.
constexpr std::size_t kMostPreparedText = std::size_t{64} << 20;

}  // namespace

/// Writes the entries of a block, and unnamed code between the functions. The ranges of code and the starts
/// are sorted.
class SymbolListBuilder::Entries {
 public:
  Entries(const std::vector<Range>& code, const std::vector<std::uint64_t>& starts, std::string& block)
      : _code(code), _starts(starts), _block(block) {}

  /// Adds a function, which must not start below the end of the one before.
  void add(const ListEntry& function) {
    addCodeUpTo(function.address);
    write(function);
    _done = function.address + function.size;
  }

  /// Adds the code after the last function. Returns the number of entries.
  std::size_t finish() {
    addCodeUpTo(kNoLimit);
    return _count;
  }

 private:
  void write(const ListEntry& entry) {
    _block.append(reinterpret_cast<const char*>(&entry), sizeof entry);
    ++_count;
  }

  /// Adds the code between the last function and an address.
  void addCodeUpTo(std::uint64_t to) {
    while (_nextCode < _code.size() && _done < to) {
      const Range& code = _code[_nextCode];
      addUnnamed(std::max(_done, code.from), std::min(to, code.to));
      if (code.to > to) return;  // the range continues after the function
      _done = std::max(_done, code.to);
      ++_nextCode;
    }
  }

  /// Adds a gap, cut at the starts within it.
  void addUnnamed(std::uint64_t from, std::uint64_t to) {
    while (_nextStart < _starts.size() && _starts[_nextStart] < from) ++_nextStart;
    while (from < to) {
      const bool begins = _nextStart < _starts.size() && _starts[_nextStart] == from;
      while (_nextStart < _starts.size() && _starts[_nextStart] <= from) ++_nextStart;
      const std::uint64_t end = _nextStart < _starts.size() ? std::min(to, _starts[_nextStart]) : to;
      if (begins || end - from > kLongestPadding) addPieces(from, end);
      from = end;
    }
  }

  void addPieces(std::uint64_t from, std::uint64_t to) {
    while (from < to) {
      const std::uint64_t size = std::min(to - from, kLargestPiece);
      write({.address = from, .size = static_cast<std::uint32_t>(size), .name = 0, .file = 0, .line = 0});
      from += size;
    }
  }

  const std::vector<Range>& _code;
  const std::vector<std::uint64_t>& _starts;
  std::string& _block;
  std::size_t _count = 0;
  std::size_t _nextCode = 0;
  std::size_t _nextStart = 0;
  std::uint64_t _done = 0;  ///< end of the last function or range of code
};

/// Cuts overlapping functions into pieces. Functions are added in ascending order.
class SymbolListBuilder::Pieces {
 public:
  explicit Pieces(Entries& entries) : _entries(entries) {}

  /// Makes everything up to the address, which must not be below that of an earlier call. Returns whether an
  /// open function continues there.
  bool advanceTo(std::uint64_t address) {
    while (_done < address && hasOpen()) makePiece(address);
    _done = address;
    return hasOpen();
  }

  /// Opens a function. Everything up to its address must have been made.
  void begin(const Entry& function) { _open.push_back(function); }

  /// Makes the rest.
  void finish() {
    advanceTo(kNoLimit);
    if (_last.size != 0) _entries.add(_last);
  }

 private:
  /// Returns whether a function covers the next address. The last open one is then the innermost.
  bool hasOpen() {
    while (!_open.empty() && _open.back().end <= _done) _open.pop_back();
    return !_open.empty();
  }

  void makePiece(std::uint64_t limit) {
    const Entry& innermost = _open.back();
    const std::uint64_t size = std::min(std::min(innermost.end, limit) - _done, kLargestPiece);
    if (continuesLast(innermost, size)) {
      _last.size += static_cast<std::uint32_t>(size);
    } else {
      if (_last.size != 0) _entries.add(_last);
      _last = {.address = _done,
               .size = static_cast<std::uint32_t>(size),
               .name = innermost.name,
               .file = innermost.file,
               .line = innermost.line};
    }
    _done += size;
  }

  /// Returns whether the last piece is of the same function and adjacent.
  [[nodiscard]] bool continuesLast(const Entry& function, std::uint64_t size) const {
    return _last.name == function.name && _last.address + _last.size == _done &&
           _last.size + size <= kLargestPiece;
  }

  Entries& _entries;
  std::vector<Entry> _open;  ///< outermost first
  ListEntry _last{};         ///< not yet added, as it may continue; size 0 if there is none
  std::uint64_t _done = 0;   ///< address up to which the pieces are made
};

// Offset 0 of the texts is the empty text.
SymbolListBuilder::SymbolListBuilder() : _block(sizeof(ListHeader) + 1, '\0') {}

void SymbolListBuilder::reserve(std::size_t functions, std::size_t text) {
  _entries.reserve(functions);
  const std::size_t entries = functions + _starts.size();
  _block.reserve(_block.size() + std::min(text, kMostPreparedText) + functions + entries * sizeof(ListEntry));
}

void SymbolListBuilder::add(const Symbol& symbol, std::uint64_t limit, std::uint64_t rank) {
  // A list's texts end at their first NUL.
  if (symbol.name.empty() || symbol.name.front() == '\0' || symbol.address >= limit) return;
  // Offsets have 32 bits; functions after 4 GiB of names are dropped.
  if (symbol.name.size() + symbol.file.size() + 2 > kMostText - _block.size()) return;
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
  const auto offset = static_cast<std::uint32_t>(_block.size() - sizeof(ListHeader));
  _block.append(text) += '\0';
  return offset;
}

void SymbolListBuilder::keepBestOfEachAddress() {
  // Names are stored in the order of adding.
  const auto isBefore = [](const Entry& a, const Entry& b) {
    return std::tie(a.address, a.rank, a.name) < std::tie(b.address, b.rank, b.name);
  };
  if (!std::is_sorted(_entries.begin(), _entries.end(), isBefore))
    std::sort(_entries.begin(), _entries.end(), isBefore);
  std::size_t kept = 0;
  for (const Entry& entry : _entries) {
    if (kept > 0 && _entries[kept - 1].address == entry.address) --kept;
    _entries[kept++] = entry;
  }
  _entries.resize(kept);
}

SymbolList SymbolListBuilder::build() {
  keepBestOfEachAddress();
  // Tables of unwinding are sorted.
  if (!std::is_sorted(_starts.begin(), _starts.end())) std::sort(_starts.begin(), _starts.end());
  std::sort(_code.begin(), _code.end(), [](const Range& a, const Range& b) { return a.from < b.from; });
  ListHeader header{.magic = kListMagic,
                    .count = 0,
                    .textSize = static_cast<std::uint32_t>(_block.size() - sizeof header),
                    .hasFiles = _files.empty() ? 0U : 1U};
  Entries entries(_code, _starts, _block);
  Pieces pieces(entries);
  for (std::size_t i = 0; i < _entries.size(); ++i) {
    Entry& entry = _entries[i];
    const bool isInside = pieces.advanceTo(entry.address);
    if (entry.end == entry.address) {
      if (isInside) continue;
      entry.end = i + 1 < _entries.size() ? std::min(entry.limit, _entries[i + 1].address) : entry.limit;
    }
    pieces.begin(entry);
  }
  pieces.finish();
  header.count = entries.finish();
  std::memcpy(_block.data(), &header, sizeof header);
  SymbolList list = SymbolList::fromBytes(std::move(_block));
  *this = {};
  return list;
}

}  // namespace zelkit
