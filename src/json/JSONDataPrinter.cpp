// The printing half of JSONData.

#include <algorithm>
#include <ostream>

#include "json/JSONData.h"
#include "json/JsonText.h"

namespace loomstat {

namespace {

constexpr int kWidestIndent = 50;

/// Appends a line break and one space per level, fifty at most.
void appendIndent(std::string& out, int levels) {
  out += '\n';
  out.append(static_cast<std::size_t>(std::clamp(levels, 0, kWidestIndent)), ' ');
}

}  // namespace

void JSONData::quoteJsonString(const std::string& text, std::string& out) {
  appendQuoted(out, text.data(), text.size());
}

void JSONData::appendStringValue(std::string& out, int precision) const {
  switch (_type) {
    case kLong:
      out += std::to_string(_value.integer);
      break;
    case kDouble:
      out += trimmedDecimals(_value.real, precision);
      break;
    case kString:
      out += *_value.string;
      break;
    case kBoolean:
      out += booleanValue() ? "true" : "false";
      break;
    case kNull:
      out += "null";
      break;
    default:
      break;
  }
}

void JSONData::appendJsonString(std::string& out, bool pretty, int precision, int depth) const {
  if (_type == kString) return quoteJsonString(*_value.string, out);
  if (_type != kObject && _type != kArray) return appendStringValue(out, precision);
  out += _type == kObject ? '{' : '[';
  for (int i = 0; i < length(); ++i) {
    if (i > 0) out += ',';
    if (pretty) appendIndent(out, depth + 1);
    if (_type == kObject) {
      quoteJsonString(*getKeyAtIndex(i), out);
      out += pretty ? ": " : ":";
    }
    getByIndex(i)->appendJsonString(out, pretty, precision, depth + 1);
  }
  if (pretty) appendIndent(out, depth);
  out += _type == kObject ? '}' : ']';
}

void JSONData::toJsonString(std::string& out, bool pretty, int precision) const {
  out.clear();
  appendJsonString(out, pretty, precision, 0);
}

void JSONData::appendStream(std::ostream& stream) const {
  if (!stream.good()) return;
  if (_type != kObject && _type != kArray) {
    std::string text;
    appendJsonString(text, false, static_cast<int>(stream.precision()), 0);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    return;
  }
  stream.put(_type == kObject ? '{' : '[');
  for (int i = 0; i < length() && stream.good(); ++i) {
    if (i > 0) stream.put(',');
    if (_type == kObject) {
      std::string key;
      quoteJsonString(*getKeyAtIndex(i), key);
      key += ':';
      stream.write(key.data(), static_cast<std::streamsize>(key.size()));
    }
    getByIndex(i)->appendStream(stream);
  }
  stream.put(_type == kObject ? '}' : ']');
}

}  // namespace loomstat
