#include "json/TextBuffer.h"

#include <algorithm>
#include <utility>

namespace loomstat {

std::vector<std::string_view> TextBuffer::pieces() const {
  std::vector<std::string_view> pieces;
  for (const FullBlock& block : _full) pieces.push_back(block.text());
  pieces.push_back(lastPiece());
  return pieces;
}

void TextBuffer::clear() {
  _full.clear();
  _end = _block.get();
}

void TextBuffer::append(const TextBuffer& text) {
  for (const FullBlock& block : text._full) append(block.text());
  append(text.lastPiece());
}

void TextBuffer::appendInPieces(std::string_view text) {
  while (!text.empty()) {
    makeRoom(1);
    const std::string_view piece = text.substr(0, room());
    std::memcpy(_end, piece.data(), piece.size());
    _end += piece.size();
    text.remove_prefix(piece.size());
  }
}

void TextBuffer::startBlock() {
  if (const std::size_t size = lastPiece().size(); size != 0) _full.push_back({std::move(_block), size});
  _block = BlockPool::take();
  _end = _block.get();
  _limit = _end + BlockPool::kBlockSize;
}

}  // namespace loomstat
