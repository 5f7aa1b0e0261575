#include "document/TimechartRows.h"

namespace zelkit {

namespace {

// Open containers at each level below "entries": an entry, its "hints" or "data", a point.
constexpr int kEntryDepth = 3;
constexpr int kMembersDepth = 4;
constexpr int kPointDepth = 5;

constexpr std::size_t kPointValues = 2;
constexpr std::size_t kEventValues = 4;

using Text = std::string SeriesHead::*;

struct Member {
  std::string_view key;
  Text text;
};

constexpr std::array<Member, 6> kMembers = {{
    {"id", &SeriesHead::id},
    {"name", &SeriesHead::name},
    {"treeId", &SeriesHead::treeId},
    {"type", &SeriesHead::type},
    {"class", &SeriesHead::chartClass},
    {"tip", &SeriesHead::tip},
}};

}  // namespace

void TimechartRows::key(int depth, std::string_view text) {
  if (depth == kEntryDepth) _key = text;
  if (depth == kMembersDepth) _hint = text;
}

void TimechartRows::open(int depth, Container container) {
  const bool objectDue = depth == kEntryDepth || (depth == kMembersDepth && _key == "hints");
  if (objectDue != (container == Container::kObject)) return complain("an entry of another shape");
  if (depth > kPointDepth || (depth == kPointDepth && !_inData)) return complain("nested too deeply");
  if (depth == kEntryDepth) {
    _head = {};
    _started = false;
  } else if (depth == kMembersDepth && _key == "data") {
    if (_started) return complain("an entry with two lists of points");
    _inData = _started = true;
    _visitor.seriesStart(_head);
  } else if (depth == kPointDepth) {
    _count = 0;
  }
}

void TimechartRows::close(int depth) {
  if (depth == kPointDepth) finishPoint();
  if (depth == kMembersDepth && _inData) {
    _inData = false;
    _visitor.seriesEnd();
  }
}

void TimechartRows::scalar(int depth, const Scalar& value) {
  if (depth == kPointDepth) return pointElement(value);
  if (depth == kEntryDepth) return headMember(value);
  if (depth == kMembersDepth && !_inData) return hint(value);
  complain("a point was expected");
}

void TimechartRows::headMember(const Scalar& value) {
  if (_key == "show") _head.shown = value.integer == 1;
  for (const Member& member : kMembers)
    if (member.key == _key) _head.*member.text = value.text;
}

void TimechartRows::hint(const Scalar& value) {
  if (_hint == "white") _head.colourOnWhite = value.text;
  if (_hint == "black") _head.colourOnBlack = value.text;
}

void TimechartRows::pointElement(const Scalar& value) {
  const bool textDue = _count >= kPointValues;
  if (_count == kEventValues || value.isNumber() == textDue) return complain("a point of another shape");
  if (textDue)
    _texts[_count - kPointValues] = value.text;
  else
    _numbers[_count] = value;
  ++_count;
}

void TimechartRows::finishPoint() {
  if (_count == kPointValues) return _visitor.point(_numbers[0].real, _numbers[1].real);
  if (_count != kEventValues) return complain("a point of another shape");
  _visitor.event({_numbers[0].real, static_cast<std::int64_t>(_numbers[1].integer), _texts[0], _texts[1]});
}

}  // namespace zelkit
