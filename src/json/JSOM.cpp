#include "json/JSOM.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>

#include "json/JSONParser.h"

namespace loomstat {

JSOM JSOM::JERROR{JSOM::Invalid{}};
const JSOM JSOM::BLANK;
const std::string JSOM::EMPTY_STRING;
int JSOM::defaultPrecision = 4;

namespace {

void complain(const char* operation, const char* problem) {
  std::fprintf(stderr, "JSOM::%s: %s\n", operation, problem);
}

/// Returns the number in a text that holds nothing else, as a node would parse it; without its sign.
std::optional<double> magnitudeAsDouble(const char* digits, const char* end) {
  if (*digits < '0' || *digits > '9') return std::nullopt;
  JSONData number;
  TextCursor cursor(digits);
  JSONParser<TextCursor>(cursor).parseJsonNumberIntoSelf(number);
  if (digits != end) return std::nullopt;
  return number.doubleValue();
}

std::optional<double> doubleIn(const std::string& text) {
  const bool negative = text[0] == '-';
  const std::optional<double> magnitude =
      magnitudeAsDouble(text.c_str() + (negative ? 1 : 0), text.c_str() + text.size());
  return negative && magnitude ? -*magnitude : magnitude;
}

std::optional<long long> longIn(const std::string& text) {
  JSONData number;
  const char* position = text.c_str();
  TextCursor cursor(position);
  const bool parsed = JSONParser<TextCursor>(cursor).parseJsonNumberIntoSelf(number);
  if (!parsed || number._type != JSONData::kLong || position != text.c_str() + text.size())
    return std::nullopt;
  return number.longValue();
}

/// Returns the boolean that a word stands for, in upper or lower case. "false" and "no" are not recognised;
/// configuration files have always been read that way.
std::optional<bool> booleanIn(std::string word) {
  for (char& c : word) c = static_cast<char>(c | 0x20);
  for (const char* yes : {"t", "y", "1", "on", "yes", "true"})
    if (word == yes) return true;
  for (const char* no : {"f", "n", "0", "off"})
    if (word == no) return false;
  return std::nullopt;
}

}  // namespace

JSOM::JSOM(JSONData* parent, Kind kind, Reference ref) : _parent(parent), _kind(kind), _ref(ref) {
  if (_parent != nullptr) _parent->addReference();
  if (_kind == Kind::node) _ref.node->addReference();
}

JSOM::JSOM(JSONData* node, JSONData* parent)
    : JSOM(parent, node != nullptr ? Kind::node : Kind::invalid,
           node != nullptr ? Reference{.node = node} : Reference{.index = -1}) {}

JSOM::JSOM(JSONData* parent, int index) : JSOM(parent, Kind::pendingIndex, Reference{.index = index}) {}

JSOM::JSOM(JSONData* parent, const char* key) : JSOM(parent, Kind::pendingText, Reference{.text = key}) {}

JSOM::JSOM(JSONData* parent, const std::string& key)
    : JSOM(parent, Kind::pendingString, Reference{.string = &key}) {}

JSOM::JSOM(const JSOM& other) : JSOM(other._parent, other._kind, other._ref) {}

JSOM::~JSOM() {
  if (_parent != nullptr) JSONData::release(_parent);
  if (_kind == Kind::node) JSONData::release(_ref.node);
}

void JSOM::makeInfoNode(const char* caller) {
  if (_kind == Kind::invalid)
    return complain(caller, _parent == nullptr ? "null reference error" : "internal error, no info");
  auto* node = new JSONData;
  node->addReference();
  if (_parent != nullptr) {
    if (_kind == Kind::pendingString) {
      _parent->setByKey(*_ref.string, node);
    } else if (_kind == Kind::pendingText) {
      _parent->setByKey(_ref.text, node);
    } else {
      _parent->setByIndex(_ref.index, node);
    }
  }
  _ref.node = node;
  _kind = Kind::node;
}

/// The node, made if there is none yet; null in an invalid handle.
JSONData* JSOM::writableNode(const char* caller) {
  if (_kind != Kind::node) makeInfoNode(caller);
  return node();
}

/// Ensures that there is a node to search; a node created here becomes a container of that type.
bool JSOM::makeContainer(const char* caller, JSONData::Type type) {
  if (_kind == Kind::node) return true;
  makeInfoNode(caller);
  if (_kind != Kind::node) return false;
  _ref.node->setType(type);
  return true;
}

template <typename Key>
JSOM JSOM::lookup(const Key& key, const char* nodeCaller) {
  if (!makeContainer(nodeCaller, JSONData::kObject)) return JERROR;
  JSONData* member = _ref.node->getByKey(key);
  return member != nullptr ? JSOM(member, _ref.node) : JSOM(_ref.node, key);
}

JSOM JSOM::lookupText(const char* key, const char* caller) {
  if (key == nullptr) {
    complain(caller, "null key pointer");
    return JERROR;
  }
  return lookup(key, caller);
}

JSOM JSOM::lookupIndex(int index, const char* caller) {
  if (!makeContainer(caller, JSONData::kArray)) return JERROR;
  const int count = size();
  if (index == -1 || index == count) return JSOM(_ref.node, count);
  if (index < 0 || index > count) {
    complain(caller, "index out of bounds");
    return JERROR;
  }
  JSONData* member = _ref.node->getByIndex(index);
  return member != nullptr ? JSOM(member, _ref.node) : JSOM(_ref.node, index);
}

// Both string forms have always named operator[] in the message about a missing node.
JSOM JSOM::at(const std::string& key) {
  return lookup(key, "operator[](string &)");
}
JSOM JSOM::at(const char* key) {
  return lookupText(key, "at(char *)");
}
JSOM JSOM::at(int index) {
  return lookupIndex(index, "at(int32_t)");
}
JSOM JSOM::operator[](const std::string& key) {
  return lookup(key, "operator[](string &)");
}
JSOM JSOM::operator[](const char* key) {
  return lookupText(key, "operator[](char *)");
}
JSOM JSOM::operator[](int index) {
  return lookupIndex(index, "operator[](int32_t)");
}

long long JSOM::longValue(long long defaultValue) const {
  if (isNumber() || isBoolean()) return _ref.node->longValue();
  if (!isString()) return defaultValue;
  const std::optional<long long> value = longIn(*_ref.node->stringValue());
  if (!value) return defaultValue;
  _ref.node->setLong(*value);
  return *value;
}

double JSOM::doubleValue(double defaultValue) const {
  if (isNumber() || isBoolean()) return _ref.node->doubleValue();
  if (!isString()) return defaultValue;
  const std::optional<double> value = doubleIn(*_ref.node->stringValue());
  if (!value) return defaultValue;
  _ref.node->setDouble(*value);
  return *value;
}

bool JSOM::booleanValue(bool defaultValue) const {
  if (isBoolean()) return _ref.node->booleanValue();
  if (isNumber()) return _ref.node->longValue() != 0;
  if (!isString()) return defaultValue;
  const std::optional<bool> value = booleanIn(*_ref.node->stringValue());
  if (!value) return defaultValue;
  _ref.node->setBoolean(*value);
  return *value;
}

/// Returns the node's string, converting a number or boolean to one; null for any other node.
std::string* JSOM::stringNode() const {
  if (isBoolean() || isNumber()) {
    std::string text;
    _ref.node->appendStringValue(text, defaultPrecision);
    _ref.node->setString(text);
  }
  return isString() ? _ref.node->_value.string : nullptr;
}

const std::string& JSOM::stringValue(const std::string& defaultValue) const {
  const std::string* text = stringNode();
  return text != nullptr ? *text : defaultValue;
}

const char* JSOM::stringValuePtr(const char* defaultValue) const {
  const std::string* text = stringNode();
  return text != nullptr ? text->c_str() : defaultValue;
}

JSOM& JSOM::setString(const std::string& value) {
  if (JSONData* target = writableNode("setString(string &)"); target != nullptr) target->setString(value);
  return *this;
}

JSOM& JSOM::setString(const char* value) {
  JSONData* target = writableNode("setString(char *)");
  if (target == nullptr) return *this;
  if (value == nullptr) {
    target->setNull();
  } else {
    target->setString(value);
  }
  return *this;
}

JSOM& JSOM::setDouble(double value) {
  if (JSONData* target = writableNode("setDouble()"); target != nullptr) target->setDouble(value);
  return *this;
}

JSOM& JSOM::setBoolean(bool value) {
  if (JSONData* target = writableNode("setBoolean()"); target != nullptr) target->setBoolean(value);
  return *this;
}

JSOM& JSOM::setLong(long long value) {
  if (JSONData* target = writableNode("setLong()"); target != nullptr) target->setLong(value);
  return *this;
}

JSOM& JSOM::operator=(const JSOM& source) {
  if (&source == this || source.node() == nullptr) return *this;
  JSONData* target = writableNode("operator[](int32_t)");
  if (target == nullptr) return JERROR;
  target->copy(*source._ref.node);
  return *this;
}

JSOM& JSOM::copy(const JSOM& source) {
  JSONData* target = writableNode("copy()");
  if (target == nullptr) return *this;
  if (source.node() != nullptr) {
    target->copy(*source._ref.node);
  } else {
    target->setBoolean(false);
  }
  return *this;
}

int JSOM::size() const {
  return node() != nullptr ? _ref.node->length() : 0;
}

const std::string* JSOM::key(int index) const {
  return node() != nullptr ? _ref.node->getKeyAtIndex(index) : nullptr;
}

JSOM& JSOM::clear() {
  if (node() != nullptr) _ref.node->clear();
  return *this;
}

JSOM& JSOM::erase(int index) {
  if (node() != nullptr) _ref.node->erase(index);
  return *this;
}

JSOM& JSOM::erase(const char* key) {
  if (node() != nullptr) _ref.node->erase(key);
  return *this;
}

JSOM& JSOM::erase(const std::string& key) {
  if (node() != nullptr) _ref.node->erase(key);
  return *this;
}

std::string& JSOM::toString(std::string& out, int precision) const {
  if (node() != nullptr) _ref.node->appendJsonString(out, true, precision, 0);
  return out;
}

std::string& JSOM::toCompactString(std::string& out, int precision) const {
  if (node() != nullptr) _ref.node->appendJsonString(out, false, precision, 0);
  return out;
}

JSOM& JSOM::fromString(const std::string& text) {
  JSONData* target = writableNode("fromString()");
  return target != nullptr && target->setFromJsonStlString(text) ? *this : JERROR;
}

JSOM& JSOM::fromString(const char* text) {
  JSONData* target = writableNode("fromString()");
  return target != nullptr && target->setFromJsonString(text) ? *this : JERROR;
}

JSOM& JSOM::fromFile(const char* name) {
  using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
  const auto fail = [](const char* problem) -> JSOM& {
    complain("fromFile()", problem);
    return JERROR;
  };
  File file(std::fopen(name, "rb"), std::fclose);
  if (!file) return fail("could not open file");
  std::fseek(file.get(), 0, SEEK_END);
  const auto size = static_cast<std::size_t>(ftello(file.get()));
  std::fseek(file.get(), 0, SEEK_SET);
  const std::unique_ptr<char, void (*)(void*)> text(static_cast<char*>(std::malloc(size + 1)), std::free);
  if (!text) return fail("could not allocate memory");
  // An empty file ends here too: an item of size zero reads as none.
  if (size + 1 == 0 || std::fread(text.get(), size, 1, file.get()) != 1) return fail("could not read file");
  file.reset();
  text.get()[size] = '\0';
  return fromString(text.get());
}

bool JSOM::toFile(const char* name, int precision) const {
  std::FILE* file = std::fopen(name, "w");
  if (file == nullptr) {
    complain("toFile()", "could not write file");
    return false;
  }
  std::string text;
  toString(text, precision);
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
  return true;
}

std::istream& JSOM::fromStream(std::istream& stream) {
  if (stream.fail()) return stream;
  JSONData* target = writableNode("fromStream()");
  if (target == nullptr || !target->setFromStream(stream)) stream.setstate(std::ios::failbit);
  return stream;
}

std::ostream& JSOM::toStream(std::ostream& stream) const {
  if (node() != nullptr) _ref.node->appendStream(stream);
  return stream;
}

JSOM& JSOM::expandValues() {
  _expandValues(*this);
  return *this;
}

void JSOM::_expandValues(JSOM node) {
  if (node.isString()) return _expandString(node);
  for (int i = 0; i < node.size(); ++i) _expandValues(node[i]);
}

void JSOM::_expandString(JSOM& node) {
  std::string result;
  bool changed = false;
  const std::string text = node.stringValue(EMPTY_STRING).c_str();
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t start = text.find("${", position);
    const std::size_t end = start == std::string::npos ? start : text.find('}', start);
    if (end == std::string::npos) break;
    const std::string name = text.substr(start + 2, end - start - 2);
    result.append(text, position, start - position);
    const char* value = name.empty() ? nullptr : std::getenv(name.c_str());
    if (value != nullptr) {
      result += value;
      changed = true;
    } else {
      result.append(text, start, end + 1 - start);
    }
    position = end + 1;
  }
  if (!changed) return;
  // The rest has no reference, or one that is not closed: both stay verbatim.
  result.append(text, position, std::string::npos);
  node.setString(result);
}

}  // namespace loomstat
