#include "symbols/SymbolTable.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "base/MachineFiles.h"
#include "run/Settings.h"
#include "support/Conversion.h"
#include "symbols/FileNames.h"

namespace {

std::string nameAt(const SymbolTable& table, unsigned long long address) {
  const SymbolTableElement* element = table.findElement(address);
  return element != nullptr ? std::string(element->name()) : "-";
}

TEST(SymbolTable, FindsAddressesUpToAndIncludingTheEndOfASymbol) {
  SymbolTable table;
  EXPECT_EQ(nameAt(table, 0), "-");
  table.addElement(0x100, 0x10, "one", nullptr, 0);
  EXPECT_EQ(nameAt(table, 0x104), "-");  // one element never matches
  EXPECT_EQ(table.findElementLinear(0x104)->name(), "one");
  table.addElement(0x110, 0x10, "two", nullptr, 0);
  table.addElement(0x120, 0x0, "three", nullptr, 0);
  table.addElement(0x200, 0x8, "four", nullptr, 0);
  const std::pair<unsigned long long, const char*> cases[] = {
      {0xFF, "-"},  {0x100, "one"}, {0x10F, "one"},  {0x110, "one"},  {0x111, "two"}, {0x120, "three"},
      {0x121, "-"}, {0x1FF, "-"},   {0x200, "four"}, {0x208, "four"}, {0x209, "-"}};
  for (const auto& [address, name] : cases) EXPECT_EQ(nameAt(table, address), name) << std::hex << address;
}

TEST(SymbolTable, TreatsAHugeSizeAsAGap) {
  SymbolTable table;
  EXPECT_EQ(table.addElement(0, 1048576, "a", nullptr, 0)->size(), 1048576U);
  EXPECT_EQ(table.addElement(0, 1048577, "b", nullptr, 0)->size(), 0U);
}

TEST(SymbolTable, MakesOneSyntheticSymbolForSixtyFourKiB) {
  SymbolTable::createSyntheticTable();
  SymbolTableElement* first = SymbolTable::addSyntheticEntry(0x20000, 0x10000, "{a}");
  EXPECT_EQ(SymbolTable::addSyntheticEntry(0x2FFFF, 0x10000, "{b}"), first);
  EXPECT_NE(SymbolTable::addSyntheticEntry(0x30000, 0x10000, "{c}"), first);
}

/// The table that a list gives, as "start+size name" lines.
std::string read(const std::string& list, bool kernel = false) {
  const Conversion folder;
  folder.write("list", list);
  if (kernel) gMachineFiles.kernelSymbols = folder.path("list");
  FileNames::createEmptyRef();
  SymbolTable table;
  EXPECT_EQ(table.readFromFile(folder.path("list").c_str()), 0);
  std::string result;
  for (const SymbolTableElement& element : table.elements()) {
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%llx+%llx ", element.address(), element.size());
    result += numbers + std::string(element.name());
    if (element.lineNumber() != 0)
      result += " @" + element.file()->name() + ":" + std::to_string(element.lineNumber());
    result += "|";
  }
  return result;
}

TEST(SymbolList, SizesFollowFromTheSuccessorAndTheLastLineIsReadTwice) {
  EXPECT_EQ(read("1000 T one\n1100 T two\n1100 W three\n1180 t four\n"),
            "1000+100 one\n|1100+0 two|1100+80 three|1180+0 four|");
  EXPECT_EQ(read("1000 T one\n1100 T two"), "1000+100 one\n|");
  EXPECT_EQ(read("1000 T one\n"), "1000+0 one\n|");
  EXPECT_EQ(read("1000 T one\n1100 T two\n1200 B data\n"), "1000+100 one\n|");
  EXPECT_EQ(read(""), "");
}

TEST(SymbolList, SkipsOtherLines) {
  EXPECT_EQ(read("         U printf\n1000 T one\n1010 t $a\n1018 T\nnonsense\n1020 D data\n1100 T two\n"),
            "1000+100 one\n|1100+0 two|");
}

TEST(SymbolList, CutsNamesAtTabsAndAtInnerTypeLetters) {
  EXPECT_EQ(
      read("1000 T one\tmain.c:12\n1100 T two\tsrc/two.cpp:7\n1200 T three\tab.c:3\n1300 W f(char T x)\n"
           "1400 T six\tsrc/six.c:none\n1500 T five\n"),
      "1000+100 one @main.c:12|1100+100 two @src/two.cpp:7|1200+100 three @***EMPTY FILE_REF***:3|"
      "1300+100 x)|1400+100 six|1500+0 five|");
}

TEST(SymbolList, KeepsALineEndBeforeThePreviousName) {
  // The name of the second line begins farther to the right than the third line is long.
  EXPECT_EQ(read("1000 T one\n1100 W a_rather_long_name T x\n1200 T s\n1300 T t\n"),
            "1000+100 one\n|1100+100 x|1200+100 s\n|1300+0 t|");
}

TEST(SymbolList, CutsTheLineEndRightBeforeThePreviousName) {
  EXPECT_EQ(read("00001000 W foo T bar\n00002000 T abcde\n00003000 T second\n00004000 T third\n"),
            "1000+1000 bar\n|2000+1000 abcde|3000+1000 second|4000+0 third|");
}

TEST(SymbolList, CutsTheLineEndBeforeItLooksForTheName) {
  // A line as long as the reader takes at once has no line end, so the cut takes the blank of " T ".
  const std::string fill(4095 - std::strlen("2000 W  T "), 'x');
  EXPECT_EQ(read("1000 T one\n2000 W " + fill + " T cut off\n3000 T three\n"),
            "1000+1000 one\n|2000+1000 " + fill + " T|3000+0 three|");
}

TEST(SymbolList, SortsAListThatDescends) {
  const char* const list = "1000 T one\n2000 T two\n1800 T lost\n1400 T four\n1200 T three\tx.c:1\n";
  EXPECT_EQ(read(list), "1000+1000 one\n|1200+200 three|1400+c00 four\n|2000+1 two|");
  const std::string said = printed([&] {
    gVerbosity = 1;
    read(list);
  });
  EXPECT_EQ(said.substr(said.find("Unsorted")),
            "Unsorted entries in SymbolTable\n1200 => three\n1400 => four\n\n"
            "SYMB k:00000 a:00001200 l:00200 u00000 n:three\n2000 => two\n"
            "SYMB k:00000 a:00001400 l:00c00 u00000 n:four\n\n"
            "SYMB k:00000 a:00002000 l:00001 u00000 n:two\n");
}

TEST(SymbolList, SortsAListThatDescendsAtALineWithoutAName) {
  EXPECT_EQ(read("1000 T one\n2000 T two\n1800T lost\n1400 T four\n"),
            "1000+1000 one\n|1400+c00 four\n|2000+1 two|");
}

TEST(SymbolList, ReadsTheKernelsTable) {
  EXPECT_EQ(read("00000000 T zero\n00000000 T nil\n", true), "");
  EXPECT_EQ(
      read(
          "2fffffff t low\nc0008000 T start\nc0009000 T next\nbf000000 t mod\t[mod]\nbf000100 t end\t[mod]\n",
          true),
      "c0008000+1000 start\n|c0009000+0 next|bf000000+100 mod|bf000100+0 end|");
  EXPECT_EQ(read("ffffffff81000000 T start\n0000000000001000 T low\nffffffff81000100 T next\n", true),
            "ffffffff81000000+0 start\n|1000+0 low|ffffffff81000100+0 next|");
}

TEST(SymbolTable, SplitsTheSearchPathAndTriesEveryFolder) {
  const Conversion folder;
  SymbolTable::setPath("/:/a:/b::c:" + folder.path("root"));
  EXPECT_EQ(SymbolTable::_paths, (std::vector<std::string>{" ", "/a", "/b", folder.path("root")}));
  folder.library("/deep/libx.so", "");
  folder.library("/liby.so", "");
  int index = 0;
  EXPECT_EQ(SymbolTable::findPathForFile("/deep/libx.so", index), folder.path("root/deep/libx.so"));
  EXPECT_EQ(index, 3);
  index = 0;
  EXPECT_EQ(SymbolTable::findPathForFile("/elsewhere/liby.so", index), folder.path("root/liby.so"));
  EXPECT_EQ(SymbolTable::findPathForFile("/none.so", index), "");
}

TEST(SymbolTable, SkipsASocketButNotAPipe) {
  const Conversion folder;
  SymbolTable::setPath(folder.path("root"));
  folder.library("/libx.so", "");
  folder.library("/deep/libx.so", "");
  const std::string deep = folder.path("root/deep/libx.so");
  std::filesystem::remove(deep);
  const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(deep.size(), sizeof address.sun_path);
  std::strcpy(address.sun_path, deep.c_str());
  ASSERT_EQ(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  close(descriptor);
  int index = 0;
  EXPECT_EQ(SymbolTable::findPathForFile("/deep/libx.so", index), folder.path("root/libx.so"));
  std::filesystem::remove(deep);
  ASSERT_EQ(mkfifo(deep.c_str(), 0600), 0);
  EXPECT_EQ(SymbolTable::findPathForFile("/deep/libx.so", index = 0), deep);
}

TEST(SymbolTable, PrintsItsLinesAfterThoseOfNm) {
  const Conversion folder;
  folder.write("libx.so", "");
  folder.write("bin/nm",
               "#!/bin/sh\nsleep 0.05\necho nm: complaint >&2\nprintf '10 T aaaa\\n20 T bbbb\\n'\n");
  const std::string said = printed([&] {
    gVerbosity = 1;
    SymbolTable::generateAndRead(folder.path("libx.so").c_str());
  });
  EXPECT_EQ(
      said.substr(said.find('\n')),
      "\nnm: complaint\nSYMB k:00000 a:00000000 l:00000 u00000 n:" + folder.path("libx.so") +
          "\nSymtab adding " + folder.path("libx.so") +
          "\nSymtab adding libx.so\n"
          "SYMB k:00000 a:00000010 l:00010 u00000 n:aaaa\n\nSYMB k:00000 a:00000020 l:00000 u00000 n:bbbb\n");
}

TEST(SymbolTable, ContinuesAfterAFileWithoutSymbolsAndCachesTheFailure) {
  const Conversion folder;
  for (const char* place : {"stripped", "single", "full"})
    folder.write(std::string(place) + "/lib/libx.so", "");
  // nm by the folder in the path: the last place has two symbols, which is the least that counts.
  folder.write("bin/nm", "#!/bin/sh\necho \"$@\" >>\"" + folder.path("calls") +
                             "\"\ncase $2 in */full/*) printf '10 T aaaa\\n20 T bbbb\\n';; "
                             "*/single/*) printf '10 T aaaa\\n';; esac\n");
  SymbolTable::setPath(folder.path("stripped") + ":" + folder.path("single") + ":" + folder.path("full"));
  const SymbolTable* table = SymbolTable::findAndRead("/lib/libx.so");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->elements().size(), 2U);
  EXPECT_EQ(folder.read("calls"), "-nCg " + folder.path("stripped/lib/libx.so") + "\n-nCg " +
                                      folder.path("single/lib/libx.so") + "\n-nCg " +
                                      folder.path("full/lib/libx.so") + "\n");
  // The failed first try has taken the base name.
  EXPECT_EQ(SymbolTable::findAndRead("/other/libx.so")->elements().size(), 0U);
}

TEST(SymbolTable, IsNullWhereNmCannotBeStarted) {
  Conversion folder;
  folder.library("/lib/libx.so", "10 T aaaa\n20 T bbbb\n");
  folder.environment().set("PATH", folder.path("none"));
  SymbolTable::setPath(folder.path("root"));
  const std::string said = printed([] {
    gVerbosity = 1;
    EXPECT_EQ(SymbolTable::findAndRead("/lib/libx.so"), nullptr);
  });
  EXPECT_NE(said.find("\nnm: No such file or directory\n"), std::string::npos);
  EXPECT_EQ(said.find("Failure"), std::string::npos);
}

TEST(SymbolTable, NeverLetsTheShellReadAFileName) {
  Conversion folder;
  const std::string name = "a b'$(touch " + folder.path("planted") + ");`x`.so";
  const std::string file = "/odd/" + name.substr(name.rfind('/') + 1);
  folder.write("root" + file, "");
  folder.write("bin/nm", "#!/bin/sh\nprintf '%s' \"$2\" >\"" + folder.path("calls") + "\"\n");
  SymbolTable::setPath(folder.path("root"));
  EXPECT_EQ(SymbolTable::findAndRead(file.c_str()), nullptr);
  EXPECT_EQ(folder.read("calls"), folder.path("root" + file));
  EXPECT_EQ(folder.read("planted"), "");
}

TEST(SymbolTable, ListsEachMapOfASymbolOnceInOrderOfFirstUse) {
  SymbolTable table;
  SymbolTableElement* symbol = table.addElement(0x100, 0x10, "main", nullptr, 0);
  std::vector<unsigned int> expected;
  for (unsigned int key = 100; key > 0; --key) {
    expected.push_back(key);
    for (const unsigned int known : expected) symbol->setMapKey(known);
  }
  EXPECT_EQ(symbol->mapKeys(), expected);
}

}  // namespace
