#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zelkit {

struct MappedFile;

/// A piece of a file, or of anonymous memory, in the address space of a process.
struct MappedPiece {
  std::string path;       ///< as recorded, without the mark of a deleted file
  std::string buildId;    ///< lower-case hexadecimal, empty if unknown
  std::uint32_t pid = 0;  ///< the process that mapped anonymous memory; 0 for a file
  std::uint64_t start = 0;
  std::uint64_t length = 0;
  std::uint64_t offset = 0;  ///< of the piece in the file
  bool madeCode = false;     ///< its symbols have the addresses of the process
};

/// What the files themselves tell about a mapping, for whoever has them at hand. Without them a mapping is
/// laid out by what the recording says. Only files that samples touch are asked for.
class FileKnowledge {
 public:
  virtual ~FileKnowledge() = default;

  /// Where a mapping lies among the addresses that its file's symbols have.
  struct Link {
    std::uint64_t address = 0;  ///< of the mapping's first byte
    std::uint64_t end = 0;      ///< where the last executable segment of the file ends; 0 if unknown
    bool fixed = false;         ///< a program that runs where it was linked (ET_EXEC)
    bool inPlace = false;       ///< the symbols are those of the process, as of code made while it ran
  };

  /// Returns nothing if the file is unknown.
  virtual std::optional<Link> linkOf(const MappedPiece& piece) = 0;

  /// Returns why the address has no name, or null if it has one. The address is one of the file's symbols'.
  virtual const char* whyUnnamed(const MappedFile& file, std::uint64_t address) = 0;
  /// The same for an address of the kernel.
  virtual const char* whyKernelUnnamed(std::uint64_t address) = 0;
};

}  // namespace zelkit
