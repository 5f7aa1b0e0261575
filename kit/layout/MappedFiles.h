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

/// A file of which processes map pieces, or a piece of anonymous memory that holds code.
struct MappedFile {
  std::string name;           ///< in the records made; no two files have the same
  std::string path;           ///< as recorded, without the mark of a deleted file
  std::string buildId;        ///< lower-case hexadecimal, empty if unknown
  std::uint64_t low = 0;      ///< the symbol address that the start of a record made stands for
  std::uint64_t end = 0;      ///< where the symbol addresses that are mapped end
  std::uint32_t pid = 0;      ///< the process that made the code, of anonymous memory; else 0
  bool fixed = false;         ///< runs where it was linked
  bool inPlace = false;       ///< its symbols have the addresses of the process
  bool known = false;         ///< whether the file itself was at hand
  std::uint64_t samples = 0;  ///< that hit it
};

/// The files of a recording, by what the mappings say. Names in the records are shortened to what a record
/// can hold.
class MappedFiles {
 public:
  /// `architecture`: as uname -m has it. `knowledge` may be null.
  MappedFiles(std::string architecture, const std::map<std::string, std::string>& buildIds,
              FileKnowledge* knowledge)
      : _architecture(std::move(architecture)), _buildIds(buildIds), _knowledge(knowledge) {}

  /// Enters what a mapping maps; returns its number for placeOf.
  std::size_t enter(const MappingEvent& mapping);

  struct Place {
    std::size_t file;
    std::uint64_t address;  ///< symbol address of the piece's first byte
  };
  /// Returns the file of a piece of what was entered under the number, and where among the file's symbols it
  /// begins.
  Place placeOf(std::size_t entered, std::uint64_t start, std::uint64_t length, std::uint64_t offset);

  [[nodiscard]] const MappedFile& operator[](std::size_t index) const { return _files[index]; }
  MappedFile& operator[](std::size_t index) { return _files[index]; }
  [[nodiscard]] std::size_t size() const { return _files.size(); }
  /// Returns the file of a name in the records, or null.
  [[nodiscard]] const MappedFile* find(const std::string& name) const;
  /// Returns how many names were shortened.
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

/// Returns the text cut to `size` bytes from the left, "..." and whole last components of a path if they fit.
std::string shortenedFromLeft(std::string_view text, std::size_t size);

}  // namespace zelkit
