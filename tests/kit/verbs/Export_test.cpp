// Edge cases of the verbs that read documents: wrong formats, pipes, damage, names with markup.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "capture/TemporaryFolder.h"
#include "kit/document/Documents.h"
#include "kit/support/Zelkit.h"

namespace zelkit {
namespace {

class ExportVerb : public testing::Test {
 protected:
  /// Writes the text to a file and returns its path.
  std::string file(const std::string& name, const std::string& text) {
    std::ofstream(_folder.path() + "/" + name) << text;
    return _folder.path() + "/" + name;
  }

  TemporaryFolder _folder;
};

TEST_F(ExportVerb, ListsTheFormatsForAnUnknownOne) {
  const auto outcome = ::runZelkit("export " + file("a.json", kProfileDocument) + " --to nosuch");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.said.find("nosuch: no such format"), std::string::npos) << outcome.said;
  for (const char* format :
       {"cpuprofile", "firefox", "folded", "json", "pprof", "speedscope", "trace-event", "tsv"})
    EXPECT_NE(outcome.said.find(std::string("\n  ") + format + " "), std::string::npos) << format;
}

TEST_F(ExportVerb, ReadsAPipeAndEndsSilentlyWithItsReader) {
  const std::string document = file("a.json", kProfileDocument);
  const auto piped = ::runZelkit("export - --to folded <" + document + "");
  EXPECT_EQ(piped.status, 0);
  EXPECT_EQ(piped.said.rfind("tool;main;work 1\n", 0), 0U) << piped.said;
  const auto closed = ::runZelkit("export " + document + " --to json | head -c 1");
  EXPECT_EQ(closed.said, "{");
}

TEST_F(ExportVerb, ReportsDamage) {
  const std::string cut = file("cut.json", kProfileDocument.substr(0, kProfileDocument.size() - 40));
  const auto damaged = ::runZelkit("export " + cut + " --to folded");
  EXPECT_EQ(damaged.status, 2);
  EXPECT_NE(damaged.said.find("cut.json: byte "), std::string::npos) << damaged.said;
  EXPECT_NE(damaged.said.find("tool;main;work 1\n"), std::string::npos) << damaged.said;
}

TEST_F(ExportVerb, NeverOverwritesAFileThatItReads) {
  const std::string first = file("a.json", kProfileDocument);
  const std::string second = file("b.json", kProfileDocument);
  const std::string layout = file("b.json.layout.json", R"({"mappings":[]})");
  const std::string page = file("page.html", "<body><!--documents-->");
  const std::string link = _folder.path() + "/link";
  std::filesystem::create_hard_link(second, link);
  const std::string both = first + " " + second;
  for (const std::string& run : {
           "export " + both + " --to folded -o " + first,
           "export " + both + " --to folded -o " + second,
           "export " + both + " --to folded -o " + link,
           "export " + both + " --to folded -o " + layout,
           "export - --to folded -o " + second + " <" + second,
           "view " + both + " --page " + page + " -o " + link,
           "view " + both + " --page " + page + " -o " + layout,
           "view " + both + " --page " + page + " -o " + page,
       }) {
    const auto refused = ::runZelkit(run);
    EXPECT_EQ(refused.status, 2) << run;
    EXPECT_NE(refused.said.find("is the input itself"), std::string::npos) << run << refused.said;
  }
  std::ifstream kept(second);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), kProfileDocument);
}

TEST_F(ExportVerb, EscapesNamesOfDocumentsInAPage) {
  std::string hostile = kProfileDocument;
  hostile.replace(hostile.find("\"work\""), 6, R"("</script><b>")");
  const std::string page = file("page.html", "<body><!--documents--><script>1</script>");
  const auto made = ::runZelkit("view " + file("a&\"<b>.json", hostile).insert(0, "'") + "' --page " + page +
                                " -o " + _folder.path() + "/report.html");
  EXPECT_EQ(made.status, 0) << made.said;
  std::ifstream stream(_folder.path() + "/report.html");
  const std::string report{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_EQ(
      report.rfind(
          "<body><script type=\"application/gzip;base64\" data-name=\"a&#38;&#34;&#60;b&#62;.json\">H4sI", 0),
      0U)
      << report.substr(0, 200);
  EXPECT_EQ(report.find("<b>"), std::string::npos);
  EXPECT_NE(report.find("</script>\n<script>1</script>"), std::string::npos);
}

}  // namespace
}  // namespace zelkit
