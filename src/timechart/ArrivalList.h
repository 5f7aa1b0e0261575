#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "base/Memory.h"

/// The part of a list that does not depend on the type of its elements.
class ArrivalListMemory {
 protected:
  static inline Arena _arena;
};

/// Append-only list. Grows by arena pieces of 4 to 128 elements, so growth copies nothing and thousands of
/// short lists waste little memory.
template <typename Element>
class ArrivalList : ArrivalListMemory {
 public:
  ArrivalList() = default;
  // A copy would append to the same piece of memory.
  ArrivalList(const ArrivalList&) = delete;
  ArrivalList& operator=(const ArrivalList&) = delete;

  void add(const Element& element) {
    if (_end == _limit) addPiece();
    std::construct_at(_end++, element);
  }

  bool empty() const { return _end == nullptr; }
  /// The latest element; the list must not be empty.
  const Element& last() const { return _end[-1]; }

  /// Returns all elements in order of arrival.
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

  Piece* _first = nullptr;
  Piece* _last = nullptr;
  Element* _end = nullptr;    ///< end of the elements
  Element* _limit = nullptr;  ///< end of the last piece
  std::size_t _room = 0;      ///< capacity of all pieces, in elements
};
