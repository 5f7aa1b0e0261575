#pragma once

#include <cstddef>
#include <string>

#include "document/OutputFile.h"
#include "document/exports/Base64Output.h"
#include "document/exports/GzipOutput.h"

namespace zelkit {

/// Writes the viewer's page with embedded documents, see docs/documents-in-the-page.md.
class PageFile {
 public:
  /// Starts with the empty page at the path, or the installed one if the path is empty. Throws
  /// std::runtime_error with "PATH: reason".
  PageFile(OutputFile& output, const std::string& emptyPage);

  /// Adds a document or a layout file. `write(sink)` writes its bytes.
  template <typename Write>
  void add(const std::string& name, Write write) {
    open(name);
    Base64Output text(_output);
    GzipOutput packed(text, kLevel);
    write(packed);
    packed.finish();
    text.finish();
    close();
  }

  /// Writes the rest of the page.
  void finish();

 private:
  /// Higher levels compress columns of numbers little better, in twice the time.
  static constexpr int kLevel = 4;

  void open(const std::string& name);
  void close();

  OutputFile& _output;
  std::string _page;
  std::size_t _mark = 0;
};

}  // namespace zelkit
