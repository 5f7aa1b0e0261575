#include "json/PerfJSONWriter.h"

#include <gtest/gtest.h>

#include "run/Settings.h"
#include "support/Conversion.h"
#include "timechart/ChartEntry.h"

namespace {

/// Writes one object with a number, an array of two records, a series and an empty array.
std::string exampleDocument(bool labels, bool whiteSpace, bool readable) {
  const Conversion folder;
  gReadable = readable;
  PerfJSONWriter writer(labels, whiteSpace);
  writer.open(folder.path("out").c_str());
  writer.newElementStart(nullptr);
  writer.writeNamed("a", 1U);
  writer.writeArrayStart("b");
  for (const auto& [x, y] : {std::pair(2U, "s"), std::pair(3U, "t")}) {
    writer.writeStructStart();
    writer.writeNamed("x", x);
    writer.writeNamed("y", y);
    writer.writeStructEnd();
  }
  writer.writeArrayEnd();
  writer.writeArrayStart("c");
  writer.writeJson("4");
  writer.writeJson("5");
  writer.writeArrayEnd();
  writer.writeArrayStart("d");
  writer.writeArrayEnd();
  writer.close();
  writer.close();
  return folder.read("out");
}

TEST(PerfJSONWriter, WritesEachRecordOnANewLineAfterItsComma) {
  EXPECT_EQ(exampleDocument(true, false, true),
            "{\"a\":1,\"b\":[\n"
            "{\"x\":2,\"y\":\"s\"}\n"
            ",{\"x\":3,\"y\":\"t\"},],\"c\":[4,5],\"d\":[]}\n");
  EXPECT_EQ(exampleDocument(true, false, false),
            "{\"a\":1,\"b\":[{\"x\":2,\"y\":\"s\"},{\"x\":3,\"y\":\"t\"},],\"c\":[4,5],\"d\":[]}\n");
}

TEST(PerfJSONWriter, IndentsByOneSpacePerLevel) {
  EXPECT_EQ(exampleDocument(true, true, true),
            "{\n \"a\": 1,\n \"b\": [\n\n  {\n   \"x\": 2,\n   \"y\": \"s\"\n  }\n,\n  {\n   \"x\": 3,\n   "
            "\"y\": \"t\"\n"
            "  },\n  \n ],\n \"c\": [\n  4,5\n ],\n \"d\": [\n  \n ]\n}\n");
}

TEST(PerfJSONWriter, WritesNoBracesAroundRecordsWithoutLabels) {
  const Conversion folder;
  PerfJSONWriter writer(true, false);
  EXPECT_EQ(writer.open(nullptr), -1);
  EXPECT_EQ(writer.open(folder.path("out").c_str()), 0);
  writer.newElementStart(nullptr);
  writer.writeArrayStart("data");
  writer.setIncludeLabels(false);
  for (const unsigned int value : {1U, 2U}) {
    writer.writeStructStart();
    writer.writeNamed("x", value);
    writer.writeNamed("y", 1.5);
    writer.writeStructEnd();
  }
  writer.writeJson("[7,8]");
  writer.writeArrayEnd();
  writer.setIncludeLabels(true);
  const unsigned long long values[] = {9, 9, 9};
  writer.writeNamed("counts", values, 3U);
  writer.writeNamed("quote\"", static_cast<unsigned short>(7));
  writer.close();
  EXPECT_EQ(folder.read("out"), "{\"data\":[\n1,1.5\n,2,1.5,[7,8]],\"counts\":[3,3,3],\"quote\"\":7}\n");
}

/// Records the operations called, and passes them on to PerfJSONWriter.
class NotingWriter : public PerfJSONWriter {
 public:
  using PerfJSONWriter::PerfJSONWriter;
  using PerfJSONWriter::writeJson;
  using PerfJSONWriter::writeNamed;
  void writeArrayStart(const char* label) override {
    noted += '[';
    PerfJSONWriter::writeArrayStart(label);
  }
  void writeArrayEnd() override {
    noted += ']';
    PerfJSONWriter::writeArrayEnd();
  }
  void writeNamed(const char* label, unsigned long long value) override {
    noted += 'l';
    PerfJSONWriter::writeNamed(label, value);
  }
  void writeNamed(const char* label, unsigned int value) override {
    noted += 'i';
    PerfJSONWriter::writeNamed(label, value);
  }
  void writeJson(const char* text) override {
    noted += text;
    PerfJSONWriter::writeJson(text);
  }

  std::string noted;
};

/// Writes two rows and a series, the second row and the series after a value that has waited for the next end
/// of an array.
std::string bulk(PerfJSONWriter& writer) {
  const Conversion folder;
  writer.open(folder.path("out").c_str());
  writer.setIncludeLabels(false);
  writer.writeArrayStart(nullptr);
  BackTraceEntries entries;
  const BackTraceEntries::Index trace[] = {entries.add({5, 6}), entries.add({~0ULL, ~0U})};
  const auto writeRow = [&](double time) {
    writer.writeRow(Named{"key", 1U}, Named{"time", time},
                    Named{"bt", BackTrace{entries, trace, "ip", "mapkey"}});
  };
  writeRow(2.5);
  writer.writeJson("5");
  writeRow(-1e17);
  writer.writeJson("5");
  const ChartEntryS samples[] = {{1.5, 9}, {2.5, 8}};
  ChartEntry(writer).writeData(samples);
  writer.writeArrayEnd();
  writer.close();
  return folder.read("out");
}

TEST(PerfJSONWriter, CallsEveryOperationOfADerivedWriter) {
  NotingWriter derived(true, false);
  DocumentWriter own(true, false);
  const char* const document =
      "[[1,2.5,[[5,6,],[18446744073709551615,4294967295,],],],"
      "[1,-1.000000e+17,[[5,6,5],[18446744073709551615,4294967295,],],],"
      "[5,[1.500000,9],[2.500000,8]],]\n";
  EXPECT_EQ(bulk(derived), document);
  EXPECT_EQ(derived.noted, "[[i[[li][li]]]5[i[[li][li]]]5[[1.500000,9][2.500000,8]]]");
  EXPECT_EQ(bulk(own), document);
}

TEST(PerfJSONWriter, ContinuesWithoutAFileAndPrintsWhyOnlyWhenVerbose) {
  const std::pair<const char*, const char*> cases[] = {{"/nonexistent/out", "No such file or directory"},
                                                       {"/dev/full", "No space left on device"}};
  for (const auto& [name, reason] : cases)
    for (gVerbosity = 0; gVerbosity <= 1; ++gVerbosity) {
      testing::internal::CaptureStdout();
      PerfJSONWriter writer(true, false);
      EXPECT_EQ(writer.open(name), 0);
      writer.newElementStart(nullptr);
      writer.close();
      writer.close();
      const std::string line = std::string("Document not written to ") + name + ": " + reason + "\n";
      EXPECT_EQ(testing::internal::GetCapturedStdout(), gVerbosity > 0 ? line : "");
    }
}

}  // namespace
