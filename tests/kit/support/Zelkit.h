#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

/// Exit status and output of a program.
struct ProgramRun {
  int status = -1;
  std::string said;  ///< on both outputs
};

/// Runs a command of the shell.
inline ProgramRun runCommand(const std::string& command) {
  ProgramRun run;
  std::FILE* output = popen(("( " + command + " ) 2>&1").c_str(), "r");
  if (output == nullptr) return run;
  char block[4096];
  for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, output)) > 0;)
    run.said.append(block, count);
  const int status = pclose(output);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
  return run;
}

/// Runs zelkit without the user's cache, after commands that prepare the shell.
inline ProgramRun runZelkit(const std::string& arguments, const std::string& preparation = ":") {
  return runCommand("unset HOME XDG_CACHE_HOME DEBUGINFOD_URLS; " + preparation + "; " ZELKIT_PROGRAM " " +
                    arguments);
}
