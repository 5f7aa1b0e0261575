#pragma once

#include <cstdint>
#include <optional>

#include "document/exports/JsonOutput.h"

namespace zelkit {

/// JSON of tables that are objects of columns: arrays of one length.
class JsonColumns : public JsonOutput {
 public:
  using JsonOutput::JsonOutput;

  /// Writes an object; `write` writes its members.
  template <typename Write>
  void object(std::string_view name, Write write) {
    key(name);
    startObject();
    write();
    endObject();
  }

  /// Writes a column; `write` writes one value for each element.
  template <typename Elements, typename Write>
  void column(std::string_view name, const Elements& elements, Write write) {
    key(name);
    startArray();
    for (const auto& element : elements) write(element);
    endArray();
  }

  template <typename Elements, typename Value>
  void constant(std::string_view name, const Elements& elements, Value content) {
    column(name, elements, [&](const auto&) { value(content); });
  }

  template <typename Elements>
  void nulls(std::string_view name, const Elements& elements) {
    column(name, elements, [&](const auto&) { null(); });
  }

  void noElements(std::string_view name) {
    key(name);
    startArray();
    endArray();
  }

  template <typename Number>
  void valueOrNull(const std::optional<Number>& number) {
    number ? value(*number) : null();
  }

  template <typename Number>
  void valueOrMinusOne(const std::optional<Number>& number) {
    number ? value(*number) : value(-1);
  }

  void nullMember(std::string_view name) {
    key(name);
    null();
  }

  /// Writes how many rows the table has.
  void length(std::size_t rows) { member("length", static_cast<std::uint64_t>(rows)); }

  /// Writes a time in milliseconds since another, to whole nanoseconds: all that documents have.
  void milliseconds(double seconds, double since);
};

}  // namespace zelkit
