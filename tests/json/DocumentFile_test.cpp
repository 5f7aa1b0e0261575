#include "json/DocumentFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "support/Conversion.h"

namespace {

int interruption = 0;

/// Writes a document that is larger than a file may be, in a child process, which ends with the errno that it
/// got. With a signal to send, that one comes when the limit is reached, in the middle of the document.
int statusOfWritingTooMuch(const std::string& path, void (*atTheLimit)(int)) {
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limits[] = {{0, 0}, {10000, 10000}};
    setrlimit(RLIMIT_CORE, &limits[0]);
    setrlimit(RLIMIT_FSIZE, &limits[1]);
    std::signal(SIGXFSZ, atTheLimit);
    const std::string piece(4000, 'x');
    const std::string_view pieces[] = {piece, piece, piece, piece};
    DocumentFile file;
    if (file.open(path.c_str()) != 0) _exit(99);
    _exit(file.write(pieces));
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST(DocumentFile, ContainsAllPieces) {
  const Conversion folder;
  folder.write("out", "what was there before");
  const std::string_view pieces[] = {"one,", "", "two\n"};
  DocumentFile file;
  EXPECT_EQ(file.open(folder.path("none/out").c_str()), ENOENT);
  EXPECT_EQ(file.open(folder.path("out").c_str()), 0);
  EXPECT_EQ(file.write(pieces), 0);
  EXPECT_EQ(folder.read("out"), "one,two\n");
}

TEST(DocumentFile, IsEmptyIfWritingFails) {
  const Conversion folder;
  const std::string path = folder.path("out");
  int status = statusOfWritingTooMuch(path, SIG_IGN);
  EXPECT_EQ(WEXITSTATUS(status), EFBIG);
  EXPECT_EQ(folder.read("out"), "");
  status = statusOfWritingTooMuch(path, SIG_DFL);
  EXPECT_EQ(WTERMSIG(status), SIGXFSZ);
  EXPECT_EQ(folder.read("out"), "");
}

TEST(DocumentFile, IsEmptyIfASignalInterruptsTheWriting) {
  const Conversion folder;
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    interruption = signal;
    const int status = statusOfWritingTooMuch(folder.path("out"), [](int) { std::raise(interruption); });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), signal);
    EXPECT_EQ(folder.read("out"), "");
  }
}

}  // namespace
