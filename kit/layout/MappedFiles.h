#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "layout/FileKnowledge.h"
#include "recording/Events.h"

namespace zelkit {

/// A mapped file, or a piece of anonymous memory with code.
struct MappedFile {
  std::string name;           ///< in the records written; unique
  std::string path;           ///< as recorded, without the mark of a deleted file
  std::string buildId;        ///< lower-case hexadecimal, empty if unknown
  std::uint64_t low = 0;      ///< the symbol address at the start of a written mapping
  std::uint64_t end = 0;      ///< end of the mapped symbol addresses
  std::uint32_t pid = 0;      ///< for anonymous memory the process that generated the code; else 0
  bool fixed = false;         ///< runs at its link address
  bool inPlace = false;       ///< its symbols have addresses of the process
  bool known = false;         ///< whether the file itself was available
  bool stripped = false;      ///< whether its symbol table is missing
  std::uint64_t samples = 0;  ///< number of samples in it
  std::uint64_t unnamed = 0;  ///< of these without a function
};

/// The mapped files of a recording. Names are shortened to fit a record.
class MappedFiles {
 public:
  /// `architecture`: as printed by uname -m. `knowledge` may be null.
  MappedFiles(std::string architecture, const std::map<std::string, std::string>& buildIds,
              FileKnowledge* knowledge)
      : _architecture(std::move(architecture)), _buildIds(buildIds), _knowledge(knowledge) {}

  /// Adds the file of a mapping; returns its number for placeOf.
  std::size_t enter(const MappingEvent& mapping);

  struct Place {
    std::size_t file;
    std::uint64_t address;  ///< symbol address of the piece's first byte
  };
  /// Returns the file of a piece of the mapping with that number, and the symbol address at which the piece
  /// starts.
  Place placeOf(std::size_t entered, std::uint64_t start, std::uint64_t length, std::uint64_t offset);

  [[nodiscard]] const MappedFile& operator[](std::size_t index) const { return _files[index]; }
  MappedFile& operator[](std::size_t index) { return _files[index]; }
  [[nodiscard]] std::size_t size() const { return _files.size(); }
  /// Returns the file of a name in the records, or null.
  [[nodiscard]] const MappedFile* find(const std::string& name) const;
  /// Returns the number of shortened names.
  [[nodiscard]] std::uint64_t shortened() const { return _shortened; }

 private:
  [[nodiscard]] FileKnowledge::Link guess(const MappedPiece& piece) const;
  [[nodiscard]] bool isUsualLinkAddress(std::uint64_t address) const;
  std::size_t addFile(const std::string& key, MappedFile file);

  std::string _architecture;
  const std::map<std::string, std::string>& _buildIds;
  FileKnowledge* _knowledge;
  std::vector<MappedPiece> _entered;  ///< path, build-id and process
  std::map<std::string, std::size_t> _enteredByKey;
  std::deque<MappedFile> _files;
  std::map<std::string, std::size_t> _byKey;
  std::map<std::string, std::size_t> _byName;
  std::uint64_t _shortened = 0;
};

/// Returns the text shortened to `size` bytes: "..." and its end, which starts at a component of the path if
/// one fits.
std::string shortenedFromLeft(std::string_view text, std::size_t size);

}  // namespace zelkit
