#pragma once

#include <iosfwd>
#include <string>

#include "json/JSONData.h"

namespace loomstat {

/// Handle for reading and building a document: it refers to a node of a value tree, or to a slot in a
/// container where a node could be. Look-ups return handles by value, so that doc["a"][0] chains.
///
/// A look-up of a missing member returns a pending handle on the empty slot, and a later write through it
/// creates the member. A look-up through such a handle counts as a write: doc["a"]["b"] leaves an empty
/// object "a". The key of a pending handle belongs to the caller and must outlive the handle.
///
/// Nothing throws. A failure prints one line on standard error and returns an invalid handle, whose accessors
/// return their defaults.
class JSOM {
 public:
  JSOM() = default;
  explicit JSOM(JSONData* node) : JSOM(node, static_cast<JSONData*>(nullptr)) {}
  JSOM(JSONData* node, JSONData* parent);
  JSOM(JSONData* parent, int index);
  JSOM(JSONData* parent, const char* key);
  JSOM(JSONData* parent, const std::string& key);
  JSOM(const JSOM& other);
  ~JSOM();

  /// Deep assignment: copies the tree of a source that holds a node, and does nothing for any other.
  JSOM& operator=(const JSOM& source);
  /// The same, but a source without a node sets the boolean false.
  JSOM& copy(const JSOM& source);

  /// Return a handle on the member or element, which may be pending.
  JSOM at(const std::string& key);
  JSOM at(const char* key);
  /// Index -1, like the size, is the position after the last element.
  JSOM at(int index);
  JSOM operator[](const std::string& key);
  JSOM operator[](const char* key);
  JSOM operator[](int index);

  // Return the default if the handle holds no suitable value. A conversion, between a string and a number or
  // boolean, also stores the converted value in the node.
  long long longValue(long long defaultValue) const;
  bool booleanValue(bool defaultValue) const;
  double doubleValue(double defaultValue) const;
  const std::string& stringValue(const std::string& defaultValue) const;
  const char* stringValuePtr(const char* defaultValue) const;

  // Create the node if there is none yet. A null text sets null.
  JSOM& setString(const std::string& value);
  JSOM& setString(const char* value);
  JSOM& setDouble(double value);
  JSOM& setBoolean(bool value);
  JSOM& setLong(long long value);

  /// Returns the number of members or elements; 0 for anything but a container.
  int size() const;
  /// Returns the key of an object's member at that index, or null.
  const std::string* key(int index) const;
  /// Removes all members or elements.
  JSOM& clear();
  /// Remove one member or element.
  JSOM& erase(int index);
  JSOM& erase(const char* key);
  JSOM& erase(const std::string& key);

  /// Returns whether the handle holds a node.
  bool found() const { return _kind == Kind::node; }
  bool isNull() const { return hasType(JSONData::kNull); }
  bool isBoolean() const { return hasType(JSONData::kBoolean); }
  bool isObject() const { return hasType(JSONData::kObject); }
  bool isArray() const { return hasType(JSONData::kArray); }
  bool isString() const { return hasType(JSONData::kString); }
  bool isNumber() const { return hasType(JSONData::kLong) || hasType(JSONData::kDouble); }

  /// Append the tree, indented or compact.
  std::string& toString(std::string& out, int precision = defaultPrecision) const;
  std::string& toCompactString(std::string& out, int precision = defaultPrecision) const;

  // Loading returns this handle, or JERROR if the text has an error; what was read before the error stays.
  JSOM& fromString(const std::string& text);
  JSOM& fromString(const char* text);
  JSOM& fromFile(const char* name);
  /// Writes the indented form. Returns false if the file cannot be written.
  bool toFile(const char* name, int precision = defaultPrecision) const;
  std::istream& fromStream(std::istream& stream);
  std::ostream& toStream(std::ostream& stream) const;

  /// Replaces ${NAME} by the value of the environment variable in all strings of the tree except keys.
  /// References to variables that are not set stay verbatim, and a substituted value is not scanned again.
  JSOM& expandValues();

  static JSOM JERROR;       ///< the invalid handle
  static const JSOM BLANK;  ///< a handle on nothing
  static const std::string EMPTY_STRING;
  static int defaultPrecision;  ///< decimals of a number that becomes a string, 4 unless changed

 private:
  enum class Kind { blank, node, pendingText, pendingString, pendingIndex, invalid };

  union Reference {
    JSONData* node;
    const char* text;
    const std::string* string;
    int index;
  };

  struct Invalid {};
  explicit JSOM(Invalid) : _kind(Kind::invalid), _ref{.index = -1} {}
  JSOM(JSONData* parent, Kind kind, Reference ref);

  bool hasType(JSONData::Type type) const { return _kind == Kind::node && _ref.node->_type == type; }
  JSONData* node() const { return _kind == Kind::node ? _ref.node : nullptr; }
  void makeInfoNode(const char* caller);
  JSONData* writableNode(const char* caller);
  bool makeContainer(const char* caller, JSONData::Type type);
  template <typename Key>
  JSOM lookup(const Key& key, const char* nodeCaller);
  JSOM lookupText(const char* key, const char* caller);
  JSOM lookupIndex(int index, const char* caller);
  std::string* stringNode() const;
  static void _expandValues(JSOM node);
  static void _expandString(JSOM& node);

  JSONData* _parent = nullptr;  ///< the container that the handle came from
  Kind _kind = Kind::blank;
  Reference _ref = {};
};

}  // namespace loomstat
