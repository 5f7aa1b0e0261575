#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/RecordingBuilder.h"

/// Sets environment variables and puts them back.
class ScopedEnvironment {
 public:
  ~ScopedEnvironment();
  void set(const std::string& name, const std::string& value);
  void unset(const std::string& name);

 private:
  struct Saved {
    std::string name;
    bool wasSet;
    std::string value;
  };
  void save(const std::string& name);

  std::vector<Saved> _saved;
};

/// How a conversion in its own process ended.
struct Ending {
  bool endedWell = false;  ///< or with the message for an unusable file
  bool aborted = false;    ///< by an uncaught exception
  int signal = 0;
  int status = 0;  ///< of its exit
  long peakMegabytes = 0;
};

/// One conversion in its own surroundings: a temporary folder, machine files in it and an nm that prints
/// prepared lists. A conversion leaves its records in static tables, so a test process runs one.
class Conversion {
 public:
  Conversion();
  ~Conversion();
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  /// A file of the folder.
  std::string path(const std::string& name) const { return _folder + "/" + name; }
  void write(const std::string& name, const std::string& text) const;
  std::string read(const std::string& name) const;

  /// Creates a program or library at its path below the folder "root", which is on the search path, and sets
  /// what nm prints for it.
  void library(const std::string& file, const std::string& list) const;
  void kernelSymbols(const std::string& text) const { write("kallsyms", text); }
  void softInterrupts(const std::string& text) const { write("softirqs", text); }
  void traceText(const std::string& text) const { write("trace", text); }
  ScopedEnvironment& environment() { return _environment; }
  /// Uses the real nm instead of the prepared lists.
  void useRealNm();

  /// Converts and returns the document. Arguments come after -i, -o and -p.
  std::string run(const RecordingBuilder& recording, const std::vector<std::string>& arguments = {});
  std::string runFile(const std::string& file, const std::vector<std::string>& arguments = {});
  /// Runs the program with just these arguments; returns its exit status.
  int runProgram(const std::vector<std::string>& arguments) const;
  /// Converts the bytes of a recording to the file "out", in a child process with standard output discarded.
  /// The child calls `prepare` first.
  Ending runApart(
      const std::string& recording, const std::vector<std::string>& arguments,
      const std::function<void()>& prepare = [] {}) const;

 private:
  std::string _folder;
  std::string _realPath;
  ScopedEnvironment _environment;
};

/// Returns what the function prints, standard output and standard error in order. Runs it in a child process.
std::string printed(const std::function<void()>& act);

/// The rows of a section of the profile document, a line each, less the brackets around them and the extra
/// comma.
std::string rows(const std::string& document, const std::string& section);

/// The text of a file.
std::string readFile(const std::string& path);
