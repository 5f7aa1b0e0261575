#pragma once

#include <array>
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

#include "layout/Account.h"
#include "layout/AddressSpace.h"
#include "layout/SeededHash.h"

namespace zelkit {

/// A thread, and its name in the records written so far.
struct Thread {
  std::string name;
  std::string told;  ///< empty before the first record of it
};

/// The range of a file in the records written.
struct PlacedFile {
  std::uint64_t start = 0;
  std::uint64_t end = 0;  ///< end of the symbol addresses in the range
  bool placed = false;    ///< false if there was no range left
};

/// The state of a process at one time of the recording.
struct Process {
  /// How the addresses of a mapping move.
  struct Shift {
    std::uint64_t end = 0;       ///< the first address after the mapping
    std::uint64_t shift = 0;     ///< added to a recorded address for that in the records written
    std::uint64_t toSymbol = 0;  ///< added to a recorded address for the symbol address
    std::size_t file = 0;        ///< index into MappedFiles
  };

  std::uint32_t pid = 0;
  std::shared_ptr<AddressSpace> space =
      std::make_shared<AddressSpace>();  ///< shared with forked processes, copied on change
  std::map<std::uint32_t, Thread> threads;
  std::map<std::size_t, PlacedFile> places;  ///< by file
  std::set<std::pair<std::uint64_t, std::uint64_t>>
      toldMoves;  ///< old and new starts of mappings in the account
  /// The mappings hit by samples since the last change: starts, ascending, and the other values.
  std::vector<std::uint64_t> starts;
  std::vector<Shift> shifts;

  /// Returns how the addresses around this one move, or null if no mapping that samples have touched
  /// contains it.
  [[nodiscard]] const Shift* knownShift(std::uint64_t address) const {
    // Called for every entry of every back-trace, in unpredictable order, so the loop is free of branches.
    const std::uint64_t* start = starts.data();
    for (std::size_t count = starts.size(); count > 1;) {
      const std::size_t half = count / 2;
      start = start[half] <= address ? start + half : start;
      count -= half;
    }
    if (starts.empty() || address < *start) return nullptr;
    const Shift& shift = shifts[static_cast<std::size_t>(start - starts.data())];
    return address < shift.end ? &shift : nullptr;
  }

  /// Clears what was derived from the mappings.
  void mappingsChanged() {
    starts.clear();
    shifts.clear();
  }
};

/// The processes of a recording, their threads and mappings.
class Processes {
 public:
  /// The account must outlive the processes.
  explicit Processes(Account& account) : _account(account) {}

  /// Returns the process, created on first use.
  Process& of(std::uint32_t pid) {
    Process*& recent = _recent[pid % _recent.size()];
    if (recent == nullptr || recent->pid != pid) recent = &enter(pid);
    return *recent;
  }
  /// Returns the thread; before it has a name it is called ":TID".
  Thread& threadOf(Process& process, std::uint32_t tid);

  /// Sets the name of a thread; an exec also removes the process's mappings.
  Thread& name(std::uint32_t pid, std::uint32_t tid, std::string_view name, bool exec);
  /// Creates a child, which inherits its parent's name, and if it is a new process also the parent's
  /// mappings.
  void fork(std::uint32_t pid, std::uint32_t parentPid, std::uint32_t tid, std::uint32_t parentTid,
            bool inheritsMappings);
  /// Adds a mapping to a process, or only removes its range from the others if it has no code.
  void map(Process& process, const AddressSpace::Mapping& mapping, bool executable);

 private:
  Process& enter(std::uint32_t pid);
  AddressSpace& ownSpace(Process& process);

  Account& _account;
  std::unordered_map<std::uint64_t, Process, SeededHash> _processes;
  std::array<Process*, 256> _recent{};  ///< asked for last, by the end of the pid
  std::uint64_t _copied = 0;            ///< mappings, for processes that changed what they had inherited
};

}  // namespace zelkit
