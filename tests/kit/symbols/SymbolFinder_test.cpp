#include "symbols/SymbolFinder.h"

#include <gtest/gtest.h>

#include "kit/symbols/ElfWorkshop.h"
#include "symbols/BuildId.h"

namespace zelkit {
namespace {

std::string buildIdOfFixture() {
  return ElfFile::read(ZELKIT_FIXTURE).buildId;
}

class SymbolFinderTest : public testing::Test {
 protected:
  void SetUp() override { unsetenv("DEBUGINFOD_URLS"); }

  /// The path found below one root, relative to it, or the refusal.
  [[nodiscard]] std::string found(const std::string& root, const std::string& name,
                                  const std::string& buildId = {}) const {
    SymbolFinder finder({workshop.path(root)});
    const FoundFile& file = finder.find(name, buildId);
    return file.found() ? file.path.substr(workshop.path(root).size()) : file.refusal;
  }

  ElfWorkshop workshop;
  std::string id = buildIdOfFixture();
  std::string link = id.substr(0, 2) + "/" + id.substr(2);
};

TEST_F(SymbolFinderTest, SearchesByPathThenNameThenBuildId) {
  workshop.run("mkdir -p a/usr/bin b c/.build-id/" + link.substr(0, 2) + " d/.build-id/" + link +
               " e && "
               "cp $FIXTURE a/usr/bin/tool && cp $FIXTURE b/tool && cp $FIXTURE c/.build-id/" +
               link + " && cp $FIXTURE d/.build-id/" + link + "/elf && mkdir e/tool");
  EXPECT_EQ(found("a", "/usr/bin/tool"), "/usr/bin/tool");
  EXPECT_EQ(found("a", "/usr/bin/tool (deleted)", id), "/usr/bin/tool");
  EXPECT_EQ(found("b", "/usr/bin/tool", id), "/tool");
  EXPECT_EQ(found("c", "/usr/bin/tool", id), "/.build-id/" + link);
  EXPECT_EQ(found("d", "/usr/bin/tool", id), "/.build-id/" + link + "/elf");
  EXPECT_EQ(found("e", "/usr/bin/tool"), "/usr/bin/tool: not found below " + workshop.path("e"));
  for (const char* name : {"[vdso]", "//anon", "/dev/zero", "/memfd:jit (deleted)", "", "/usr/"})
    EXPECT_EQ(found("a", name), std::string(name) + ": not a file");
}

TEST_F(SymbolFinderTest, SearchesAllFoldersForAUniqueName) {
  workshop.run(
      "mkdir -p out/obj/deep out/other && cp $FIXTURE out/obj/deep/tool && ln -s ../obj/deep/tool "
      "out/other/tool");
  EXPECT_EQ(found("out", "/usr/bin/tool"), "/obj/deep/tool");
  workshop.run(
      "objcopy --remove-section .note.gnu.build-id $FIXTURE out/other/real && mv out/other/real "
      "out/other/tool");
  EXPECT_EQ(found("out", "/usr/bin/tool"),
            "/usr/bin/tool: 2 files of this name below " + workshop.path("out"));
  EXPECT_EQ(found("out", "/usr/bin/tool", id), "/obj/deep/tool");
}

TEST_F(SymbolFinderTest, NeverLeavesItsRoot) {
  workshop.run(
      "cp $FIXTURE secret && mkdir -p root/lib root/usr/lib && cp $FIXTURE root/usr/lib/real && "
      "ln -s /usr/lib/real root/lib/absolute && ln -s ../../secret root/lib/outward && "
      "ln -s " +
      workshop.folder() + "/secret root/lib/outside");
  EXPECT_EQ(found("root", "/lib/absolute"), "/usr/lib/real");
  for (const char* name : {"/lib/outward", "/lib/outside", "/../secret", "../secret"})
    EXPECT_EQ(found("root", name), std::string(name) + ": not found below " + workshop.path("root"));
}

TEST_F(SymbolFinderTest, RefusesAnotherBuildAndAnotherArchitecture) {
  workshop.run(
      "mkdir one two && cp $FIXTURE one/tool && objcopy --remove-section .note.gnu.build-id $FIXTURE "
      "two/tool");
  const std::string other(40, 'a');
  SymbolFinder finder({workshop.path("one"), workshop.path("two")});
  EXPECT_EQ(finder.find("/bin/tool", other).refusal,
            "/bin/tool: " + workshop.path("one/tool") + " has build-id " + id + " instead of " + other +
                "; " + workshop.path("two/tool") + " has no build-id instead of " + other);
  EXPECT_TRUE(finder.find("/bin/tool", id + "0000").found()) << "recordings pad build-ids with zeros";
  EXPECT_FALSE(finder.find("/bin/tool", id.substr(0, 38)).found());

  SymbolFinder mips({workshop.path("one")}, "s390x");
  EXPECT_TRUE(mips.find("/bin/tool", "").found()) << "nothing is known of it";
  const std::string foreign = ElfFile::read(ZELKIT_FIXTURE).machine == 40 ? "x86_64" : "armv7l";
  SymbolFinder otherMachine({workshop.path("one")}, foreign);
  EXPECT_EQ(otherMachine.find("/bin/tool", id).refusal,
            "/bin/tool: " + workshop.path("one/tool") + " is not for " + foreign);
}

TEST_F(SymbolFinderTest, CompletesAStrippedFile) {
  workshop.run("mkdir -p root/bin copy plain byid/.build-id/" + link.substr(0, 2) +
               " && strip -o root/bin/tool $FIXTURE && "
               "cp $FIXTURE copy/tool && strip -g -o plain/tool $FIXTURE && objcopy --only-keep-debug "
               "$FIXTURE byid/.build-id/" +
               link + ".debug");
  const auto debugOf = [&](const std::vector<std::string>& more) {
    std::vector<std::string> roots = {workshop.path("root")};
    for (const std::string& name : more) roots.push_back(workshop.path(name));
    SymbolFinder finder(roots);
    const FoundFile& file = finder.find("/bin/tool", id);
    EXPECT_EQ(file.path, workshop.path("root/bin/tool"));
    return file.debugPath;
  };
  EXPECT_EQ(debugOf({}), "");
  EXPECT_EQ(debugOf({"copy"}), workshop.path("copy/tool"));
  EXPECT_EQ(debugOf({"byid"}), workshop.path("byid/.build-id/" + link + ".debug"));
  EXPECT_EQ(debugOf({"plain"}), workshop.path("plain/tool"));
  EXPECT_EQ(debugOf({"plain", "copy"}), workshop.path("copy/tool")) << "lines weigh more";

  SymbolFinder debugOnly({workshop.path("byid")});
  EXPECT_EQ(debugOnly.find("/bin/tool", id).path, workshop.path("byid/.build-id/" + link + ".debug"));
}

TEST_F(SymbolFinderTest, FollowsADebugLinkWhoseChecksumAgrees) {
  workshop.run(
      "mkdir -p root/bin/.debug && objcopy --only-keep-debug --remove-section .note.gnu.build-id $FIXTURE "
      "tool.debug && "
      "strip --remove-section=.note.gnu.build-id -o root/bin/tool $FIXTURE && "
      "objcopy --add-gnu-debuglink=tool.debug root/bin/tool && cp tool.debug root/bin/.debug/");
  SymbolFinder finder({workshop.path("root")});
  EXPECT_EQ(finder.find("/bin/tool", "").debugPath, workshop.path("root/bin/.debug/tool.debug"));
  workshop.run("printf x >>root/bin/.debug/tool.debug");
  SymbolFinder again({workshop.path("root")});
  EXPECT_EQ(again.find("/bin/tool", "").debugPath, "");
}

TEST(BuildId, IsFoundInNotes) {
  const auto note = [](std::uint32_t type, std::string name, std::string description) {
    const std::uint32_t head[] = {static_cast<std::uint32_t>(name.size()),
                                  static_cast<std::uint32_t>(description.size()), type};
    name.resize((name.size() + 3) / 4 * 4);
    description.resize((description.size() + 3) / 4 * 4);
    return std::string(reinterpret_cast<const char*>(head), sizeof head) + name + description;
  };
  const std::string gnu("GNU\0", 4);
  const std::string notes = note(1, "Linux", "abc") + note(3, gnu, "\x01\xfe\x20");
  EXPECT_EQ(buildIdInNotes(notes), "01fe20");
  EXPECT_EQ(buildIdInNotes(note(3, "Xen", "abc")), "");
  for (std::size_t size = 0; size < notes.size() - 4; ++size)
    EXPECT_EQ(buildIdInNotes(notes.substr(0, size)), "");
  EXPECT_EQ(buildIdInNotes(std::string(12, '\xff')), "");
}

}  // namespace
}  // namespace zelkit
