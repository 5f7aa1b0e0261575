// The document itself as strict JSON: no comma before a closing bracket, control bytes escaped, names in
// UTF-8. Numbers keep their digits.

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <stdexcept>

#include "document/DocumentStream.h"
#include "document/ProfileRows.h"
#include "document/TimechartRows.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/JsonOutput.h"

namespace zelkit {

namespace {

/// Writes each token of the parser.
class Copy : public rapidjson::Writer<JsonStream> {
 public:
  explicit Copy(JsonStream& stream) : Writer(stream) {}

  DocumentKind kind() const { return _kind; }

  bool RawNumber(const char* digits, rapidjson::SizeType length, bool) {
    return RawValue(digits, length, rapidjson::kNumberType);
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    const std::string valid = validUtf8({text, length});
    return Writer::String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
  }
  bool Key(const char* text, rapidjson::SizeType length, bool copied) {
    if (_kind == DocumentKind::kNone) _kind = kindOf({text, length});
    return _kind != DocumentKind::kNone && String(text, length, copied);
  }

 private:
  static DocumentKind kindOf(std::string_view firstKey) {
    return ProfileRows::hasSection(firstKey)     ? DocumentKind::kProfile
           : TimechartRows::hasSection(firstKey) ? DocumentKind::kTimechart
                                                 : DocumentKind::kNone;
  }

  DocumentKind _kind = DocumentKind::kNone;
};

class StrictJson : public Exporter {
 public:
  explicit StrictJson(OutputFile& output) : _stream(output) {}

  ReadOutcome read(ByteSource& source) override {
    DocumentStream bytes(source);
    Copy copy(_stream);
    rapidjson::Reader reader;
    constexpr unsigned int kFlags = rapidjson::kParseTrailingCommasFlag |
                                    rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;
    const rapidjson::ParseResult result = reader.Parse<kFlags>(bytes, copy);
    if (copy.kind() == DocumentKind::kNone)
      throw std::runtime_error(source.name() + ": not a document of zelconv");
    if (!result)
      throw std::runtime_error(source.name() + ": byte " + std::to_string(result.Offset()) + ": " +
                               rapidjson::GetParseError_En(result.Code()));
    return {copy.kind(), {}};
  }

  void finish() override { _stream.Flush(); }

 private:
  JsonStream _stream;
};

const ExportFormat format("json", "the same content as strict JSON, for jq and scripts",
                          {.profile = true, .timechart = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<StrictJson>(output);
                          });

}  // namespace

}  // namespace zelkit
