/// The rows of a profile document, see docs/profile-document.md.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "document/DocumentRows.h"
#include "document/DocumentVisitor.h"

namespace zelkit {

class ProfileRows : public DocumentRows {
 public:
  explicit ProfileRows(DocumentVisitor& visitor) : _visitor(visitor) {}

  /// Returns whether a profile document has a section of that name.
  static bool hasSection(std::string_view key);

  void section(std::string_view key) override;
  void key(int depth, std::string_view text) override;
  void open(int depth, Container container) override;
  void close(int depth) override;
  void scalar(int depth, const Scalar& value) override;

 private:
  static constexpr std::size_t kMostColumns = 8;
  struct Section;
  static const std::array<Section, 6> kSections;

  void describe(const Scalar& value);
  void column(const Scalar& value);
  void listElement(const Scalar& value);
  void pairElement(const Scalar& value);
  void finishPair();
  void finishRow();

  std::uint64_t integer(std::size_t column);
  std::uint32_t word(std::size_t column);
  double real(std::size_t column);

  void handProcess();
  void handLibrary();
  void handFile();
  void handFunction();
  void handSample();

  DocumentVisitor& _visitor;
  const Section* _section = nullptr;
  std::string _key;
  bool _inData = false;
  /// The row that is being read: its columns, its one text and its one list.
  std::array<Scalar, kMostColumns> _columns;
  std::size_t _columnCount = 0;
  std::string _text;
  std::vector<std::uint32_t> _words;
  std::vector<TraceEntry> _trace;
  std::vector<SourceLine> _lines;
  std::array<std::uint64_t, 2> _pair{};
  std::size_t _pairCount = 0;
};

}  // namespace zelkit
