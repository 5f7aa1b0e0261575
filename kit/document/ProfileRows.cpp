#include "document/ProfileRows.h"

#include <algorithm>
#include <charconv>

namespace zelkit {

namespace {

// Open containers at each level of a section: its object, "data", a row, a list within a row, a pair within a
// list.
constexpr int kSectionDepth = 2;
constexpr int kDataDepth = 3;
constexpr int kRowDepth = 4;
constexpr int kListDepth = 5;
constexpr int kPairDepth = 6;

std::string textOf(const Scalar& value) {
  if (value.kind == Scalar::Kind::kText) return std::string(value.text);
  if (!value.isNumber()) return {};
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value.real).ptr;
  return {digits.data(), end};
}

}  // namespace

struct ProfileRows::Section {
  std::string_view name;
  std::size_t columns;
  void (ProfileRows::*hand)();
};

const std::array<ProfileRows::Section, 6> ProfileRows::kSections = {{
    {"Description", 0, nullptr},
    {"processes", 4, &ProfileRows::handProcess},
    {"libraries", 5, &ProfileRows::handLibrary},
    {"files", 3, &ProfileRows::handFile},
    {"functions", 5, &ProfileRows::handFunction},
    {"samples", 8, &ProfileRows::handSample},
}};

bool ProfileRows::hasSection(std::string_view key) {
  return std::any_of(kSections.begin(), kSections.end(),
                     [&](const Section& section) { return section.name == key; });
}

void ProfileRows::section(std::string_view key) {
  _key.clear();
  _inData = false;
  _section = std::find_if(kSections.begin(), kSections.end(),
                          [&](const Section& section) { return section.name == key; });
}

void ProfileRows::key(int depth, std::string_view text) {
  if (depth != kSectionDepth) return;
  _key = text;
  _inData = text == "data" && _section->hand != nullptr;
}

void ProfileRows::open(int depth, Container container) {
  const bool inRows = depth > kSectionDepth && _inData;
  if (inRows && container != Container::kArray) return complain("an array was expected");
  if (depth > (inRows ? kPairDepth : kDataDepth)) return complain("nested too deeply");
  if (!inRows) return;
  if (depth == kRowDepth) {
    _columnCount = 0;
    _words.clear();
    _trace.clear();
    _lines.clear();
  } else if (depth == kListDepth) {
    column(Scalar{});
  } else if (depth == kPairDepth) {
    _pairCount = 0;
  }
}

void ProfileRows::close(int depth) {
  if (depth == kRowDepth) finishRow();
  if (depth == kPairDepth) finishPair();
}

void ProfileRows::scalar(int depth, const Scalar& value) {
  if (depth == kPairDepth) return pairElement(value);
  if (depth == kRowDepth) return column(value);
  if (depth == kListDepth) return listElement(value);
  if (depth == kSectionDepth && _section->hand == nullptr) describe(value);
}

void ProfileRows::describe(const Scalar& value) {
  _visitor.description(_key, textOf(value));
}

void ProfileRows::column(const Scalar& value) {
  if (_columnCount == kMostColumns) return complain("a row with too many values");
  _columns[_columnCount++] = value;
  if (value.kind == Scalar::Kind::kText) _text = value.text;
}

void ProfileRows::listElement(const Scalar& value) {
  if (!value.isWord()) return complain("a key was expected");
  _words.push_back(static_cast<std::uint32_t>(value.integer));
}

void ProfileRows::pairElement(const Scalar& value) {
  if (_pairCount == _pair.size() || value.kind != Scalar::Kind::kUnsigned)
    return complain("a pair of numbers was expected");
  _pair[_pairCount++] = value.integer;
}

void ProfileRows::finishPair() {
  if (_pairCount != _pair.size() || _pair[1] > std::numeric_limits<std::uint32_t>::max())
    return complain("a pair of numbers was expected");
  const auto second = static_cast<std::uint32_t>(_pair[1]);
  if (_section->hand == &ProfileRows::handFile)
    _lines.push_back({static_cast<std::uint32_t>(_pair[0]), second});
  else
    _trace.push_back({_pair[0], second});
}

void ProfileRows::finishRow() {
  if (_columnCount != _section->columns)
    return complain("a row of " + std::string(_section->name) + " with " + std::to_string(_columnCount) +
                    " values");
  (this->*_section->hand)();
}

std::uint64_t ProfileRows::integer(std::size_t column) {
  if (_columns[column].kind != Scalar::Kind::kUnsigned) complain("a whole number was expected");
  return _columns[column].integer;
}

std::uint32_t ProfileRows::word(std::size_t column) {
  if (!_columns[column].isWord()) complain("a number of 32 bits was expected");
  return static_cast<std::uint32_t>(_columns[column].integer);
}

double ProfileRows::real(std::size_t column) {
  if (!_columns[column].isNumber()) complain("a number was expected");
  return _columns[column].real;
}

void ProfileRows::handProcess() {
  const ProcessRow row{word(0), word(1), word(2), _text};
  if (complaint().empty()) _visitor.process(row);
}

void ProfileRows::handLibrary() {
  const LibraryRow row{word(0), word(1), _text, integer(3), integer(4)};
  if (complaint().empty()) _visitor.library(row);
}

void ProfileRows::handFile() {
  const FileRow row{word(0), _text, _lines};
  if (complaint().empty()) _visitor.file(row);
}

void ProfileRows::handFunction() {
  const std::string_view name(_text);
  const FunctionRow row{word(0), name.substr(0, name.find_last_not_of('\n') + 1), integer(2), integer(3),
                        _words};
  if (complaint().empty()) _visitor.function(row);
}

void ProfileRows::handSample() {
  const SampleRow row{word(0), integer(1), word(2), real(3), word(4), word(5), word(6), _trace};
  if (complaint().empty()) _visitor.sample(row);
}

}  // namespace zelkit
