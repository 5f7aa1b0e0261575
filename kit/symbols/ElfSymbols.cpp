#include "symbols/ElfSymbols.h"

#include <elfutils/libdwfl.h>
#include <gelf.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "symbols/CheckedFile.h"
#include "symbols/PltSymbols.h"
#include "symbols/SourceLines.h"
#include "symbols/SymbolListBuilder.h"
#include "symbols/UnwindStarts.h"

namespace zelkit {

namespace {

/// A function of the symbol table.
struct ElfFunction {
  std::uint64_t address;
  std::uint64_t size;
  std::uint64_t limit;  ///< end of its section
  std::uint64_t rank;
  std::string_view name;  ///< mangled; valid as long as the module
};

/// Callback of libdwfl that returns the separate debug file, which was found before.
int giveDebugFile(Dwfl_Module*, void** userData, const char*, Dwarf_Addr, const char*, const char*, GElf_Word,
                  char** foundName) {
  const auto& path = *static_cast<const std::string*>(*userData);
  if (path.empty()) return -1;
  try {
    Descriptor file = openRegular(path);
    *foundName = strdup(path.c_str());
    return file.release();
  } catch (const std::runtime_error&) {
    return -1;  // it was removed in the meantime; the file itself still has symbols
  }
}

constexpr Dwfl_Callbacks kCallbacks = {.find_elf = nullptr,
                                       .find_debuginfo = giveDebugFile,
                                       .section_address = dwfl_offline_section_address,
                                       .debuginfo_path = nullptr};

bool isMappingSymbol(std::string_view name) {
  return name.size() > 1 && name[0] == '$' && std::strchr("adtx", name[1]) != nullptr &&
         (name.size() == 2 || name[2] == '.' || name[1] == 'x');
}

/// Returns the rank of one of several names of a function. Criteria, the first difference decides: has a
/// size, not weak, global, fewer leading underscores, longer.
std::uint64_t rankOf(const GElf_Sym& symbol, std::string_view name) {
  const std::uint64_t binding = GELF_ST_BIND(symbol.st_info);
  const std::size_t underscores = std::min<std::size_t>(name.find_first_not_of('_'), 255);
  std::uint64_t rank = symbol.st_size != 0 ? 1 : 0;
  rank = rank << 1 | (binding != STB_WEAK ? 1 : 0);
  rank = rank << 1 | (binding == STB_GLOBAL ? 1 : 0);
  rank = rank << 8 | (255 - underscores);
  return rank << 32 | std::min<std::size_t>(name.size(), 0xFFFFFFFF);
}

bool canBeFunction(const GElf_Sym& symbol) {
  const unsigned type = GELF_ST_TYPE(symbol.st_info);
  return (type == STT_FUNC || type == STT_GNU_IFUNC || type == STT_NOTYPE) && symbol.st_shndx != SHN_UNDEF;
}

/// The ends of executable sections. Consecutive symbols are mostly in one section.
class SectionLimits {
 public:
  /// Returns the end of a symbol's executable section, or 0 if it is in no such section.
  std::uint64_t of(Elf* elf, std::size_t section, std::uint64_t bias) {
    if (elf != _elf || section != _section) {
      _elf = elf;
      _section = section;
      _limit = read(elf, section, bias);
    }
    return _limit;
  }

 private:
  static std::uint64_t read(Elf* elf, std::size_t section, std::uint64_t bias) {
    GElf_Shdr header;
    if (gelf_getshdr(elf_getscn(elf, section), &header) == nullptr) return 0;
    return (header.sh_flags & SHF_EXECINSTR) != 0 ? header.sh_addr + bias + header.sh_size : 0;
  }

  Elf* _elf = nullptr;
  std::size_t _section = 0;
  std::uint64_t _limit = 0;
};

/// A session of libdwfl with one file, at its link addresses.
class Module {
 public:
  Module(const std::string& path, const std::string& debugPath)
      : _debugPath(debugPath), _session(dwfl_begin(&kCallbacks), dwfl_end) {
    Descriptor file = openRegular(path);
    _module = dwfl_report_elf(_session.get(), path.c_str(), path.c_str(), file.number(), 0, true);
    if (_module == nullptr) throw std::runtime_error(path + ": " + dwfl_errmsg(-1));
    static_cast<void>(file.release());  // the session closes it
    void** userData = nullptr;
    dwfl_module_info(_module, &userData, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    *userData = &_debugPath;
    dwfl_report_end(_session.get(), nullptr, nullptr);
  }

  [[nodiscard]] std::vector<ElfFunction> functions() {
    std::vector<ElfFunction> functions;
    SectionLimits limits;
    const int count = dwfl_module_getsymtab(_module);
    functions.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) {
      GElf_Sym symbol;
      GElf_Addr address = 0;
      GElf_Word section = 0;
      Elf* elf = nullptr;
      Dwarf_Addr bias = 0;
      const char* text = dwfl_module_getsym_info(_module, i, &symbol, &address, &section, &elf, &bias);
      if (text == nullptr || elf == nullptr || !canBeFunction(symbol)) continue;
      const std::string_view name = text;
      if (name.empty() || isMappingSymbol(name)) continue;
      const std::uint64_t limit = limits.of(elf, section, bias);
      if (limit == 0) continue;
      if (isThumb(elf, symbol)) address -= 1;
      functions.push_back({address, symbol.st_size, limit, rankOf(symbol, name), name});
    }
    return functions;
  }

  /// Adds to the builder the ranges of code, the starts of functions, and the stubs.
  void describeCode(SymbolListBuilder& builder) {
    Dwarf_Addr bias = 0;
    Elf* elf = dwfl_module_getelf(_module, &bias);
    if (elf == nullptr) return;
    std::size_t fileSize = 0;
    elf_rawfile(elf, &fileSize);
    for (Elf_Scn* section = elf_nextscn(elf, nullptr); section != nullptr;
         section = elf_nextscn(elf, section)) {
      GElf_Shdr header;
      if (gelf_getshdr(section, &header) == nullptr || header.sh_type != SHT_PROGBITS) continue;
      if ((header.sh_flags & SHF_EXECINSTR) == 0 || header.sh_size > fileSize) continue;
      builder.addCode(header.sh_addr + bias, header.sh_addr + bias + header.sh_size);
    }
    addPltSymbols(elf, bias, builder);
    for (const std::uint64_t start : unwindStarts(elf)) builder.addStart(start + bias);
  }

 private:
  /// Returns whether the lowest bit of the address marks Thumb code.
  static bool isThumb(Elf* elf, const GElf_Sym& symbol) {
    GElf_Ehdr header;
    return (symbol.st_value & 1) != 0 && GELF_ST_TYPE(symbol.st_info) != STT_NOTYPE &&
           gelf_getehdr(elf, &header) != nullptr && header.e_machine == EM_ARM;
  }

  std::string _debugPath;
  std::unique_ptr<Dwfl, decltype(&dwfl_end)> _session;
  Dwfl_Module* _module = nullptr;
};

/// Returns the source lines of the functions: those in the file itself, else those in its debug file.
SourceLines linesOf(const std::vector<ElfFunction>& functions, const std::string& path,
                    const std::string& debugPath) {
  std::vector<std::uint64_t> starts;
  starts.reserve(functions.size());
  for (const ElfFunction& function : functions) starts.push_back(function.address);
  SourceLines lines(std::move(starts));
  if (!lines.read(path) && !debugPath.empty()) lines.read(debugPath);
  return lines;
}

/// Returns the name without the version that one of .symtab may have, "name@VERSION".
std::string_view withoutVersion(std::string_view name) {
  const std::size_t version = name.find('@');
  return version != 0 ? name.substr(0, version) : name;
}

}  // namespace

SymbolList readElfSymbols(const std::string& path, const std::string& debugPath) {
  Module module(path, debugPath);
  const std::vector<ElfFunction> functions = module.functions();
  const SourceLines lines = linesOf(functions, path, debugPath);
  std::size_t text = 0;
  for (const ElfFunction& function : functions) text += function.name.size();
  SymbolListBuilder builder;
  module.describeCode(builder);
  builder.reserve(functions.size(), text);
  for (const ElfFunction& function : functions) {
    const SourceLines::Place place = lines.at(function.address);
    builder.add({.address = function.address,
                 .size = function.size,
                 .name = withoutVersion(function.name),
                 .file = place.file,
                 .line = place.line},
                function.limit, function.rank);
  }
  return builder.build();
}

}  // namespace zelkit
