/// The headers of an ELF file, as needed to lay out its mappings and to distinguish it from other files of
/// its name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelkit {

/// One PT_LOAD segment: bytes [offset, offset + fileSize) of the file become [address, address + fileSize).
struct ElfSegment {
  std::uint64_t offset = 0;
  std::uint64_t address = 0;  ///< link address, from which symbol lists count
  std::uint64_t fileSize = 0;
  bool executable = false;

  bool operator==(const ElfSegment&) const = default;
};

/// The headers of an ELF file of either width and byte order.
struct ElfFile {
  bool positionIndependent = false;  ///< ET_DYN: a library or a PIE; false for ET_EXEC and ET_REL
  bool wide = false;                 ///< 64-bit
  std::uint16_t machine = 0;         ///< EM_ARM, EM_X86_64 ... of <elf.h>
  std::string buildId;               ///< lower-case hexadecimal digits, empty if the file has none
  std::vector<ElfSegment> segments;  ///< in the order of the file, which is ascending by address

  bool hasSymbolTable = false;  ///< .symtab, which has local functions too
  bool hasLines = false;        ///< .debug_line
  std::string debugLink;        ///< file name in .gnu_debuglink, empty if there is none
  std::uint32_t debugLinkCrc = 0;

  /// Returns the link address of a byte of the file, by the segment that maps it; an executable segment is
  /// preferred, as two may share a page. Returns nothing if no segment contains the offset.
  [[nodiscard]] std::optional<std::uint64_t> addressOf(std::uint64_t fileOffset) const;

  /// Reads the headers. Throws std::runtime_error with "FILE: reason" if the file cannot be read or is not
  /// ELF.
  static ElfFile read(const std::string& path);
};

}  // namespace zelkit
