#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace loomstat {

/// Memory of a container's members. The slot of a single member comes from a pool: malloc takes four times as
/// much for a pointer, and a deep tree consists of such containers.
template <typename Member>
struct MemberAllocator {
  using value_type = Member;
  Member* allocate(std::size_t count);
  void deallocate(Member* members, std::size_t count) noexcept;
  bool operator==(const MemberAllocator&) const = default;
};

/// One node of a JSON value tree: a tagged value that holds a scalar, a string, an ordered object or an
/// array. Nodes are shared by reference count and belong to one thread; every element of an array and every
/// entry of an object holds one reference. A new node is unset and has no references.
struct JSONData final {
  enum Type : unsigned short {
    kUnset = 0,
    kNull = 1,
    kBoolean = 2,
    kObject = 3,
    kArray = 4,
    kString = 5,
    kLong = 6,
    kDouble = 7,
  };

  /// A member of an object. Keys need not be unique; a look-up finds the last one.
  struct entry {
    std::string key;
    JSONData* value;
  };

  JSONData() = default;
  ~JSONData() { reset(); }
  JSONData(const JSONData&) = delete;
  JSONData& operator=(const JSONData&) = delete;

  // Nodes lie side by side: a file of brackets alone makes one out of every two bytes.
  static void* operator new(std::size_t size);
  static void operator delete(void* node) noexcept;

  // Reading

  /// Returns the number of entries or elements; 0 for anything but a container.
  int length() const;
  /// Returns the element or the entry's value at that index, or null.
  JSONData* getByIndex(int index) const;
  JSONData* getByKey(const std::string& key) const;
  JSONData* getByKey(const char* key) const;
  const std::string* getKeyAtIndex(int index) const;
  /// Returns whether the value's first byte is set, whatever the type; callers check the type first.
  bool booleanValue() const;
  /// Return the number; a double is truncated, and types other than numbers and booleans return 0.
  long long longValue() const;
  double doubleValue() const;
  const std::string* stringValue() const;

  // Writing. A change of type destroys the old content; setting the current type keeps it.

  void setType(int type);
  void setArray() { setType(kArray); }
  void setObject() { setType(kObject); }
  void setNull() { setType(kNull); }
  void setBoolean(bool value);
  void setLong(long long value);
  void setDouble(double value);
  void setString(const std::string& value);
  /// A null text leaves the string as it is.
  void setString(const char* value);
  void reset();
  /// Empties a container and keeps its type.
  void clear();
  /// Removes one member; -1 means the last.
  void erase(int index);
  void erase(const char* key);
  void erase(const std::string& key);
  /// Turns the node into an object first. A null value deletes the key.
  void setByKey(const std::string& key, JSONData* value);
  void setByKey(const char* key, JSONData* value);
  /// Appends if the index is the array's length; a larger index prints a message. An index within the array
  /// fills all slots before it with the value, on one reference, and drops everything else without releasing
  /// it: kept for compatibility. Callers that only append are safe.
  void setByIndex(int index, JSONData* value);
  /// Returns a deep copy without references.
  JSONData* clone() const;
  void copy(const JSONData& source);

  // Printing

  static void quoteJsonString(const std::string& text, std::string& out);
  /// Appends a scalar or a string as plain text, without quotes.
  void appendStringValue(std::string& out, int precision) const;
  void appendJsonString(std::string& out, bool pretty, int precision, int depth) const;
  void toJsonString(std::string& out, bool pretty, int precision) const;
  /// Writes the compact form, with the stream's precision.
  void appendStream(std::ostream& stream) const;

  // Parsing, see JSONParser.h for the language. A failure prints one line on standard error and keeps the
  // members completed before it; an empty text fails silently.

  /// Parses one value. Sets the cursor to its end, or to the place of the failure.
  bool setFromJsonString(const char*& cursor);
  bool setFromStream(std::istream& stream);
  bool setFromJsonStlString(const std::string& text);

  /// Skips white space and comments and classifies the next token without consuming it. Returns false at the
  /// end of the text and for a byte that starts no token. A comma or colon does not change `type`.
  static bool fetchNextType(const char*& cursor, unsigned short& type, bool& comma, bool& colon, bool& end);
  static bool fetchNextType(std::istream& stream, unsigned short& type, bool& comma, bool& colon, bool& end);
  /// Parses a string in double quotes.
  static bool parseJsonString(const char*& cursor, std::string& out);
  static bool parseJsonString(std::istream& stream, std::string& out);
  /// Parses an optional minus, digits, and optionally a point and further digits. Integers wrap at 64 bits. A
  /// failure does not change the node.
  bool parseJsonNumberIntoSelf(const char*& cursor);
  bool parseJsonNumberIntoSelf(std::istream& stream);

  void addReference() { ++_refCount; }
  /// Drops one reference; dropping the last one destroys the node.
  static void release(JSONData* node);

  unsigned short _type = kUnset;
  unsigned short _refCount = 0;
  union {
    bool boolean;
    std::vector<entry*, MemberAllocator<entry*>>* entries;
    std::vector<JSONData*, MemberAllocator<JSONData*>>* elements;
    std::string* string;
    long long integer;
    double real;
  } _value = {};

 private:
  static void destroy(std::vector<JSONData*> nodes);
  void giveUpMembers(std::vector<JSONData*>& unheld);
  void eraseAt(std::size_t index);
  int findKey(const std::string& key) const;
};

}  // namespace loomstat
