// Parses a random JSON text with both parsers, which must agree, and prints the tree: its compact form must
// parse back to an equal tree.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "json/JSONData.h"

namespace {

using loomstat::JSONData;

constexpr int kPrecision = 12;

bool sameNumber(const JSONData& a, const JSONData& b) {
  if (a._type == JSONData::kLong && b._type == JSONData::kLong) return a.longValue() == b.longValue();
  const double difference = std::fabs(a.doubleValue() - b.doubleValue());
  return difference <= 1e-11 + 1e-11 * std::fabs(a.doubleValue());
}

bool isNumber(const JSONData& node) {
  return node._type == JSONData::kLong || node._type == JSONData::kDouble;
}

/// Equal but for what printing does to a double: it loses decimals, and its point if there are none.
bool same(const JSONData& a, const JSONData& b) {
  if (isNumber(a) && isNumber(b)) return sameNumber(a, b);
  if (a._type != b._type || a.length() != b.length()) return false;
  if (a._type == JSONData::kString) return *a.stringValue() == *b.stringValue();
  if (a._type == JSONData::kBoolean) return a.booleanValue() == b.booleanValue();
  for (int i = 0; i < a.length(); ++i) {
    if (a._type == JSONData::kObject && *a.getKeyAtIndex(i) != *b.getKeyAtIndex(i)) return false;
    if (!same(*a.getByIndex(i), *b.getByIndex(i))) return false;
  }
  return true;
}

/// Whether the parser can read back how the tree is printed: numbers beyond a long's range have no such form,
/// and a NUL ends the text.
bool canBeReadBack(const JSONData& node) {
  if (node._type == JSONData::kDouble) return std::fabs(node._value.real) < 1e15;
  if (node._type == JSONData::kString) return node.stringValue()->find('\0') == std::string::npos;
  for (int i = 0; i < node.length(); ++i) {
    const std::string* key = node.getKeyAtIndex(i);
    if (key != nullptr && key->find('\0') != std::string::npos) return false;
    if (!canBeReadBack(*node.getByIndex(i))) return false;
  }
  return true;
}

void checkPrinters(const JSONData& node) {
  std::string pretty;
  std::string compact;
  std::ostringstream stream;
  stream.precision(kPrecision);
  node.toJsonString(pretty, true, kPrecision);
  node.toJsonString(compact, false, kPrecision);
  node.appendStream(stream);
  if (stream.str() != compact) std::abort();
  if (!canBeReadBack(node)) return;
  for (const std::string& text : {pretty, compact}) {
    JSONData again;
    if (!again.setFromJsonStlString(text) || !same(node, again)) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  JSONData fromText;
  const bool textGood = fromText.setFromJsonStlString(text);
  if (text.find('\0') == std::string::npos) {  // which ends the one text and not the other
    JSONData fromStream;
    std::istringstream stream(text);
    std::string one;
    std::string other;
    if (fromStream.setFromStream(stream) != textGood) std::abort();
    fromText.toJsonString(one, false, kPrecision);
    fromStream.toJsonString(other, false, kPrecision);
    if (one != other) std::abort();
  }
  if (textGood) checkPrinters(fromText);
  return 0;
}
