/// Base of the readers of both kinds of documents: the parser's events with their depth.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace zelkit {

enum class Container { kArray, kObject };

/// A value of a document other than an object or array.
struct Scalar {
  enum class Kind { kNothing, kUnsigned, kNegative, kReal, kText };

  static Scalar ofUnsigned(std::uint64_t value) {
    return {Kind::kUnsigned, value, static_cast<double>(value), {}};
  }
  static Scalar ofSigned(std::int64_t value) {
    return {value < 0 ? Kind::kNegative : Kind::kUnsigned,
            static_cast<std::uint64_t>(value),
            static_cast<double>(value),
            {}};
  }
  static Scalar ofReal(double value) { return {Kind::kReal, 0, value, {}}; }
  static Scalar ofText(std::string_view text) { return {Kind::kText, 0, 0.0, text}; }

  bool isNumber() const { return kind != Kind::kNothing && kind != Kind::kText; }
  /// Returns whether the value is an unsigned integer of at most 32 bits.
  bool isWord() const {
    return kind == Kind::kUnsigned && integer <= std::numeric_limits<std::uint32_t>::max();
  }

  Kind kind = Kind::kNothing;
  /// A negative number is stored as its two's complement.
  std::uint64_t integer = 0;
  double real = 0.0;
  std::string_view text;
};

/// Receives the events of one kind of document. The depth counts open containers: 1 is the root, whose keys
/// are sections.
class DocumentRows {
 public:
  virtual ~DocumentRows() = default;

  /// A key of the root object starts a section.
  virtual void section(std::string_view key) = 0;
  /// A key of an object at that depth.
  virtual void key(int depth, std::string_view text) = 0;
  /// `depth` counts the container that opens or closes.
  virtual void open(int depth, Container container) = 0;
  virtual void close(int depth) = 0;
  virtual void scalar(int depth, const Scalar& value) = 0;

  /// Returns an error message about the document; empty if there is no error so far.
  const std::string& complaint() const { return _complaint; }

 protected:
  void complain(std::string reason) {
    if (_complaint.empty()) _complaint = std::move(reason);
  }

 private:
  std::string _complaint;
};

}  // namespace zelkit
