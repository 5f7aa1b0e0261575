#include "support/Terminal.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

void redirect(int descriptor, const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || dup2(file, descriptor) < 0) _exit(99);
  close(file);
}

/// Reads until no process has the terminal open.
std::string readAll(int terminal) {
  std::string text;
  char bytes[4096];
  for (ssize_t got = 0; (got = read(terminal, bytes, sizeof bytes)) > 0;)
    text.append(bytes, static_cast<std::size_t>(got));
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text.compare(i, 2, "\r\n") != 0) lines += text[i];
  return lines;
}

}  // namespace

Said runOnTerminal(const Conversion& conversion, const std::vector<std::string>& arguments,
                   StandardError standardError) {
  constexpr unsigned int mostSeconds = 60;
  const std::string output = conversion.path("said.out");
  const std::string error = conversion.path("said.err");
  conversion.write("said.err", "");
  std::fflush(nullptr);
  winsize size{};
  size.ws_row = 24;
  size.ws_col = 80;
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
  if (child < 0) return {-1, "no terminal to be had", "", ""};
  if (child == 0) {
    alarm(mostSeconds);
    redirect(STDOUT_FILENO, output);
    if (standardError == StandardError::file) redirect(STDERR_FILENO, error);
    // An exception must end this process, as it ends the program, and not reach the test's own handler.
    const int status = [&]() noexcept { return conversion.runProgram(arguments); }();
    std::fflush(nullptr);
    _exit(status);
  }
  Said said;
  said.terminal = readAll(terminal);
  close(terminal);
  waitpid(child, &said.status, 0);
  said.output = readFile(output);
  said.error = readFile(error);
  return said;
}
