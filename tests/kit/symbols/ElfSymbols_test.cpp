#include "symbols/ElfSymbols.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "kit/symbols/ElfWorkshop.h"
#include "symbols/Demangler.h"
#include "symbols/ElfFile.h"

namespace zelkit {
namespace {

/// Returns the first symbol of the name, one without a name if there is none.
Symbol named(const SymbolList& list, const std::string& name) {
  for (std::size_t i = 0; i < list.size(); ++i)
    if (readableName(list[i].name) == name) return list[i];
  return {};
}

/// The symbols that the symbol table names.
std::vector<Symbol> allNamed(const SymbolList& list) {
  std::vector<Symbol> symbols;
  for (std::size_t i = 0; i < list.size(); ++i)
    if (!list[i].name.empty() && !list[i].name.ends_with("@plt")) symbols.push_back(list[i]);
  return symbols;
}

bool endsWith(std::string_view text, std::string_view end) {
  return text.ends_with(end);
}

TEST(ElfSymbols, AgreeWithReadelfToTheByte) {
  const ElfWorkshop workshop;
  const SymbolList list = readElfSymbols(ZELKIT_FIXTURE, "");
  std::istringstream lines(
      workshop.output("readelf -sW --demangle $FIXTURE | "
                      "awk '$4 == \"FUNC\" && $7 != \"UND\" && $3 > 0'"));
  std::map<std::uint64_t, std::set<std::string>> aliases;
  std::map<std::uint64_t, std::uint64_t> sizes;
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    std::string number, address, size, word;
    words >> number >> address >> size >> word >> word >> word >> word >> std::ws;
    std::getline(words, word);
    const std::uint64_t start = std::stoull(address, nullptr, 16);
    aliases[start].insert(word);
    sizes[start] = std::stoull(size, nullptr, 0);
  }
  ASSERT_GE(sizes.size(), 5u);
  for (const auto& [start, size] : sizes) {
    const std::size_t found = list.find(start);
    ASSERT_LT(found, list.size()) << std::hex << start;
    EXPECT_TRUE(aliases[start].contains(readableName(list[found].name))) << list[found].name;
    EXPECT_EQ(list.find(start + size - 1), found);
    EXPECT_NE(list.find(start + size), found);
  }
}

TEST(ElfSymbols, IncludeLocalFunctionsAndSourceLines) {
  const SymbolList list = readElfSymbols(ZELKIT_FIXTURE, "");
  const std::pair<const char*, std::uint32_t> functions[] = {
      {"fixture::hidden(int)", 7}, {"fixture::Shape::twice(int) const", 13}, {"plain_name", 18}};
  for (const auto& [name, line] : functions) {
    const Symbol symbol = named(list, name);
    EXPECT_EQ(symbol.line, line) << name;
    EXPECT_TRUE(endsWith(symbol.file, "kit/symbols/fixture.cpp")) << symbol.file;
  }
}

TEST(ElfSymbols, HaveLinesFromAnyFormOfDebugInformation) {
  if (!ElfWorkshop::has("c++")) GTEST_SKIP() << "no compiler";
  const ElfWorkshop workshop;
  workshop.write("t.cpp",
                 "int first(int i) {\n  return i * 3;\n}\n#line 40 \"folder/u.cpp\"\n"
                 "int second(int i) {\n  return first(i) + 1;\n}\n");
  for (const char* form : {"-gdwarf-5", "-gdwarf-5 -gz", "-gdwarf-5 -O2 -ffunction-sections", "-gdwarf-4",
                           "-gdwarf-4 -gz=zlib-gnu", "-gdwarf-5 -gdwarf64"}) {
    workshop.run(std::string("c++ -fPIC -shared ") + form + " -o t.so t.cpp");
    const SymbolList list = readElfSymbols(workshop.path("t.so"), "");
    EXPECT_EQ(named(list, "first(int)").line, 1u) << form;
    EXPECT_TRUE(endsWith(named(list, "first(int)").file, "/t.cpp")) << form;
    EXPECT_EQ(named(list, "second(int)").line, 40u) << form;
    EXPECT_TRUE(endsWith(named(list, "second(int)").file, "folder/u.cpp")) << form;
  }
}

TEST(ElfSymbols, CloseFunctionsAndLeaveMarksOut) {
  const SymbolList list = readElfSymbols(ZELKIT_FIXTURE, "");
  EXPECT_EQ(named(list, "after_gap").size, 1u);
  EXPECT_EQ(list.find(named(list, "after_gap").address + 1), list.size());
  // Of unknown size, it reaches to the next function.
  const Symbol unsized = named(list, "unsized");
  EXPECT_EQ(unsized.address + unsized.size, named(list, "after_gap").address);
  for (const char* mark : {"$a", "$d.1"}) EXPECT_TRUE(named(list, mark).name.empty());
}

TEST(ElfSymbols, NameStubsAfterTheCalledFunction) {
  const ElfWorkshop workshop;
  const std::string code = workshop.output("objdump -d $FIXTURE | sed -n 's/ <puts@plt>:$//p'");
  if (code.empty()) GTEST_SKIP() << "no stub in this machine's program";
  const Symbol stub = named(readElfSymbols(ZELKIT_FIXTURE, ""), "puts@plt");
  EXPECT_EQ(stub.address, std::stoull(code, nullptr, 16));
  EXPECT_GE(stub.size, 12u);
}

TEST(ElfSymbols, AreFoundInAnyTableOfAStrippedFile) {
  const ElfWorkshop workshop;
  workshop.run("objcopy --only-keep-debug $FIXTURE debug && strip -o stripped $FIXTURE");
  const SymbolList exported = readElfSymbols(workshop.path("stripped"), "");
  EXPECT_EQ(named(exported, "plain_name").line, 0u);
  EXPECT_EQ(named(exported, "plain_name").size, named(readElfSymbols(ZELKIT_FIXTURE, ""), "plain_name").size);
  EXPECT_TRUE(named(exported, "fixture::hidden(int)").name.empty());

  const SymbolList whole = readElfSymbols(ZELKIT_FIXTURE, "");
  EXPECT_EQ(readElfSymbols(workshop.path("stripped"), workshop.path("debug")).bytes(), whole.bytes());
  EXPECT_EQ(readElfSymbols(workshop.path("stripped"), ZELKIT_FIXTURE).bytes(), whole.bytes());
  // A debug file holds no code, so nothing is known of its gaps and stubs.
  const SymbolList debugOnly = readElfSymbols(workshop.path("debug"), "");
  EXPECT_EQ(allNamed(debugOnly), allNamed(whole));

  // Where functions without names begin, the unwind tables tell.
  const Symbol hidden = named(whole, "fixture::hidden(int)");
  const std::size_t unnamed = exported.find(hidden.address);
  ASSERT_LT(unnamed, exported.size());
  EXPECT_EQ(exported[unnamed].address, hidden.address);
  EXPECT_EQ(exported[unnamed].name, "");
  // What fills the place up to the next function belongs to it.
  EXPECT_GE(exported[unnamed].size, hidden.size);
  EXPECT_LT(exported[unnamed].size, hidden.size + 16);

  if (!ElfWorkshop::has("xz")) GTEST_SKIP() << "no xz to make MiniDebugInfo with";
  workshop.run(
      "strip -g -o mini $FIXTURE && xz -k mini && "
      "objcopy --add-section .gnu_debugdata=mini.xz stripped with_mini");
  const SymbolList mini = readElfSymbols(workshop.path("with_mini"), "");
  EXPECT_EQ(named(mini, "fixture::hidden(int)").size, hidden.size);
}

TEST(ElfSymbols, ClearTheThumbBit) {
  if (!ElfWorkshop::has("arm-linux-gnueabihf-g++")) GTEST_SKIP() << "no compiler for ARM";
  const ElfWorkshop workshop;
  workshop.write("t.cpp", "extern \"C\" int thumb(int i) {\n  return i * 3;\n}\n");
  workshop.run("arm-linux-gnueabihf-g++ -mthumb -g -O1 -shared -nostdlib -o thumb.so t.cpp");
  const SymbolList list = readElfSymbols(workshop.path("thumb.so"), "");
  const Symbol thumb = named(list, "thumb");
  EXPECT_EQ(thumb.address % 2, 0u);
  EXPECT_EQ(thumb.line, 1u);
  ASSERT_EQ(list.size(), 1u) << list[1].name;
  EXPECT_FALSE(ElfFile::read(workshop.path("thumb.so")).wide);
}

TEST(ElfSymbols, ReportFilesThatCannotBeRead) {
  const ElfWorkshop workshop;
  workshop.write("text", "not an ELF file");
  workshop.run("mkfifo pipe");
  const std::pair<std::string, std::string> cases[] = {
      {"text", "not "}, {"absent", "No such file or directory"}, {"pipe", "not a regular file"}};
  const auto complaint = [](const auto& call) -> std::string {
    try {
      call();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "no complaint";
  };
  for (const auto& [name, reason] : cases) {
    const std::string path = workshop.folder() + '/' + name;
    const std::string start = path + ": " + reason;
    EXPECT_TRUE(complaint([&] { ElfFile::read(path); }).starts_with(start)) << name;
    EXPECT_TRUE(complaint([&] { static_cast<void>(readElfSymbols(path, "")); }).starts_with(start)) << name;
  }
}

TEST(ElfSymbols, SurviveDamagedFiles) {
  const ElfWorkshop workshop;
  workshop.run("cp $FIXTURE whole");
  const std::string whole = workshop.read("whole");
  for (std::size_t step = 0; step < 200; ++step) {
    std::string damaged = whole;
    if (step % 2 == 0) {
      damaged.resize(whole.size() * step / 200);
    } else {
      for (std::size_t at = step; at < damaged.size(); at += 97 + step)
        damaged[at] = static_cast<char>(~damaged[at]);
      damaged.replace(0, 64, whole, 0, 64);  // otherwise reading ends at the header
    }
    workshop.write("damaged", damaged);
    try {
      EXPECT_LT(readElfSymbols(workshop.path("damaged"), "").size(), 10000u);
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find("damaged: "), std::string::npos);
    }
  }
}

TEST(ElfFile, MapsFileOffsetsToAddresses) {
  ElfFile file;
  file.segments = {{.offset = 0, .address = 0x10000, .fileSize = 0x1800, .executable = false},
                   {.offset = 0x1000, .address = 0x21000, .fileSize = 0x1000, .executable = true}};
  EXPECT_EQ(file.addressOf(0), 0x10000u);
  EXPECT_EQ(file.addressOf(0x1000), 0x21000u) << "the executable one of two";
  EXPECT_EQ(file.addressOf(0x1fff), 0x21fffu);
  EXPECT_FALSE(file.addressOf(0x2000).has_value());
}

}  // namespace
}  // namespace zelkit
