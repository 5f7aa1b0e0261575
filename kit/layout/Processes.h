#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "layout/AddressSpace.h"
#include "layout/SeededHash.h"

namespace zelkit {

/// A thread and the name that the records made so far give it.
struct Thread {
  std::string name;
  std::string told;  ///< empty until a record named it
};

/// Where the file of a mapping lies in the records made.
struct PlacedFile {
  std::uint64_t start = 0;
  std::uint64_t end = 0;  ///< symbol addresses below this one have a place
  bool placed = false;    ///< false if there was no range left
};

/// A process as it is at one moment of the recording.
struct Process {
  /// How the addresses of a mapping move.
  struct Shift {
    std::uint64_t end = 0;       ///< the first address after the mapping
    std::uint64_t shift = 0;     ///< what takes a recorded address to that in the records made
    std::uint64_t toSymbol = 0;  ///< what takes a recorded address to the symbol's
    std::size_t file = 0;        ///< index into MappedFiles
  };

  std::uint32_t pid = 0;
  std::shared_ptr<AddressSpace> space =
      std::make_shared<AddressSpace>();  ///< copied when one of its owners changes
  std::map<std::uint32_t, Thread> threads;
  std::map<std::size_t, PlacedFile> places;                     ///< by file
  std::set<std::pair<std::uint64_t, std::uint64_t>> toldMoves;  ///< old and new starts of mappings told
  /// Of the mappings that samples have touched since the last change: starts, ascending, and the rest.
  std::vector<std::uint64_t> starts;
  std::vector<Shift> shifts;

  /// Forgets what followed from the mappings.
  void mappingsChanged() {
    starts.clear();
    shifts.clear();
  }
};

/// The processes of a recording, who descends from whom and what each has mapped.
class Processes {
 public:
  /// Returns the process, which is entered on first mention.
  Process& of(std::uint32_t pid);
  /// Returns the thread, whose name is ":TID" until it has one.
  Thread& threadOf(Process& process, std::uint32_t tid);

  /// A thread takes a name; at an exec the process's mappings go.
  Thread& name(std::uint32_t pid, std::uint32_t tid, std::string_view name, bool exec);
  /// A child has its parent's name, and a new process the parent's mappings from this moment on.
  void fork(std::uint32_t pid, std::uint32_t parentPid, std::uint32_t tid, std::uint32_t parentTid,
            bool inheritsMappings);
  /// Puts a mapping into a process, or takes the range out of it if the mapping holds no code.
  void map(Process& process, const AddressSpace::Mapping& mapping, bool executable);

  /// Returns how many times mappings were not inherited since too many had been copied already.
  [[nodiscard]] std::uint64_t cutLineages() const { return _cutLineages; }

 private:
  AddressSpace& ownSpace(Process& process);

  std::unordered_map<std::uint64_t, Process, SeededHash> _processes;
  Process* _last = nullptr;
  std::uint64_t _copied = 0;  ///< mappings, for processes that changed what they had inherited
  std::uint64_t _cutLineages = 0;
};

}  // namespace zelkit
