// Tests each format with the same small documents, and that all of them agree.

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <protozero/pbf_reader.hpp>
#include <sstream>
#include <stdexcept>

#include "capture/TemporaryFolder.h"
#include "document/exports/Base64Output.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/PackedDocument.h"
#include "kit/document/Documents.h"

namespace zelkit {
namespace {

using Json = rapidjson::Value;

std::string wholeFile(const std::string& path) {
  FileSource source(path);  // which unpacks gzip
  return wholeText(source);
}

std::string exported(const std::string& format, const std::vector<std::string>& documents) {
  const TemporaryFolder folder;
  OutputFile output(folder.path() + "/out");
  const std::unique_ptr<Exporter> exporter = ExportFormat::find(format)->makeExporter(output);
  for (const std::string& document : documents) {
    MemorySource source(document, "a.json");
    exporter->documentStart("a.json");
    EXPECT_EQ(exporter->read(source).damage, "");
    exporter->documentEnd();
  }
  exporter->finish();
  output.commit();
  return wholeFile(folder.path() + "/out");
}

/// Parses strictly: no extra comma, valid UTF-8.
rapidjson::Document parsed(const std::string& text) {
  rapidjson::Document json;
  json.Parse<rapidjson::kParseValidateEncodingFlag | rapidjson::kParseFullPrecisionFlag>(text.c_str());
  EXPECT_FALSE(json.HasParseError()) << rapidjson::GetParseError_En(json.GetParseError()) << " at "
                                     << json.GetErrorOffset() << " of " << text.substr(0, 200);
  return json;
}

using Stacks = std::map<std::string, int>;

/// Reads "NAME;...;NAME COUNT" lines. `withoutProcess` drops the first name, which not every format has.
Stacks foldedStacks(const std::string& text, bool withoutProcess = true) {
  Stacks stacks;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t end = line.rfind(' ');
    const std::size_t start = withoutProcess ? line.find(';') + 1 : 0;
    stacks[line.substr(start, end - start)] += std::stoi(line.substr(end + 1));
  }
  return stacks;
}

std::string joined(std::vector<std::string> names) {
  std::string text;
  for (std::string& name : names) text += (text.empty() ? "" : ";") + name;
  return text;
}

Stacks speedscopeStacks(const Json& file) {
  Stacks stacks;
  for (const Json& profile : file["profiles"].GetArray()) {
    EXPECT_EQ(profile["samples"].Size(), profile["weights"].Size());
    for (rapidjson::SizeType i = 0; i < profile["samples"].Size(); ++i) {
      std::vector<std::string> names;
      for (const Json& frame : profile["samples"][i].GetArray())
        names.emplace_back(file["shared"]["frames"][frame.GetUint()]["name"].GetString());
      stacks[joined(names)] += profile["weights"][i].GetInt();
    }
  }
  return stacks;
}

Stacks cpuProfileStacks(const Json& file) {
  std::map<unsigned, std::string> stackOf;
  Stacks stacks;
  for (const Json& node : file["nodes"].GetArray()) {
    const std::string own = stackOf[node["id"].GetUint()];
    for (const Json& child : node["children"].GetArray()) {
      // The root and the threads below it are no frames.
      const Json& frame = file["nodes"][child.GetUint() - 1]["callFrame"]["functionName"];
      const bool isThread = node["id"].GetUint() == 1;
      stackOf[child.GetUint()] = isThread ? "" : own + (own.empty() ? "" : ";") + frame.GetString();
    }
  }
  for (const Json& sample : file["samples"].GetArray()) ++stacks[stackOf[sample.GetUint()]];
  EXPECT_EQ(file["samples"].Size(), file["timeDeltas"].Size());
  return stacks;
}

/// Every table of the file has columns of one length.
void expectEvenColumns(const Json& table) {
  for (const auto& member : table.GetObject()) {
    if (!member.value.IsArray()) continue;
    EXPECT_EQ(member.value.Size(), table["length"].GetUint()) << member.name.GetString();
  }
}

/// The numbers of a column index a list or a table of that length; null and, where it may, -1 stand for none.
void expectIndices(const Json& column, rapidjson::SizeType length, int least = 0) {
  for (const Json& index : column.GetArray()) {
    if (index.IsNull()) continue;
    EXPECT_GE(index.GetInt(), least);
    EXPECT_LT(index.GetInt(), static_cast<int>(length));
  }
}

/// Every column that refers to a table stays within it, and every table has columns of one length.
void expectSoundTables(const Json& file) {
  const Json& shared = file["shared"];
  std::map<std::string, rapidjson::SizeType> lengths = {{"libs", file["libs"].Size()},
                                                        {"stringArray", shared["stringArray"].Size()},
                                                        {"categories", file["meta"]["categories"].Size()}};
  for (const auto& table : shared.GetObject()) {
    if (!table.value.IsObject()) continue;
    expectEvenColumns(table.value);
    lengths[table.name.GetString()] = table.value["length"].GetUint();
  }
  struct Reference {
    const char* table;
    const char* column;
    const char* target;
    int least;
  };
  for (const Reference& reference : std::vector<Reference>{{"stackTable", "frame", "frameTable", 0},
                                                           {"frameTable", "category", "categories", 0},
                                                           {"frameTable", "func", "funcTable", 0},
                                                           {"frameTable", "lib", "libs", -1},
                                                           {"frameTable", "nativeSymbol", "nativeSymbols", 0},
                                                           {"funcTable", "name", "stringArray", 0},
                                                           {"funcTable", "resource", "resourceTable", -1},
                                                           {"funcTable", "source", "sources", 0},
                                                           {"nativeSymbols", "libIndex", "libs", 0},
                                                           {"nativeSymbols", "name", "stringArray", 0},
                                                           {"resourceTable", "lib", "libs", 0},
                                                           {"resourceTable", "name", "stringArray", 0},
                                                           {"sources", "filename", "stringArray", 0}}) {
    SCOPED_TRACE(std::string(reference.table) + " " + reference.column);
    expectIndices(shared[reference.table][reference.column], lengths[reference.target], reference.least);
  }
  // A frame names its library, its function's resource and its symbol's library alike.
  const Json& frames = shared["frameTable"];
  for (rapidjson::SizeType i = 0; i < lengths["frameTable"]; ++i) {
    EXPECT_EQ(frames["lib"][i], shared["funcTable"]["resource"][frames["func"][i].GetUint()]);
    if (const Json& symbol = frames["nativeSymbol"][i]; !symbol.IsNull()) {
      EXPECT_EQ(frames["lib"][i], shared["nativeSymbols"]["libIndex"][symbol.GetUint()]);
    }
  }
  const Json& offsets = shared["stackTable"]["prefixOffset"];
  for (rapidjson::SizeType i = 0; i < offsets.Size(); ++i) EXPECT_LE(offsets[i].GetUint(), i);
  for (const Json& thread : file["threads"].GetArray()) {
    expectEvenColumns(thread["samples"]);
    expectEvenColumns(thread["markers"]);
    expectIndices(thread["samples"]["stack"], lengths["stackTable"]);
    expectIndices(thread["markers"]["name"], lengths["stringArray"]);
    expectIndices(thread["markers"]["category"], lengths["categories"]);
  }
  for (const Json& counter : file["counters"].GetArray()) {
    expectEvenColumns(counter["samples"]);
    const Json& owner = file["threads"][counter["mainThreadIndex"].GetUint()];
    EXPECT_EQ(owner["pid"], counter["pid"]);
  }
}

Stacks firefoxStacks(const Json& file) {
  expectSoundTables(file);
  const Json& shared = file["shared"];
  Stacks stacks;
  for (const Json& thread : file["threads"].GetArray()) {
    for (const Json& sample : thread["samples"]["stack"].GetArray()) {
      std::vector<std::string> names;
      for (unsigned at = sample.GetUint(), offset = 1; offset != 0; at -= offset) {
        const unsigned function =
            shared["frameTable"]["func"][shared["stackTable"]["frame"][at].GetUint()].GetUint();
        names.emplace_back(
            shared["stringArray"][shared["funcTable"]["name"][function].GetUint()].GetString());
        offset = shared["stackTable"]["prefixOffset"][at].GetUint();
      }
      std::reverse(names.begin(), names.end());
      ++stacks[joined(names)];
    }
  }
  return stacks;
}

/// What the fields of profile.proto that matter here hold.
struct PprofFile {
  explicit PprofFile(const std::string& bytes) {
    protozero::pbf_reader profile(bytes);
    while (profile.next()) {
      if (profile.tag() == 6) {
        strings.push_back(profile.get_string());
      } else if (profile.tag() == 2) {
        samples.push_back(profile.get_message());
      } else if (profile.tag() == 4) {
        location(profile.get_message());
      } else if (profile.tag() == 5) {
        function(profile.get_message());
      } else {
        profile.skip();
      }
    }
  }

  void location(protozero::pbf_reader message) {
    std::uint64_t id = 0;
    while (message.next()) {
      if (message.tag() == 1) {
        id = message.get_uint64();
      } else if (message.tag() == 3) {
        addresses[id] = message.get_uint64();
      } else if (message.tag() == 4) {
        protozero::pbf_reader line = message.get_message();
        while (line.next(1)) functionOf[id] = line.get_uint64();
      } else {
        message.skip();
      }
    }
  }

  void function(protozero::pbf_reader message) {
    std::uint64_t id = 0;
    while (message.next()) {
      if (message.tag() == 1) {
        id = message.get_uint64();
      } else if (message.tag() == 2) {
        nameOf[id] = message.get_int64();
      } else {
        message.skip();
      }
    }
  }

  Stacks stacks() const {
    Stacks counted;
    for (protozero::pbf_reader sample : samples) {
      std::vector<std::string> names;
      int count = 0;
      while (sample.next()) {
        if (sample.tag() == 1) {
          for (const std::uint64_t id : sample.get_packed_uint64())
            names.push_back(strings[static_cast<std::size_t>(nameOf.at(functionOf.at(id)))]);
        } else if (sample.tag() == 2) {
          for (const std::int64_t value : sample.get_packed_int64()) count = static_cast<int>(value);
        } else {
          sample.skip();
        }
      }
      std::reverse(names.begin(), names.end());
      counted[joined(names)] += count;
    }
    return counted;
  }

  std::vector<std::string> strings;
  std::vector<protozero::pbf_reader> samples;
  std::map<std::uint64_t, std::uint64_t> addresses;
  std::map<std::uint64_t, std::uint64_t> functionOf;
  std::map<std::uint64_t, std::int64_t> nameOf;
};

TEST(Exports, ShowTheSmallProfile) {
  EXPECT_EQ(exported("folded", {kProfileDocument}),
            "tool;main;work 1\ntool;main;work;work 1\nworker;main;work;copy 1\nworker;copy;schedule 1\n"
            "tool;[in /lib/libx.so] 1\nother;main 1\n");
  EXPECT_EQ(exported("tsv", {kProfileDocument}),
            "self\ttotal\tfunction\tlibrary\tfile\tline\n"
            "2\t3\twork\t/app/tool\twork.cpp\t12\n"
            "1\t4\tmain\t/app/tool\t\t\n"
            "1\t2\tcopy\t/lib/libx.so\t\t\n"
            "1\t1\t[in /lib/libx.so]\t/lib/libx.so\t\t\n"
            "1\t1\tschedule\tkernel\t\t\n");
  const std::string samples = exported("tsv-samples", {kProfileDocument});
  EXPECT_EQ(samples.substr(0, samples.find("\n1.7")),
            "time\tcore\tpid\ttid\tprocess\taddress\tfunction\tlibrary\tcallers\n"
            "1.5\t0\t7\t7\ttool\t0x10104\twork\t/app/tool\tmain\n"
            "1.6\t1\t7\t7\ttool\t0x10104\twork\t/app/tool\twork;main");
  EXPECT_NE(samples.find("\n2\t1\t9\t9\tother\t0x10008\tmain\t/app/tool\t\n"), std::string::npos);
  EXPECT_EQ(exported("json", {R"({"processes":{"data":[[1,2,18446744073709551615,"a",],]}})"}),
            R"({"processes":{"data":[[1,2,18446744073709551615,"a"]]}})");
}

TEST(Exports, ShowTheSmallTimechart) {
  const std::string text = exported("trace-event", {kTimechartDocument});
  for (
      const char* event : {
          R"({"ph":"X","name":"Running on CPU 0","cat":"proc:running","pid":10,"tid":11,"ts":1000,"dur":1000})",
          R"({"ph":"B","name":"CPU 1 Busy","cat":"cpu:busy","pid":1073741824,"tid":2,"ts":4000})",
          R"({"ph":"C","name":"CPU 0 MHz","cat":"cpu:freq","pid":1073741824,"tid":3,"ts":5000,"args":{"value":800}})",
          R"({"ph":"s","name":"wake-up","cat":"proc:wait","pid":10,"tid":11,"ts":3500,"id":1})",
          R"("args":{"code":7,"text":"1 of 2"})",
      })
    EXPECT_NE(text.find(event), std::string::npos) << event << "\n" << text;
  parsed(text);
}

TEST(Exports, AgreeOnEverySample) {
  const Stacks folded = foldedStacks(exported("folded", {kProfileDocument}));
  EXPECT_EQ(folded.size(), 6U);
  EXPECT_EQ(speedscopeStacks(parsed(exported("speedscope", {kProfileDocument}))), folded);
  EXPECT_EQ(cpuProfileStacks(parsed(exported("cpuprofile", {kProfileDocument}))), folded);
  EXPECT_EQ(firefoxStacks(parsed(exported("firefox", {kProfileDocument}))), folded);
  EXPECT_EQ(PprofFile(exported("pprof", {kProfileDocument})).stacks(), folded);
}

TEST(Exports, StayValidWithAnyByteInNames) {
  std::string hostile = kProfileDocument;
  std::string name("</script>;\\t\\n\x01\x7f\xff\xed\xa0\x80\xc3\xa4\xf0\x9f\x98\x80\\\"");
  name.push_back('\0');
  for (const char* old : {"\"work\"", "\"tool\"", "\"/app/tool\"", "\"work.cpp\""})
    hostile.replace(hostile.find(old), std::string(old).size(), "\"" + name + "\"");
  for (const char* format : {"json", "speedscope", "cpuprofile", "firefox"})
    EXPECT_TRUE(parsed(exported(format, {hostile})).IsObject()) << format;
  EXPECT_EQ(foldedStacks(exported("folded", {hostile})).size(), 6U);
  const std::string table = exported("tsv", {hostile});
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 6);
  EXPECT_EQ(std::count(table.begin(), table.end(), '\t'), 6 * 5);
  EXPECT_EQ(PprofFile(exported("pprof", {hostile})).stacks().size(), 6U);
}

/// Keeps what is written.
class TextSink : public ByteSink {
 public:
  void write(std::string_view bytes) override { text += bytes; }
  std::string text;
};

std::string packed(const std::string& document) {
  TextSink sink;
  PackedDocument visitor(sink);
  EXPECT_EQ(readText(document, visitor).damage, "");
  visitor.finish();
  parsed(sink.text);
  return sink.text;
}

TEST(PackedDocument, WritesEachThreadAddressAndBackTraceOnce) {
  const std::string text = packed(kProfileDocument);
  EXPECT_EQ(text.find(R"({"Description":{"Version":"1.0","Start Time":5,"duration":0.5},)"
                      R"("processes":{"data":[[1,0,0,"kernel"],)"),
            0U);
  const std::string blocks =
      R"("blocks":{"data":[[[4,7,5,8,6,9],)"
      R"([1,21,1,65796,3,22,1,1073745930,5,23,1,3221258500,7,11,1,1073741830,9,20,1,65544],)"
      R"([1,5,1,20,1,21,4,7,1,20,1,21,1,21,8,6,1,20,1,21,11,2,1,22,13,0],)"
      R"([1500000000,100000000,100000000,100000000,100000000,100000000],)"
      R"([0,1,0,1,0,1],[0,0,1,1,0,2],[2,2,4,6,8,10],[3,7,10,12,13,13]]]}})";
  EXPECT_EQ(text.substr(text.find("\"blocks\"")), blocks);

  // Another address in the same function is a frame of its own: 2 entries, and none repeats the sample.
  std::string recursion = kProfileDocument;
  recursion.replace(recursion.find("[1,65796,"), 9, "[1,65800,");
  EXPECT_NE(packed(recursion).find("65544],[1,4,1,20,1,21,"), std::string::npos) << packed(recursion);
}

TEST(PackedDocument, KeepsEverySeriesOfATimechart) {
  const std::string text = packed(kTimechartDocument);
  EXPECT_NE(text.find(R"({"id":"cpu-0-f","name":"CPU 0 MHz","treeId":"b_0_cpu_root","type":"bar",)"
                      R"("class":"cpu:freq","show":1,"hints":{},"data":[[0.002,600.0],[0.005,800.0]]})"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(R"("data":[[0.0025,7,"frame","1 of 2"]])"), std::string::npos) << text;
}

TEST(Base64Output, PadsTheLastGroup) {
  for (const auto& [bytes, expected] : std::map<std::string, std::string>{
           {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"\xff\xfe!?", "//4hPw=="}}) {
    TextSink sink;
    Base64Output output(sink);
    for (const char byte : bytes) output.write({&byte, 1});
    output.finish();
    EXPECT_EQ(sink.text, expected);
  }
}

TEST(Firefox, JoinsAProfileAndATimechart) {
  std::string profile = kProfileDocument;
  profile.replace(profile.find("[5,7,8,\"worker\",]"), 17, "[5,10,11,\"worker\",]");
  std::size_t at = 0;
  while ((at = profile.find(",5,8,[[")) != std::string::npos) profile.replace(at, 7, ",5,11,[[");
  const rapidjson::Document file = parsed(exported("firefox", {profile, kTimechartDocument}));
  expectSoundTables(file);
  EXPECT_EQ(file["meta"]["preprocessedProfileVersion"].GetInt(), 70);
  EXPECT_STREQ(file["meta"]["categories"][0]["color"].GetString(), "grey");
  const Json* shared = nullptr;
  for (const Json& thread : file["threads"].GetArray())
    if (thread["tid"].GetUint() == 11 && std::string(thread["pid"].GetString()) == "10") shared = &thread;
  ASSERT_NE(shared, nullptr);
  EXPECT_EQ((*shared)["samples"]["length"].GetUint(), 2U);
  EXPECT_EQ((*shared)["markers"]["length"].GetUint(), 4U);
  const Json& counter = file["counters"][0];
  EXPECT_STREQ(counter["display"]["label"].GetString(), "CPU 0 MHz");
  // The viewer sums the differences.
  EXPECT_EQ(counter["samples"]["count"][0].GetDouble(), 600.0);
  EXPECT_EQ(counter["samples"]["count"][1].GetDouble(), 200.0);
  EXPECT_THROW(exported("firefox", {profile, profile}), std::runtime_error);
}

TEST(Firefox, DistinguishesKernelAndUserAndHasAddressesWithinLibraries) {
  const rapidjson::Document file = parsed(exported("firefox", {kProfileDocument}));
  const Json& frames = file["shared"]["frameTable"];
  std::map<std::string, std::string> seen;
  for (rapidjson::SizeType i = 0; i < frames["length"].GetUint(); ++i) {
    const unsigned name = file["shared"]["funcTable"]["name"][i].GetUint();
    std::ostringstream text;
    text << file["meta"]["categories"][frames["category"][i].GetUint()]["name"].GetString() << ' '
         << file["libs"][frames["lib"][i].GetUint()]["name"].GetString() << ' '
         << frames["address"][i].GetInt64();
    seen[file["shared"]["stringArray"][name].GetString()] = text.str();
  }
  const std::map<std::string, std::string> expected = {{"main", "User tool 0"},
                                                       {"work", "User tool 256"},
                                                       {"copy", "User libx.so 4096"},
                                                       {"schedule", "Kernel kernel 256"},
                                                       {"[in /lib/libx.so]", "User libx.so -1"}};
  EXPECT_EQ(seen, expected);
}

TEST(Pprof, ShowsTheAddressesOfTheDevice) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/a.json";
  std::ofstream(path) << kProfileDocument;
  std::ofstream(path + ".layout.json")
      << R"({"mappings":[{"pid":7,"start":"0x40000000","size":"0x2000","original":"0xb6d10000"}]})";
  OutputFile output(folder.path() + "/out");
  const std::unique_ptr<Exporter> exporter = ExportFormat::find("pprof")->makeExporter(output);
  FileSource source(path);
  exporter->documentStart(path);
  exporter->read(source);
  exporter->documentEnd();
  exporter->finish();
  output.commit();
  const PprofFile file(wholeFile(folder.path() + "/out"));
  std::map<std::string, std::uint64_t> addresses;
  for (const auto& [id, address] : file.addresses)
    addresses[file.strings[static_cast<std::size_t>(file.nameOf.at(id))]] = address;
  const std::map<std::string, std::uint64_t> expected = {{"copy", 0xb6d11000},
                                                         {"main", 65536},
                                                         {"work", 65792},
                                                         {"schedule", 3221258496},
                                                         {"[in /lib/libx.so]", 0xb6d10000}};
  EXPECT_EQ(addresses, expected);
}

}  // namespace
}  // namespace zelkit
