/// Maps addresses in a document back to those of the device, see docs/layout-file.md.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace zelkit {

class LayoutFile {
 public:
  /// Maps every address to itself.
  LayoutFile() = default;

  /// Returns the path of the layout file that a document may have.
  static std::string pathOf(const std::string& documentPath) { return documentPath + ".layout.json"; }

  /// Reads the layout file in the folder of a document; if there is none, every address maps to itself.
  /// Throws std::runtime_error with "PATH: reason" if it exists and cannot be parsed.
  static LayoutFile beside(const std::string& documentPath);

  /// Returns the device's address for an address in the document, in a mapping of that process.
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
