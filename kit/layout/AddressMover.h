#pragma once

#include <cstddef>
#include <cstdint>

#include "layout/Account.h"
#include "layout/MappedFiles.h"
#include "layout/OldRecords.h"
#include "layout/Places.h"
#include "layout/Processes.h"

namespace zelkit {

/// Moves the addresses of processes to where the engine resolves them correctly, and writes the record of a
/// mapping when its first address is used.
class AddressMover {
 public:
  /// All references must outlive the mover.
  AddressMover(MappedFiles& files, OldRecords& records, Account& account)
      : _files(files), _records(records), _account(account) {}

  /// See Places.
  void limit(std::uint64_t kernelStart) { _places.limit(kernelStart); }

  /// Returns how the addresses around this one move, or null if no mapping contains it. Valid until the next
  /// call.
  const Process::Shift* shiftOf(Process& process, std::uint64_t address) {
    const Process::Shift* known = process.knownShift(address);
    return known != nullptr ? known : learnShift(process, address);
  }

  /// Returns the new address of one that no mapping contains.
  std::uint64_t keep(const Process& process, std::uint64_t address) {
    return _places.keep(process.pid, address);
  }

  /// Returns the new address of any address.
  std::uint64_t moved(Process& process, std::uint64_t address) {
    const Process::Shift* shift = shiftOf(process, address);
    return shift != nullptr ? address + shift->shift : keep(process, address);
  }

 private:
  const Process::Shift* learnShift(Process& process, std::uint64_t address);
  bool place(Process& process, const AddressSpace::Mapping& mapping, Process::Shift& shift);
  PlacedFile placeFile(Process& process, std::size_t index, std::uint64_t firstAddress);

  MappedFiles& _files;
  OldRecords& _records;
  Account& _account;
  Places _places;
};

}  // namespace zelkit
