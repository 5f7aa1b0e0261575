#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "base/Arena.h"

/// Facts in order of arrival. A timechart has lists of any length by the thousand, so they grow by pieces of
/// an arena that is theirs together: nothing is copied, and little lies idle.
template <typename Element>
class ArrivalList {
 public:
  void add(const Element& element) {
    if (_end == _limit) addPiece();
    std::construct_at(_end++, element);
  }

  bool empty() const { return _end == nullptr; }
  /// The one that arrived last; there must be one.
  const Element& last() const { return _end[-1]; }

  std::vector<Element> all() const {
    std::vector<Element> elements;
    elements.reserve(_room);
    for (Piece* piece = _first; piece != nullptr; piece = piece->next) {
      const Element* start = elementsOf(piece);
      elements.insert(elements.end(), start, piece == _last ? _end : start + piece->size);
    }
    return elements;
  }

 private:
  static constexpr std::size_t kSmallestPiece = 4;
  static constexpr std::size_t kLargestPiece = 128;

  struct Piece {
    Piece* next;
    std::size_t size;  ///< in elements, which follow
  };
  static_assert(alignof(Element) <= 8);

  static Element* elementsOf(Piece* piece) { return reinterpret_cast<Element*>(piece + 1); }

  void addPiece() {
    const std::size_t size = _last == nullptr ? kSmallestPiece : std::min(2 * _last->size, kLargestPiece);
    auto* piece = new (_arena.allocate(sizeof(Piece) + size * sizeof(Element))) Piece{nullptr, size};
    (_last == nullptr ? _first : _last->next) = piece;
    _last = piece;
    _room += size;
    _end = elementsOf(piece);
    _limit = _end + size;
  }

  static inline Arena _arena;

  Piece* _first = nullptr;
  Piece* _last = nullptr;
  Element* _end = nullptr;    ///< of what has arrived
  Element* _limit = nullptr;  ///< of the last piece
  std::size_t _room = 0;      ///< of all pieces together
};
