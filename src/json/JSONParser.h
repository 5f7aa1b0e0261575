#pragma once

#include <cstdio>
#include <cstring>
#include <deque>
#include <istream>
#include <string>
#include <utility>

#include "json/JSONData.h"

namespace loomstat {

/// Cursor over a text that ends in a NUL. Advances the caller's pointer.
class TextCursor {
 public:
  explicit TextCursor(const char*& cursor) : _cursor(cursor) {}

  static constexpr const char* kOperation = "setFromJsonString()";

  /// Reads the next byte; returns false at the end.
  bool next(char& byte) {
    if (*_cursor == '\0') return false;
    byte = *_cursor++;
    return true;
  }
  /// Goes back before the byte just read.
  void back() { --_cursor; }
  bool atEnd() const { return *_cursor == '\0'; }
  /// Consumes the word if it comes next; otherwise nothing.
  bool takeWord(const char* word) {
    const std::size_t length = std::strlen(word);
    if (std::strncmp(_cursor, word, length) != 0) return false;
    _cursor += length;
    return true;
  }

 private:
  const char*& _cursor;
};

/// Cursor over a stream, which ends when its state is not good after a read.
class StreamCursor {
 public:
  explicit StreamCursor(std::istream& stream) : _stream(stream) {}

  static constexpr const char* kOperation = "setFromStream()";

  bool next(char& byte) {
    _stream.get(byte);
    return _stream.good();
  }
  void back() { _stream.unget(); }
  bool atEnd() const { return _stream.eof(); }
  /// Consumes as many bytes as the word has, whatever they are.
  bool takeWord(const char* word) {
    bool same = true;
    char byte = 0;
    for (; *word != '\0'; ++word) {
      if (!next(byte)) return false;
      same = same && byte == *word;
    }
    return same;
  }

 private:
  std::istream& _stream;
};

/// Fills a node from JSON text, in one pass and to any depth of nesting. The language extends JSON by
/// comments, trailing commas and unknown escapes, which are kept verbatim, and lacks exponents; \u yields one
/// byte.
template <typename Cursor>
class JSONParser {
 public:
  explicit JSONParser(Cursor& cursor) : _cursor(cursor) {}

  /// Parses one value into the node and ignores what follows it.
  bool parse(JSONData& node);

  // The steps, see the operations of JSONData of the same names.
  bool fetchNextType(unsigned short& type, bool& comma, bool& colon, bool& end);
  bool parseJsonString(std::string& out);
  bool parseJsonNumberIntoSelf(JSONData& node);

 private:
  bool fail(const char* message);
  bool fetchNextType() { return fetchNextType(_type, _comma, _colon, _end); }
  bool skipComment();
  bool appendEscape(std::string& out);
  bool appendCodePoint(std::string& out);
  bool parseFraction(JSONData& node, double value, bool negative);
  bool parseBoolean(JSONData& node);
  bool nextDigit(int& digit);

  /// The node of an open container, and how many containers are open there.
  struct OpenNode {
    std::size_t depth;
    JSONData* node;
  };
  bool classifyValue();
  bool parseScalar(JSONData& node);
  void open();
  bool parseMember();
  bool parseKey();
  bool finishMember();
  void close();
  static JSONData* newNode();
  JSONData& innermost();
  bool inObject() const { return _levels.back() == JSONData::kObject; }

  /// Consumes the token that fetchNextType has classified.
  void step() {
    char byte = 0;
    _cursor.next(byte);
  }

  Cursor& _cursor;
  // The results of fetchNextType. After a comma or colon _type is that of the token before it.
  unsigned short _type = JSONData::kUnset;
  bool _comma = false;
  bool _colon = false;
  bool _end = false;
  // Deques, which grow without moving their elements.
  std::deque<unsigned short> _levels;  ///< types of the open containers, innermost last
  std::deque<OpenNode> _nodes;         ///< of those that have a member, after the receiving node
  std::deque<std::string> _keys;       ///< of the unfinished member of each open object, innermost last
  JSONData* _member = nullptr;         ///< complete, but not in its container yet
};

template <typename Cursor>
bool JSONParser<Cursor>::fail(const char* message) {
  std::fprintf(stderr, "JSONData::%s: syntax error: %s\n", Cursor::kOperation, message);
  return false;
}

template <typename Cursor>
bool JSONParser<Cursor>::fetchNextType(unsigned short& type, bool& comma, bool& colon, bool& end) {
  comma = colon = end = false;
  char byte = 0;
  while (true) {
    if (!_cursor.next(byte)) return false;
    if (byte == '/') {
      if (!skipComment()) return false;
    } else if (byte != '\t' && byte != '\n' && byte != '\r' && byte != ' ') {
      break;
    }
  }
  _cursor.back();
  switch (byte) {
    case '"':
      type = JSONData::kString;
      return true;
    case 't':
    case 'f':
      type = JSONData::kBoolean;
      return true;
    case 'n':
      type = JSONData::kNull;
      return true;
    case '{':
    case '}':
      type = JSONData::kObject;
      end = byte == '}';
      return true;
    case '[':
    case ']':
      type = JSONData::kArray;
      end = byte == ']';
      return true;
    case ',':
      comma = true;
      return true;
    case ':':
      colon = true;
      return true;
    default:
      if (byte != '+' && byte != '-' && (byte < '0' || byte > '9')) return false;
      type = JSONData::kLong;
      return true;
  }
}

/// Skips the rest of a comment after its first slash.
template <typename Cursor>
bool JSONParser<Cursor>::skipComment() {
  char byte = 0;
  if (!_cursor.next(byte)) return false;
  if (byte == '/') {
    while (_cursor.next(byte))
      if (byte == '\n') return true;
    return false;
  }
  if (byte != '*') {
    _cursor.back();
    return false;
  }
  char previous = 0;
  while (_cursor.next(byte)) {
    if (previous == '*' && byte == '/') return true;
    previous = byte;
  }
  return false;
}

template <typename Cursor>
bool JSONParser<Cursor>::parse(JSONData& node) {
  if (!classifyValue()) return false;
  if (_type != JSONData::kObject && _type != JSONData::kArray) return parseScalar(node);
  node.setType(_type);
  open();
  _nodes.push_back({_levels.size(), &node});
  bool good = true;
  while (good && !_levels.empty()) good = _member == nullptr ? parseMember() : finishMember();
  // A failure drops unfinished members; complete ones stay in their container.
  if (_member != nullptr) JSONData::release(_member);
  for (; _nodes.size() > 1; _nodes.pop_back()) JSONData::release(_nodes.back().node);
  return good;
}

/// Returns whether a value comes next, without consuming it.
template <typename Cursor>
bool JSONParser<Cursor>::classifyValue() {
  if (fetchNextType() && !_comma && !_colon && !_end) return true;
  return _cursor.atEnd() ? false : fail("missing value");
}

/// Parses a value other than a container.
template <typename Cursor>
bool JSONParser<Cursor>::parseScalar(JSONData& node) {
  switch (_type) {
    case JSONData::kNull:
      if (!_cursor.takeWord("null")) return fail("invalid null value");
      node.setNull();
      return true;
    case JSONData::kBoolean:
      return parseBoolean(node) || fail("invalid boolean value");
    case JSONData::kString:
      node.setType(JSONData::kString);
      return parseJsonString(*node._value.string) || fail("invalid string");
    default:
      return parseJsonNumberIntoSelf(node) || fail("invalid number");
  }
}

/// Consumes an opening bracket.
template <typename Cursor>
void JSONParser<Cursor>::open() {
  step();
  _levels.push_back(_type);
}

template <typename Cursor>
JSONData* JSONParser<Cursor>::newNode() {
  auto* node = new JSONData;
  node->addReference();
  return node;
}

/// Returns the node of the innermost container. It is made when the container gets a member or is closed:
/// opening brackets alone cost no nodes.
template <typename Cursor>
JSONData& JSONParser<Cursor>::innermost() {
  if (_nodes.back().depth != _levels.size()) {
    _nodes.push_back({_levels.size(), newNode()});
    _nodes.back().node->setType(_levels.back());
  }
  return *_nodes.back().node;
}

/// Parses a key, if the innermost container has keys, and its value up to an opening bracket; or closes the
/// container.
template <typename Cursor>
bool JSONParser<Cursor>::parseMember() {
  const char* unclosed = inObject() ? "object not closed" : "array not closed";
  if (!fetchNextType()) return fail(unclosed);
  if (_end) {
    if (_type != _levels.back()) return fail(unclosed);
    step();
    close();
    return true;
  }
  if (inObject() && !parseKey()) return false;
  if (!classifyValue()) return false;
  if (_type == JSONData::kObject || _type == JSONData::kArray) {
    open();
    return true;
  }
  JSONData* scalar = newNode();
  if (parseScalar(*scalar)) {
    _member = scalar;
    return true;
  }
  JSONData::release(scalar);
  return false;
}

template <typename Cursor>
bool JSONParser<Cursor>::parseKey() {
  if (_type != JSONData::kString) return fail("object key must be a string");
  if (!parseJsonString(_keys.emplace_back())) return fail("invalid string for object key");
  if (!fetchNextType() || !_colon) return fail("object colon expected");
  step();
  return true;
}

/// Consumes the ',' or closing bracket after a member and appends the member.
template <typename Cursor>
bool JSONParser<Cursor>::finishMember() {
  _type = JSONData::kString;  // of the member's key: a comma leaves it
  if (!fetchNextType() || !(_comma || (_end && _type == _levels.back())))
    return fail(inObject() ? "object comma or end expected" : "array comma or end expected");
  step();
  JSONData* member = std::exchange(_member, nullptr);
  if (inObject()) {
    innermost()._value.entries->push_back(new JSONData::entry{std::move(_keys.back()), member});
    _keys.pop_back();
  } else {
    innermost()._value.elements->push_back(member);
  }
  if (_end) close();
  return true;
}

/// Ends the innermost container, which becomes a complete member of the one around it.
template <typename Cursor>
void JSONParser<Cursor>::close() {
  JSONData& closed = innermost();
  _levels.pop_back();
  _nodes.pop_back();
  if (!_levels.empty()) _member = &closed;
}

template <typename Cursor>
bool JSONParser<Cursor>::parseBoolean(JSONData& node) {
  char first = 0;
  _cursor.next(first);
  _cursor.back();
  const bool value = first == 't';
  if (!_cursor.takeWord(value ? "true" : "false")) return false;
  node.setBoolean(value);
  return true;
}

template <typename Cursor>
bool JSONParser<Cursor>::parseJsonString(std::string& out) {
  out.clear();
  char byte = 0;
  if (!_cursor.next(byte)) return false;
  if (byte != '"') {
    _cursor.back();
    return false;
  }
  while (_cursor.next(byte)) {
    if (byte == '"') return true;
    if (byte != '\\') {
      out += byte;
    } else if (!appendEscape(out)) {
      return false;
    }
  }
  return false;
}

template <typename Cursor>
bool JSONParser<Cursor>::appendEscape(std::string& out) {
  constexpr const char* letters = "ntrbf\"\\/";
  constexpr const char* meanings = "\n\t\r\b\f\"\\/";
  char byte = 0;
  if (!_cursor.next(byte)) return false;
  if (byte == 'u') return appendCodePoint(out);
  if (const char* letter = byte != '\0' ? std::strchr(letters, byte) : nullptr; letter != nullptr) {
    out += meanings[letter - letters];
  } else {
    out += '\\';
    out += byte;
  }
  return true;
}

/// Parses four hexadecimal digits, of which the last two make one byte. Upper-case digits count five less
/// than they should; configuration files have come to rely on it.
template <typename Cursor>
bool JSONParser<Cursor>::appendCodePoint(std::string& out) {
  int value = 0;
  for (int i = 0; i < 4; ++i) {
    char byte = 0;
    if (!_cursor.next(byte)) return false;
    int digit = 0;
    if (byte >= '0' && byte <= '9') {
      digit = byte - '0';
    } else if (byte >= 'a' && byte <= 'f') {
      digit = byte - 'a' + 10;
    } else if (byte >= 'A' && byte <= 'F') {
      digit = byte - 'A' + 5;
    } else {
      _cursor.back();
      return false;
    }
    value = (value * 16 + digit) & 0xFF;
  }
  out += static_cast<char>(value);
  return true;
}

/// Consumes the next byte if it is a digit.
template <typename Cursor>
bool JSONParser<Cursor>::nextDigit(int& digit) {
  char byte = 0;
  if (!_cursor.next(byte)) return false;
  if (byte < '0' || byte > '9') {
    _cursor.back();
    return false;
  }
  digit = byte - '0';
  return true;
}

template <typename Cursor>
bool JSONParser<Cursor>::parseJsonNumberIntoSelf(JSONData& node) {
  char byte = 0;
  if (!_cursor.next(byte)) return false;
  const bool negative = byte == '-';
  if (!negative) _cursor.back();
  int digit = 0;
  if (!nextDigit(digit)) return false;
  unsigned long long value = 0;
  do {
    value = value * 10 + static_cast<unsigned long long>(digit);
  } while (nextDigit(digit));
  if (_cursor.next(byte)) {
    if (byte == '.') return parseFraction(node, static_cast<double>(static_cast<long long>(value)), negative);
    _cursor.back();
  }
  node.setLong(static_cast<long long>(negative ? 0 - value : value));
  return true;
}

template <typename Cursor>
bool JSONParser<Cursor>::parseFraction(JSONData& node, double value, bool negative) {
  unsigned long long divisor = 10;
  int digit = 0;
  while (nextDigit(digit)) {
    if (digit != 0) value += digit / static_cast<double>(static_cast<long long>(divisor));
    divisor *= 10;
  }
  node.setDouble(negative ? -value : value);
  return true;
}

}  // namespace loomstat
