#include "document/DocumentReader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "document/ProfileTables.h"

namespace zelkit {
namespace {

const std::string kProfile =
    R"({"Description":{"Version":"1.0","Start Time":5,"duration":0.25},
 "processes": {"descriptions": {"key": "text", "pid": "text"}, "data": [[4,7,7,"a tool",],]},
 "libraries": {"descriptions": {}, "data": [[5,4,"/app/tool",65536,18446744073709551615,],]},
 "files": {"descriptions": {}, "data": [[1,"work.cpp",[[6,12,],],],]},
 "functions": {"descriptions": {}, "data": [[6,"work\n",65792,256,[5,],],]},
 "samples": {"descriptions": {}, "data": [[1,65796,6,-1.5,0,4,7,[[65796,6,],[65544,5,],],],[2,3,6,1.75,1,4,7,[],],]}})";

const std::string kTimechart = R"({"entries":[
{"id":"cpu-0-b","name":"CPU 0 Busy","treeId":"b","type":"binary","class":"cpu:busy","show":1,"tip":"t","hints":{"white":"#000000","black":"#ffffff"},"data":[[0.001000,1],[0.006000, 0]]}
,{"id":"evt","name":"Events","type":"events","class":"proc:events","show":0,"hints":{},"data":[[-1.5,-7,"frame","a b",],]}
,]})";

/// Records each row as a line.
class Notes : public DocumentVisitor {
 public:
  std::string text() const { return _notes.str(); }

  void description(std::string_view name, std::string_view value) override {
    _notes << name << '=' << value << '\n';
  }
  void process(const ProcessRow& row) override {
    _notes << "process " << row.key << ' ' << row.pid << ' ' << row.tid << ' ' << row.name << '\n';
  }
  void library(const LibraryRow& row) override {
    _notes << "library " << row.key << ' ' << row.pidKey << ' ' << row.name << ' ' << row.start << ' '
           << row.size << '\n';
  }
  void file(const FileRow& row) override {
    _notes << "file " << row.key << ' ' << row.name;
    for (const SourceLine& line : row.functions) _notes << ' ' << line.functionKey << ':' << line.line;
    _notes << '\n';
  }
  void function(const FunctionRow& row) override {
    _notes << "function " << row.key << ' ' << row.name << ' ' << row.start << ' ' << row.size;
    for (const std::uint32_t key : row.libraryKeys) _notes << ' ' << key;
    _notes << '\n';
  }
  void sample(const SampleRow& row) override {
    _notes << "sample " << row.key << ' ' << row.ip << ' ' << row.mapKey << ' ' << row.time << ' ' << row.cpu
           << ' ' << row.pidKey << ' ' << row.tid;
    for (const TraceEntry& entry : row.trace) _notes << ' ' << entry.address << '>' << entry.key;
    _notes << '\n';
  }
  void seriesStart(const SeriesHead& head) override {
    _notes << "series " << head.id << '|' << head.name << '|' << head.treeId << '|' << head.type << '|'
           << head.chartClass << '|' << head.tip << '|' << head.colourOnWhite << '|' << head.colourOnBlack
           << '|' << head.shown << '\n';
  }
  void point(double time, double value) override { _notes << "point " << time << ' ' << value << '\n'; }
  void event(const SeriesEvent& event) override {
    _notes << "event " << event.time << ' ' << event.code << ' ' << event.name << '|' << event.arguments
           << '\n';
  }
  void seriesEnd() override { _notes << "end\n"; }

 private:
  std::ostringstream _notes;
};

ReadOutcome read(std::string_view text, DocumentVisitor& visitor) {
  MemorySource source(text, "a.json");
  return readDocument(source, visitor);
}

TEST(DocumentReader, VisitsEveryRowOfAProfile) {
  Notes notes;
  const ReadOutcome outcome = read(kProfile, notes);
  EXPECT_EQ(outcome.kind, DocumentKind::kProfile);
  EXPECT_EQ(outcome.damage, "");
  EXPECT_EQ(
      notes.text(),
      "Version=1.0\nStart Time=5\nduration=0.25\nprocess 4 7 7 a tool\n"
      "library 5 4 /app/tool 65536 18446744073709551615\nfile 1 work.cpp 6:12\n"
      "function 6 work 65792 256 5\nsample 1 65796 6 -1.5 0 4 7 65796>6 65544>5\nsample 2 3 6 1.75 1 4 7\n");
}

TEST(DocumentReader, VisitsEverySeriesOfATimechart) {
  Notes notes;
  const ReadOutcome outcome = read(kTimechart, notes);
  EXPECT_EQ(outcome.kind, DocumentKind::kTimechart);
  EXPECT_EQ(outcome.damage, "");
  EXPECT_EQ(
      notes.text(),
      "series cpu-0-b|CPU 0 Busy|b|binary|cpu:busy|t|#000000|#ffffff|1\npoint 0.001 1\npoint 0.006 0\nend\n"
      "series evt|Events||events|proc:events||||0\nevent -1.5 -7 frame|a b\nend\n");
}

TEST(DocumentReader, KeepsAnyByteOfANameAndRefusesOtherFiles) {
  const std::string name("a\x01\x00\xff\xc3\xa4", 6);
  Notes notes;
  read(R"({"processes":{"data":[[1,2,3,")" + name + "\\u00e4\\\"" + R"(",],]}})", notes);
  EXPECT_EQ(notes.text(), "process 1 2 3 " + name + "\xc3\xa4\"\n");
  for (const char* text : {"", "[1]", "7", "{\"a\":1}", "{}", "not JSON"})
    EXPECT_THROW(read(text, notes), std::runtime_error) << text;
}

TEST(DocumentReader, ReportsDamageAndVisitsTheRowsBeforeIt) {
  Notes whole;
  read(kProfile, whole);
  for (std::size_t size = kProfile.find("processes"); size < kProfile.size() - 1; ++size) {
    Notes notes;
    const ReadOutcome outcome = read(std::string_view(kProfile).substr(0, size), notes);
    EXPECT_EQ(outcome.damage.rfind("a.json: byte ", 0), 0U) << size;
    EXPECT_EQ(whole.text().rfind(notes.text(), 0), 0U) << size;
  }
  struct Case {
    const char* text;
    const char* reason;
  };
  for (const Case& damaged : {
           Case{R"({"processes":{"data":[[1,2,3,],]}})", "a row of processes with 3 values"},
           Case{R"({"processes":{"data":[[1,2,3,4,5,6,7,8,9]]}})", "a row with too many values"},
           Case{R"({"processes":{"data":[[-1,2,3,"a"]]}})", "a number of 32 bits was expected"},
           Case{R"({"processes":{"data":[[4294967296,2,3,"a"]]}})", "a number of 32 bits was expected"},
           Case{R"({"processes":{"data":[{}]}})", "an array was expected"},
           Case{R"({"samples":{"data":[[1,2,3,4,5,6,7,[[1,2,3]]]]}})", "a pair of numbers was expected"},
           Case{R"({"samples":{"data":[[1,2,3,4,5,6,7,[[1]]]]}})", "a pair of numbers was expected"},
           Case{R"({"samples":{"data":[[1,2,3,4,5,6,7,[["a",1]]]]}})", "a pair of numbers was expected"},
           Case{R"({"samples":{"data":[[1,2,3,"x",5,6,7,[]]]}})", "a number was expected"},
           Case{R"({"samples":{"data":[[[[[[[[[[[[[[)", "nested too deeply"},
           Case{R"({"entries":[7]})", "a point was expected"},
           Case{R"({"entries":[{"data":[[1,2,3]]}]})", "a point of another shape"},
           Case{R"({"entries":[{"data":[[1]]}]})", "a point of another shape"},
           Case{R"({"entries":[{"data":[],"data":[]}]})", "an entry with two lists of points"},
           Case{R"({"entries":[],"samples":{}})", "unknown member \"samples\""},
       }) {
    Notes notes;
    const std::string& damage = read(damaged.text, notes).damage;
    EXPECT_NE(damage.find(damaged.reason), std::string::npos) << damaged.text << ": " << damage;
  }
}

TEST(ProfileTables, NamesFramesAndSkipsOtherEntries) {
  ProfileTables tables;
  read(kProfile, tables);
  EXPECT_EQ(tables.frameName(6), "work");
  EXPECT_EQ(tables.frameName(5), "[in /app/tool]");
  EXPECT_EQ(tables.frameName(99), "[unknown]");
  EXPECT_EQ(tables.libraryOf(6), tables.findLibrary(5));
  EXPECT_EQ(tables.findFunction(6)->file + ":" + std::to_string(tables.findFunction(6)->line), "work.cpp:12");

  const TraceEntry trace[] = {
      {~std::uint64_t{127}, 2}, {100, 6}, {~std::uint64_t{511}, 2}, {100, 8}, {200, 9}};
  SampleRow sample;
  sample.ip = 100;
  sample.mapKey = 7;
  sample.trace = trace;
  std::vector<std::uint32_t> frames;
  forEachFrame(sample, [&](std::uint32_t key) { frames.push_back(key); });
  EXPECT_EQ(frames, (std::vector<std::uint32_t>{7, 8, 9}));
}

}  // namespace
}  // namespace zelkit
