#include "verbs/ChildProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "verbs/Verb.h"

namespace zelkit {

namespace {

void writeAll(int fd, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t count = ::write(fd, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return;
    done += static_cast<std::size_t>(count);
  }
}

void readAll(int fd, std::string& text) {
  char block[1 << 16];
  for (;;) {
    const ssize_t count = ::read(fd, block, sizeof block);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.append(block, static_cast<std::size_t>(count));
  }
}

[[noreturn]] void runChild(const std::function<void(std::string&)>& work, int to) {
  int status = 0;
  try {
    std::string result;
    work(result);
    writeAll(to, result);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zelkit: %s\n", error.what());
    status = static_cast<int>(Status::kUnreadable);
  }
  std::fflush(nullptr);
  // Without the engine's destructors, which would only take time.
  _exit(status);
}

}  // namespace

int inChildProcess(const std::function<void(std::string&)>& work, std::string& result) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
  if (child == 0) {
    ::close(ends[0]);
    // The engine prints errors on standard output, which may be a verb's own output.
    dup2(STDERR_FILENO, STDOUT_FILENO);
    runChild(work, ends[1]);
  }
  ::close(ends[1]);
  readAll(ends[0], result);
  ::close(ends[0]);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status))
    throw std::runtime_error(std::string("the conversion was ended: ") + strsignal(WTERMSIG(status)));
  return WEXITSTATUS(status);
}

}  // namespace zelkit
