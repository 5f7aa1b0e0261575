// zelkit view RECORDING|CAPTURE|DOCUMENT...: writes a page with the documents in it, a single file.

#include <spawn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <set>

#include "document/DocumentReader.h"
#include "document/LayoutFile.h"
#include "document/exports/PackedDocument.h"
#include "verbs/Documents.h"
#include "verbs/PageFile.h"

namespace zelkit {

namespace {

/// The page shows back-traces of any depth, so all recorded entries are kept.
constexpr std::size_t kFullDepth = 127;

bool exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

void copy(ByteSource& from, ByteSink& to) {
  char block[65536];
  while (const std::size_t count = from.read(block, sizeof block)) to.write({block, count});
}

class ViewVerb : public Verb {
 public:
  ViewVerb() : Verb("view", "makes a page that shows documents, in one file that needs no network") {
    _options.request.depth = kFullDepth;
  }

  void addOptions(VerbOptions& options) override {
    options.addTexts("INPUT", _inputs, "documents, perf.data files or captures",
                     VerbOptions::Need::kRequired);
    options.addText("-o", _output, "the page to write");
    options.addFlag("--open", _open, "open it in the browser");
    options.addText("--page", _page, "the empty page; the installed one without it");
    _options.addTo(options);
  }

  Status run() override {
    Documents documents(_options);
    for (const std::string& input : _inputs)
      if (const Status status = documents.add(input); status != Status::kDone) return status;
    OutputFile output(_output, files());
    PageFile page(output, _page);
    for (const std::string& path : documents.paths()) add(path, page);
    page.finish();
    output.commit();
    if (_open) openInBrowser();
    return _damaged ? Status::kUnreadable : Status::kDone;
  }

 private:
  /// Returns the paths of all that is read.
  std::vector<std::string> files() const {
    std::vector<std::string> paths = {_page};
    for (const std::string& input : _inputs) {
      const std::vector<std::string> own = Source::filesOf(input);
      paths.insert(paths.end(), own.begin(), own.end());
      paths.push_back(LayoutFile::pathOf(input));
    }
    return paths;
  }

  void add(const std::string& path, PageFile& page) {
    const std::string name = nameOf(path);
    page.add(name, [&](ByteSink& sink) {
      FileSource source(path);
      PackedDocument packed(sink);
      const ReadOutcome outcome = readDocument(source, packed);
      packed.finish();
      if (outcome.damage.empty()) return;
      std::fprintf(stderr, "zelkit: %s; the page shows the part before the damage\n", outcome.damage.c_str());
      _damaged = true;
    });
    const std::string layout = LayoutFile::pathOf(path);
    if (path == "-" || !exists(layout)) return;
    page.add(LayoutFile::pathOf(name), [&](ByteSink& sink) {
      FileSource source(layout);
      copy(source, sink);
    });
  }

  /// Returns the file's name, or its path if another document has the same name.
  std::string nameOf(const std::string& path) {
    if (path == "-") return "standard input";
    const std::string name = std::filesystem::path(path).filename().string();
    return _names.insert(name).second ? name : path;
  }

  void openInBrowser() const {
    const std::string program = "xdg-open";
    std::string file = _output;
    char* const arguments[] = {const_cast<char*>(program.c_str()), file.data(), nullptr};
    pid_t child = 0;
    if (posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0)
      std::fprintf(stderr, "zelkit: %s cannot be run to open %s\n", program.c_str(), file.c_str());
  }

  std::vector<std::string> _inputs;
  std::string _output = "report.html";
  std::string _page;
  bool _open = false;
  bool _damaged = false;
  ConversionOptions _options;
  std::set<std::string> _names;
};

ViewVerb verb;

}  // namespace

}  // namespace zelkit
