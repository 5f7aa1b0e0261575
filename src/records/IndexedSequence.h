#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

/// A sequence with access by index and insertion anywhere. It is stored in chunks, so that an insertion moves
/// the elements of a chunk and not all that follow.
template <typename Element>
class IndexedSequence {
 public:
  std::size_t size() const { return _size; }

  const Element& operator[](std::size_t index) const {
    const std::size_t chunk = chunkOf(index);
    return _chunks[chunk][index - _starts[chunk]];
  }

  /// Returns the index of the first element for which the predicate is false, or the size. The predicate must
  /// be true for a first part of the sequence and false for the rest.
  template <typename Predicate>
  std::size_t partitionPoint(Predicate predicate) const {
    const auto chunk = std::partition_point(_chunks.begin(), _chunks.end(), [&](const auto& elements) {
      return !elements.empty() && predicate(elements.back());
    });
    if (chunk == _chunks.end()) return _size;
    const auto element = std::partition_point(chunk->begin(), chunk->end(), predicate);
    return _starts[static_cast<std::size_t>(chunk - _chunks.begin())] +
           static_cast<std::size_t>(element - chunk->begin());
  }

  /// Inserts before the element at the index, or at the end.
  void insert(std::size_t index, const Element& element) {
    if (_chunks.empty()) addChunk(0, {});
    const std::size_t chunk = chunkOf(index);
    std::vector<Element>& elements = _chunks[chunk];
    elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(index - _starts[chunk]), element);
    for (std::size_t later = chunk + 1; later < _starts.size(); ++later) ++_starts[later];
    ++_size;
    if (elements.size() == kChunkSize) split(chunk);
  }

 private:
  static constexpr std::size_t kChunkSize = 1024;

  std::size_t chunkOf(std::size_t index) const {
    // The last probes of a search are all in one chunk. An index before its start wraps to a huge number.
    if (index - _starts[_latest] >= _chunks[_latest].size()) {
      const auto next = std::upper_bound(_starts.begin(), _starts.end(), index);
      _latest = static_cast<std::size_t>(next - _starts.begin()) - 1;
    }
    return _latest;
  }

  void addChunk(std::size_t position, std::vector<Element> elements) {
    const auto offset = static_cast<std::ptrdiff_t>(position);
    _starts.insert(_starts.begin() + offset,
                   position == 0 ? 0 : _starts[position - 1] + _chunks[position - 1].size());
    _chunks.insert(_chunks.begin() + offset, std::move(elements));
    _chunks[position].reserve(kChunkSize);
  }

  void split(std::size_t chunk) {
    std::vector<Element>& whole = _chunks[chunk];
    const auto middle = whole.begin() + static_cast<std::ptrdiff_t>(kChunkSize / 2);
    std::vector<Element> second(middle, whole.end());
    whole.erase(middle, whole.end());
    addChunk(chunk + 1, std::move(second));
  }

  std::vector<std::vector<Element>> _chunks;
  std::vector<std::size_t> _starts;  ///< index of each chunk's first element
  std::size_t _size = 0;
  mutable std::size_t _latest = 0;  ///< the chunk accessed last
};
