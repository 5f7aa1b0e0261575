/// The way back to the addresses that a device had, see docs/layout-file.md.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace zelkit {

class LayoutFile {
 public:
  /// Nothing was moved.
  LayoutFile() = default;

  /// Reads the file that lies beside a document; without one nothing was moved. Throws std::runtime_error
  /// with "PATH: reason" if it is there and cannot be understood.
  static LayoutFile beside(const std::string& documentPath);

  /// Returns the address that the device had for an address in the document, of a mapping of that process.
  std::uint64_t original(std::uint32_t pid, std::uint64_t address) const;

 private:
  struct Mapping {
    std::uint64_t size = 0;
    std::uint64_t original = 0;
  };

  /// By process and first address in the document.
  std::map<std::pair<std::uint32_t, std::uint64_t>, Mapping> _mappings;
};

}  // namespace zelkit
