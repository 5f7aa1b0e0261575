// zelkit export DOCUMENT... --to FORMAT [-o FILE]: writes documents in the formats of other viewers.

#include <stdexcept>

#include "document/LayoutFile.h"
#include "document/exports/ExportFormat.h"
#include "verbs/Verb.h"

namespace zelkit {

namespace {

std::string listOfFormats() {
  std::string list;
  for (const ExportFormat* format : ExportFormat::all())
    list += "\n  " + format->name() + std::string(14 - format->name().size(), ' ') + format->description();
  return list;
}

class ExportVerb : public Verb {
 public:
  ExportVerb() : Verb("export", "writes documents in the format of another viewer") {}

  void addOptions(VerbOptions& options) override {
    options.addTexts("DOCUMENT", _documents, "documents of zelconv, gzipped or not; - is standard input",
                     VerbOptions::Need::kRequired);
    options.addText("--to", _format, "the format:" + listOfFormats(), VerbOptions::Need::kRequired);
    options.addText("-o", _output, "the file to write; standard output without it");
  }

  Status run() override {
    const ExportFormat* format = ExportFormat::find(_format);
    if (format == nullptr) {
      std::fprintf(stderr, "zelkit: %s: no such format; there are:%s\n", _format.c_str(),
                   listOfFormats().c_str());
      return Status::kUsage;
    }
    if (_documents.size() > 1 && !format->takesSeveral()) {
      std::fprintf(stderr, "zelkit: %s takes one document\n", _format.c_str());
      return Status::kUsage;
    }
    OutputFile output(_output, inputs());
    const std::unique_ptr<Exporter> exporter = format->makeExporter(output);
    for (const std::string& name : _documents) take(name, *format, *exporter);
    exporter->finish();
    output.commit();
    return _damaged ? Status::kUnreadable : Status::kDone;
  }

 private:
  /// Returns the paths of all that is read.
  std::vector<std::string> inputs() const {
    std::vector<std::string> paths = _documents;
    for (const std::string& document : _documents) paths.push_back(LayoutFile::pathOf(document));
    return paths;
  }

  void take(const std::string& name, const ExportFormat& format, Exporter& exporter) {
    FileSource source(name);
    exporter.documentStart(name);
    const ReadOutcome outcome = exporter.read(source);
    if (!format.takes(outcome.kind))
      throw std::runtime_error(name + ": " + format.name() + " holds no " +
                               (outcome.kind == DocumentKind::kProfile ? "profile" : "timechart"));
    if (!outcome.damage.empty()) {
      std::fprintf(stderr, "zelkit: %s; the part before the damage is exported\n", outcome.damage.c_str());
      _damaged = true;
    }
    exporter.documentEnd();
  }

  std::vector<std::string> _documents;
  std::string _format;
  std::string _output = "-";
  bool _damaged = false;
};

ExportVerb verb;

}  // namespace

}  // namespace zelkit
