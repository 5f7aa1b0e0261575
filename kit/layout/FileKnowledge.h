#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zelkit {

struct MappedFile;

/// A mapped piece of a file or of anonymous memory.
struct MappedPiece {
  std::string path;       ///< as recorded, without the mark of a deleted file
  std::string buildId;    ///< lower-case hexadecimal, empty if unknown
  std::uint32_t pid = 0;  ///< the process that mapped anonymous memory; 0 for a file
  std::uint64_t start = 0;
  std::uint64_t length = 0;
  std::uint64_t offset = 0;  ///< of the piece in the file
  bool madeCode = false;     ///< its symbols have addresses of the process
};

/// Information about mappings from the mapped files, if they are available. Without it a mapping is laid out
/// from the recording alone. Only files hit by samples are queried.
class FileKnowledge {
 public:
  virtual ~FileKnowledge() = default;

  /// Position of a mapping among the symbol addresses of its file.
  struct Link {
    std::uint64_t address = 0;  ///< of the mapping's first byte
    std::uint64_t end = 0;      ///< where the last executable segment of the file ends; 0 if unknown
    bool fixed = false;         ///< a program at its link address (ET_EXEC)
    bool inPlace = false;       ///< symbols have addresses of the process, as those of JIT code have
    bool stripped = false;      ///< without its symbol table, which is not at hand elsewhere either
  };

  /// Returns nothing if the file is unknown.
  virtual std::optional<Link> linkOf(const MappedPiece& piece) = 0;

  /// Returns why the address has no name, or null if it has one. It is a symbol address of the file.
  virtual const char* whyUnnamed(const MappedFile& file, std::uint64_t address) = 0;
  /// The same for an address of the kernel.
  virtual const char* whyKernelUnnamed(std::uint64_t address) = 0;
};

}  // namespace zelkit
