/// The entries of a timechart document, see docs/timechart-document.md.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "document/DocumentRows.h"
#include "document/DocumentVisitor.h"

namespace zelkit {

class TimechartRows : public DocumentRows {
 public:
  explicit TimechartRows(DocumentVisitor& visitor) : _visitor(visitor) {}

  /// Returns whether a timechart document has a section of that name.
  static bool hasSection(std::string_view key) { return key == "entries"; }

  void section(std::string_view /*key*/) override {}
  void key(int depth, std::string_view text) override;
  void open(int depth, Container container) override;
  void close(int depth) override;
  void scalar(int depth, const Scalar& value) override;

 private:
  void headMember(const Scalar& value);
  void hint(const Scalar& value);
  void pointElement(const Scalar& value);
  void finishPoint();

  DocumentVisitor& _visitor;
  std::string _key;
  std::string _hint;
  SeriesHead _head;
  bool _started = false;
  bool _inData = false;
  /// The point that is being read: time and value, or time, code and two texts.
  std::array<Scalar, 2> _numbers;
  std::array<std::string, 2> _texts;
  std::size_t _count = 0;
};

}  // namespace zelkit
