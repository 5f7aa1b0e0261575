#include "document/DocumentReader.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <stdexcept>

#include "document/DocumentStream.h"
#include "document/ProfileRows.h"
#include "document/TimechartRows.h"

namespace zelkit {

namespace {

/// Documents of both kinds nest less deeply than this; deeper input is refused before it uses the stack.
constexpr int kDeepest = 8;

/// Passes the parser's events below the root to the reader of the document's kind, which the first key
/// determines.
class Dispatcher : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Dispatcher> {
 public:
  explicit Dispatcher(DocumentVisitor& visitor) : _profile(visitor), _timechart(visitor) {}

  DocumentKind kind() const { return _kind; }
  const std::string& complaint() const { return _complaint; }

  bool Null() { return scalar(Scalar{}); }
  bool Bool(bool) { return scalar(Scalar{}); }
  bool Int(int value) { return Int64(value); }
  bool Uint(unsigned int value) { return Uint64(value); }
  bool Int64(std::int64_t value) { return scalar(Scalar::ofSigned(value)); }
  bool Uint64(std::uint64_t value) { return scalar(Scalar::ofUnsigned(value)); }
  bool Double(double value) { return scalar(Scalar::ofReal(value)); }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return scalar(Scalar::ofText({text, length}));
  }

  bool Key(const char* text, rapidjson::SizeType length, bool) {
    const std::string_view key(text, length);
    if (_depth == 1) return select(key);
    return guarded([&] { rows().key(_depth, key); });
  }

  bool StartObject() { return open(Container::kObject); }
  bool EndObject(rapidjson::SizeType) { return close(); }
  bool StartArray() { return open(Container::kArray); }
  bool EndArray(rapidjson::SizeType) { return close(); }

 private:
  DocumentRows& rows() {
    return _kind == DocumentKind::kTimechart ? _timechart : static_cast<DocumentRows&>(_profile);
  }

  bool complain(std::string reason) {
    _complaint = std::move(reason);
    return false;
  }

  template <typename Step>
  bool guarded(Step step) {
    step();
    return rows().complaint().empty() || complain(rows().complaint());
  }

  bool select(std::string_view key) {
    const DocumentKind kind = ProfileRows::hasSection(key)     ? DocumentKind::kProfile
                              : TimechartRows::hasSection(key) ? DocumentKind::kTimechart
                                                               : DocumentKind::kNone;
    if (kind == DocumentKind::kNone || (_kind != DocumentKind::kNone && kind != _kind))
      return complain("unknown member \"" + std::string(key.substr(0, 40)) + "\"");
    _kind = kind;
    rows().section(key);
    return true;
  }

  bool open(Container container) {
    if (++_depth == 1) return container == Container::kObject || complain("an object was expected");
    if (_depth > kDeepest) return complain("nested more deeply than a document");
    return guarded([&] { rows().open(_depth, container); });
  }

  bool close() {
    const int depth = _depth--;
    return depth == 1 || guarded([&] { rows().close(depth); });
  }

  bool scalar(const Scalar& value) {
    if (_depth == 0) return complain("an object was expected");
    return guarded([&] { rows().scalar(_depth, value); });
  }

  ProfileRows _profile;
  TimechartRows _timechart;
  DocumentKind _kind = DocumentKind::kNone;
  int _depth = 0;
  std::string _complaint;
};

}  // namespace

ReadOutcome readDocument(ByteSource& source, DocumentVisitor& visitor) {
  DocumentStream stream(source);
  Dispatcher dispatcher(visitor);
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<rapidjson::kParseTrailingCommasFlag>(stream, dispatcher);
  ReadOutcome outcome;
  outcome.kind = dispatcher.kind();
  if (!result) {
    const std::string reason =
        dispatcher.complaint().empty() ? rapidjson::GetParseError_En(result.Code()) : dispatcher.complaint();
    if (outcome.kind == DocumentKind::kNone)
      throw std::runtime_error(source.name() + ": not a document of zelconv: " + reason);
    outcome.damage = source.name() + ": byte " + std::to_string(result.Offset()) + ": " + reason;
  } else if (outcome.kind == DocumentKind::kNone) {
    throw std::runtime_error(source.name() + ": not a document of zelconv: no section was found");
  }
  return outcome;
}

}  // namespace zelkit
