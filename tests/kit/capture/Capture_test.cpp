#include "capture/Capture.h"

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "kit/symbols/ElfWorkshop.h"

namespace zelkit {
namespace {

namespace fs = std::filesystem;

struct Entry {
  std::string name;
  std::string content = {};
  unsigned type = AE_IFREG;
  std::string target = {};  ///< of a link
};

/// Writes a tar of the entries, compressed by gzip if its name says so.
void writeTar(const std::string& path, const std::vector<Entry>& entries) {
  const std::unique_ptr<archive, decltype(&archive_write_free)> tar(archive_write_new(), archive_write_free);
  archive_write_set_format_pax_restricted(tar.get());
  if (path.ends_with(".gz")) archive_write_add_filter_gzip(tar.get());
  archive_write_set_bytes_in_last_block(tar.get(), 1);
  ASSERT_EQ(archive_write_open_filename(tar.get(), path.c_str()), ARCHIVE_OK);
  for (const Entry& oneEntry : entries) {
    const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                              archive_entry_free);
    archive_entry_set_pathname(entry.get(), oneEntry.name.c_str());
    archive_entry_set_mode(entry.get(), oneEntry.type | 0644);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(oneEntry.content.size()));
    if (!oneEntry.target.empty()) {
      if (oneEntry.type == AE_IFLNK)
        archive_entry_set_symlink(entry.get(), oneEntry.target.c_str());
      else
        archive_entry_set_hardlink(entry.get(), oneEntry.target.c_str());
    }
    ASSERT_EQ(archive_write_header(tar.get(), entry.get()), ARCHIVE_OK);
    archive_write_data(tar.get(), oneEntry.content.data(), oneEntry.content.size());
  }
  archive_write_close(tar.get());
}

const std::vector<Entry> kWhole = {{"perf.data", "PERFILE2 and more"},
                                   {"kallsyms", "c0008000 T stext\n"},
                                   {"softirqs", "CPU0\n"},
                                   {"uptime", "1.00 2.00\n"},
                                   {"trace", "# tracer: nop\n"},
                                   {"uname", "Linux board 6.1.0 armv7l\n"},
                                   {"files/lib/libx.so", "ELF"}};

class CaptureTest : public testing::Test {
 protected:
  /// Returns the error of a capture's constructor for a tar of the entries.
  std::string refusal(const std::vector<Entry>& entries) {
    const std::string path = workshop.path("c.tar");
    writeTar(path, entries);
    setenv("TMPDIR", workshop.path("tmp/x").substr(0, workshop.path("tmp/x").size() - 2).c_str(), 1);
    try {
      const Capture capture(path);
      return "taken";
    } catch (const std::runtime_error& error) {
      EXPECT_TRUE(fs::is_empty(workshop.folder() + "/tmp")) << "nothing is kept of it";
      const std::string text = error.what();
      return text.starts_with(path + ": ") ? text.substr(path.size() + 2) : text;
    }
  }

  ElfWorkshop workshop;
};

TEST_F(CaptureTest, IsAFolderOrATar) {
  for (const Entry& entry : kWhole) workshop.write("folder/" + entry.name, entry.content);
  writeTar(workshop.path("plain.tar"), kWhole);
  writeTar(workshop.path("c.tar.gz"), kWhole);
  std::vector<Entry> inFolder = {{"board/", "", AE_IFDIR}};
  for (const Entry& entry : kWhole) inFolder.push_back({"./board/" + entry.name, entry.content});
  writeTar(workshop.path("nested.tar"), inFolder);

  std::string unpacked;
  for (const char* name : {"folder", "plain.tar", "c.tar.gz", "nested.tar"}) {
    const std::string path = workshop.path(name);
    EXPECT_TRUE(Capture::isCapture(path)) << name;
    const Capture capture(path);
    unpacked = capture.recording();
    EXPECT_EQ(ElfWorkshop::has("true") && fs::file_size(capture.recording()), true);
    const MachineFolder& machine = capture.machine();
    for (const auto& [file, size] : {std::pair{machine.kernelSymbols, 17u},
                                     {machine.softInterrupts, 5u},
                                     {machine.uptime, 10u},
                                     {machine.traceText, 14u},
                                     {machine.root + "/lib/libx.so", 3u}})
      EXPECT_EQ(fs::file_size(file), size) << name << ' ' << file;
    EXPECT_EQ(capture.uname(), "Linux board 6.1.0 armv7l");
    EXPECT_TRUE(machine.missing.empty());
    EXPECT_EQ(capture.damage(), "");
    const std::string inside = path.ends_with("nested.tar") ? ":board/" : ":";
    EXPECT_EQ(capture.shown("in " + capture.recording() + ", " + machine.root + "/lib"),
              path.ends_with("folder") ? "in " + path + "/perf.data, " + path + "/files/lib"
                                       : "in " + path + inside + "perf.data, " + path + inside + "files/lib");
  }
  EXPECT_FALSE(fs::exists(unpacked));
  EXPECT_TRUE(fs::exists(workshop.path("folder/perf.data")));
  EXPECT_FALSE(Capture::isCapture(workshop.path("folder/perf.data")));
  EXPECT_FALSE(Capture::isCapture(workshop.folder() + "/absent"));
}

TEST_F(CaptureTest, RefusesTarsThatReachOutside) {
  const std::string marker = workshop.folder() + "/planted";
  const struct {
    Entry entry;
    const char* expected;
  } cases[] = {
      {{"../planted", "x"}, "refused: \"../planted\" leads out of the capture"},
      {{"files/../../planted", "x"}, "refused: \"files/../../planted\" leads out of the capture"},
      {{marker, "x"}, "leads out of the capture"},
      {{"link", "", AE_IFLNK, "/etc"}, "refused: \"link\" is a link"},
      {{"link", "", AE_IFREG, "perf.data"}, "refused: \"link\" is a link"},
      {{"pipe", "", AE_IFIFO}, "refused: \"pipe\" is neither a file nor a folder"},
      {{"perf.data", "again"}, "File exists"},
      {{"perf.data/inside", "x"}, "Not a directory"},
  };
  for (const auto& oneCase : cases) {
    const std::string said = refusal({{"perf.data", "x"}, oneCase.entry, {"kallsyms", "x"}});
    EXPECT_NE(said.find(oneCase.expected), std::string::npos) << said;
  }
  EXPECT_FALSE(fs::exists(marker));
  EXPECT_EQ(refusal({{"other", "x"}}), "no perf.data in this capture");
  EXPECT_EQ(refusal({}), "no perf.data in this capture");
}

TEST_F(CaptureTest, KeepsTheFilesBeforeTheDamage) {
  writeTar(workshop.path("whole.tar"), kWhole);
  const std::string whole = workshop.read("whole.tar");
  const std::string cut = workshop.path("cut.tar");
  // Within the third entry: two are whole.
  workshop.write("cut.tar", whole.substr(0, 2 * 1024 + 512 + 2));
  const Capture capture(cut);
  EXPECT_NE(capture.damage().find(cut + ": damaged after 2 entries: "), std::string::npos)
      << capture.damage();
  EXPECT_EQ(fs::file_size(capture.machine().kernelSymbols), 17u);
  EXPECT_EQ(capture.machine().uptime, "");

  for (std::size_t size = 0; size < whole.size(); size += 100) {
    workshop.write("cut.tar", whole.substr(0, size));
    try {
      EXPECT_TRUE(fs::exists(Capture(cut).recording())) << size;
    } catch (const std::runtime_error& error) {
      EXPECT_LT(size, 1024u) << error.what();
    }
  }
}

TEST(MachineFolder, ReportsMissingFiles) {
  const ElfWorkshop workshop;
  workshop.write("hidden/kallsyms", "00000000 T stext\n00000000 T other\n");
  const MachineFolder hidden = MachineFolder::of(workshop.path("hidden"));
  EXPECT_EQ(hidden.kernelSymbols, "");
  ASSERT_EQ(hidden.missing.size(), 1u);
  EXPECT_NE(hidden.missing[0].find("kptr_restrict"), std::string::npos);
  workshop.write("first/kallsyms", "0000000000000000 A fixed_percpu_data\nffffffff81000000 T _text\n");
  EXPECT_EQ(MachineFolder::of(workshop.path("first")).kernelSymbols, workshop.path("first/kallsyms"));
  EXPECT_THROW(MachineFolder::of(workshop.folder() + "/absent"), std::runtime_error);
}

TEST(MachineIdentity, AgreesOnlyIfAllMembersAreKnownAndEqual) {
  const MachineIdentity board{"board", "6.1.0", "abcd"};
  EXPECT_TRUE(board.agreesWith(board));
  for (const MachineIdentity& other :
       {MachineIdentity{"other", "6.1.0", "abcd"}, MachineIdentity{"board", "6.1.1", "abcd"},
        MachineIdentity{"board", "6.1.0", "abce"}, MachineIdentity{"board", "6.1.0", ""}}) {
    EXPECT_FALSE(board.agreesWith(other));
    EXPECT_FALSE(other.agreesWith(board));
  }
  EXPECT_FALSE(MachineIdentity{}.agreesWith({}));
  EXPECT_FALSE(MachineIdentity::here().kernelRelease.empty());
}

}  // namespace
}  // namespace zelkit
