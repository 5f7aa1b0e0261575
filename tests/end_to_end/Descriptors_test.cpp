// Runs whose caller has closed standard input, output or error: messages must not get into a file of the run.

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/Conversion.h"

namespace {

class Descriptors : public testing::Test {
 protected:
  Descriptors() {
    _recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
    _recording.sample({.ip = 0x10104, .pid = 7, .tid = 7, .time = 1500000000});
    _folder.library("/app/tool", "");
    // An nm that writes to every descriptor that it has inherited.
    _folder.write("bin/nm",
                  "#!/bin/sh\n"
                  "for fd in 2 3 4 5 6 7 8 9; do eval \"echo intruder >&$fd\" 2>/dev/null; done\n"
                  "printf '10000 T main\\n10100 T work\\n10300 T stop\\n'\n");
  }

  /// Returns the document of a run with these descriptors closed.
  std::string convert(const std::vector<int>& closed, const std::vector<std::string>& options = {"-b", "1"}) {
    const Ending ending = _folder.runApart(_recording.build(), options, [&] {
      for (const int descriptor : closed) close(descriptor);
    });
    EXPECT_EQ(ending.status, 0);
    return _folder.read("out");
  }

  Conversion _folder;
  RecordingBuilder _recording;
};

TEST_F(Descriptors, TheDocumentGetsItsOwnWhicheverAreClosed) {
  _folder.write("uptime", "100.0 50.0\n");
  const std::string document = convert({});
  EXPECT_NE(document.find("work"), std::string::npos);
  const std::vector<int> cases[] = {{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}};
  for (const std::vector<int>& closed : cases) EXPECT_EQ(convert(closed), document);
}

// With -W a run prints errors while it makes the document, which then starts with these bytes.
constexpr const char* kStartWithoutLabels = "{}{\n";

TEST_F(Descriptors, MessagesStayOutOfTheDocument) {
  _folder.write("uptime", "100.0 50.0\n");
  EXPECT_EQ(convert({0, 1, 2}, {"-b", "1", "-W"}).substr(0, 4), kStartWithoutLabels);
}

TEST_F(Descriptors, TheKernelsLogGetsItsOwn) {
  // Without an uptime, which would take the first free descriptor.
  for (const std::vector<int>& closed : {std::vector{1, 2}, std::vector{2}}) {
    EXPECT_EQ(convert(closed, {"-b", "1", "-m", "-v", "1", "-W"}).substr(0, 4), kStartWithoutLabels);
    EXPECT_EQ(_folder.read("kmsg"), "zcv-" + _folder.path("root/app/tool") + "\n");
  }
}

TEST_F(Descriptors, ZeroCountsAsARecordingThatIsNotOpen) {
  const Ending ending = _folder.runApart(_recording.build(), {"-b", "1"}, [] { close(0); });
  EXPECT_EQ(ending.status, 255);
}

TEST_F(Descriptors, AreNotNeededForAKernelsLogThatCannotBeOpened) {
  const std::string document = convert({});
  ASSERT_EQ(symlink("/nonexistent/kmsg", _folder.path("kmsg").c_str()), 0);
  EXPECT_EQ(convert({}, {"-b", "1", "-m"}), document);
}

}  // namespace
