/// The processes, libraries, files and functions that the keys of a profile document refer to.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "document/DocumentVisitor.h"

namespace zelkit {

/// Collects processes, libraries, files and functions from their rows; samples, which follow, refer to them
/// by key.
class ProfileTables : public DocumentVisitor {
 public:
  struct Function;
  struct Process {
    std::uint32_t pid = 0;
    std::uint32_t tid = 0;
    std::string name;
  };
  struct Library {
    std::uint32_t pidKey = 0;
    std::string name;
    std::uint64_t start = 0;
    std::uint64_t size = 0;

    /// Returns where the function begins within the library.
    std::uint64_t offsetOf(const Function& function) const;
  };
  struct Function {
    std::string name;
    std::uint64_t start = 0;
    std::uint64_t size = 0;
    /// Keys of the libraries in which it was hit.
    std::vector<std::uint32_t> libraryKeys;
    std::string file;
    std::uint32_t line = 0;
  };

  /// Where a frame comes from: a source file and its line or, with line 0, a library; else nothing.
  struct Origin {
    std::string name;
    std::uint32_t line = 0;
  };

  void process(const ProcessRow& row) override;
  void library(const LibraryRow& row) override;
  void file(const FileRow& row) override;
  void function(const FunctionRow& row) override;

  /// Removes everything, for the next document.
  void clear() { *this = {}; }

  /// Return null for an unknown key.
  const Process* findProcess(std::uint32_t key) const;
  const Library* findLibrary(std::uint32_t key) const;
  const Function* findFunction(std::uint32_t key) const;

  /// Returns the name of the process to which the thread of that key belongs: the latest name of its main
  /// thread, or the thread's own name if the document has no main thread.
  std::string processName(std::uint32_t key) const;

  /// Returns the name for the key of a sample or of a back-trace entry: that of the function, or "[in
  /// LIBRARY]" if only the library is known.
  std::string frameName(std::uint32_t key) const;

  /// Returns the library that holds the frame, or null. A function that was hit in several has the first of
  /// them.
  const Library* libraryOf(std::uint32_t key) const;

  Origin originOf(std::uint32_t key) const;

  /// Returns whether the frame belongs to the kernel.
  bool isKernel(std::uint32_t key) const;

 private:
  std::map<std::uint32_t, Process> _processes;
  /// Names of main threads, by process.
  std::map<std::uint32_t, std::string> _mainNames;
  std::map<std::uint32_t, Library> _libraries;
  std::map<std::uint32_t, Function> _functions;
  /// Rows of files precede those of their functions.
  std::map<std::uint32_t, std::pair<std::string, std::uint32_t>> _sourceLines;
};

/// Calls `visit` for the frames of a sample, innermost first: its own key, then those of its back-trace.
/// Context markers of the kernel (the addresses above -4096, enum perf_callchain_context) are no frames, and
/// neither is the entry of the back-trace that repeats the sample's own address at its start.
template <typename Visit>
void forEachFrame(const SampleRow& sample, Visit visit) {
  constexpr std::uint64_t kFirstContextMarker = ~std::uint64_t{4094};
  visit(sample.mapKey);
  bool atStart = true;
  for (const TraceEntry& entry : sample.trace) {
    if (entry.address >= kFirstContextMarker) continue;
    if (!atStart || entry.address != sample.ip) visit(entry.key);
    atStart = false;
  }
}

}  // namespace zelkit
