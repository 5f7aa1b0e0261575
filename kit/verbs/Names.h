#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "capture/TemporaryFolder.h"
#include "layout/FileKnowledge.h"
#include "layout/MappedFiles.h"
#include "symbols/SymbolFinder.h"
#include "symbols/SymbolList.h"
#include "symbols/SymbolLists.h"
#include "symbols/SymbolSource.h"
#include "verbs/Source.h"

namespace zelkit {

/// Names of all addresses of a recording: from available files, symbols in the recording, maps of JIT code,
/// and the kernel's table.
class Names : public FileKnowledge {
 public:
  /// `folders`: the user's folders with symbol files, searched first.
  Names(Source& source, const std::vector<std::string>& folders);

  std::optional<Link> linkOf(const MappedPiece& piece) override;
  const char* whyUnnamed(const MappedFile& file, std::uint64_t address) override;
  const char* whyKernelUnnamed(std::uint64_t address) override;

  /// Returns the symbols of a mapped file for the engine, null if there are none.
  std::unique_ptr<SymbolSource> sourceOf(const MappedFile& file);
  /// Returns the symbols of the kernel, which starts at `start`.
  std::unique_ptr<SymbolSource> kernelSource(std::uint64_t start);

  /// Returns one line for each problem with a file.
  [[nodiscard]] const std::vector<std::string>& notes() const { return _notes; }

 private:
  struct Listed {
    std::shared_ptr<const SymbolList> list;
    const char* whyEmpty = nullptr;
  };

  [[nodiscard]] const RecordedFile* recordedFile(const std::string& path) const;
  [[nodiscard]] std::optional<Link> linkOfRecorded(const MappedPiece& piece) const;
  const Listed& listed(const MappedFile& file);
  Listed make(const MappedFile& file);
  Listed makeFromJitMap(const MappedFile& file);
  Listed makeFromFile(const MappedFile& file);
  Listed makeFromVdso(const MappedFile& file);
  const SymbolList& kernel();
  void readKernel();
  std::shared_ptr<const SymbolList> runningKernel(const MachineFolder& machine);

  Source& _source;
  std::vector<std::string> _roots;
  SymbolFinder _finder;
  SymbolLists _lists;
  std::map<std::string, const RecordedFile*> _recorded;  ///< by path
  std::map<const MappedFile*, Listed> _listed;
  std::unique_ptr<TemporaryFolder> _folder;  ///< for files that exist only in memory
  std::shared_ptr<const SymbolList> _kernel = std::make_shared<SymbolList>();
  bool _kernelRead = false;
  std::vector<std::string> _notes;
};

}  // namespace zelkit
