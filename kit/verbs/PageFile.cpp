#include "verbs/PageFile.h"

#include <filesystem>
#include <stdexcept>

#include "document/ByteSource.h"
#include "document/exports/JsonOutput.h"

namespace zelkit {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMark = "<!--documents-->";

/// Returns the path of the installed page, or of the one in the build folder.
std::string installedPage() {
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* place : {"../share/zelkit/viewer.html", "../../viewer/viewer.html"})
    if (fs::exists(folder / place, error)) return (folder / place).lexically_normal().string();
  throw std::runtime_error("viewer.html: not installed with zelkit; ./dev viewer makes it, --page names it");
}

/// Returns the text, escaped for a quoted attribute.
std::string quoted(const std::string& text) {
  std::string safe;
  for (const char byte : validUtf8(text)) {
    const bool special = byte == '&' || byte == '<' || byte == '>' || byte == '"';
    safe += special ? "&#" + std::to_string(static_cast<int>(byte)) + ";" : std::string(1, byte);
  }
  return safe;
}

}  // namespace

PageFile::PageFile(OutputFile& output, const std::string& emptyPage) : _output(output) {
  const std::string path = emptyPage.empty() ? installedPage() : emptyPage;
  FileSource source(path);
  _page = wholeText(source);
  _mark = _page.find(kMark);
  if (_mark == std::string::npos) throw std::runtime_error(path + ": not a page for documents");
  _output.write(std::string_view(_page).substr(0, _mark));
}

void PageFile::open(const std::string& name) {
  _output.write(R"(<script type="application/gzip;base64" data-name=")" + quoted(name) + "\">");
}

void PageFile::close() {
  _output.write("</script>\n");
}

void PageFile::finish() {
  _output.write(std::string_view(_page).substr(_mark + kMark.size()));
}

}  // namespace zelkit
