#include "symbols/PltSymbols.h"

#include <gelf.h>

#include <string>
#include <string_view>
#include <vector>

#include "symbols/Demangler.h"
#include "symbols/ElfSections.h"

namespace zelkit {

namespace {

/// The form of stubs by machine. With branch tracking the stubs that are called are in .plt.sec.
struct StubForm {
  std::uint16_t machine;
  std::string_view section;
  std::uint64_t header;
  std::uint64_t stub;
};

constexpr StubForm kForms[] = {
    {EM_X86_64, ".plt.sec", 0, 16}, {EM_X86_64, ".plt", 16, 16},  {EM_386, ".plt.sec", 0, 16},
    {EM_386, ".plt", 16, 16},       {EM_AARCH64, ".plt", 32, 16}, {EM_ARM, ".plt", 20, 12},
};

/// Returns the first section of the name, null if there is none.
Elf_Scn* sectionNamed(Elf* elf, std::string_view wanted, GElf_Shdr& found) {
  Elf_Scn* first = nullptr;
  forEachSection(elf, [&](Elf_Scn* section, const GElf_Shdr& header, std::string_view name) {
    if (first != nullptr || name != wanted) return;
    first = section;
    found = header;
  });
  return first;
}

/// Returns the names in the relocations of the stubs, including empty ones.
std::vector<std::string> calledNames(Elf* elf) {
  std::vector<std::string> names;
  GElf_Shdr header;
  Elf_Scn* section = sectionNamed(elf, ".rela.plt", header);
  if (section == nullptr) section = sectionNamed(elf, ".rel.plt", header);
  if (section == nullptr || header.sh_entsize == 0) return names;
  Elf_Data* relocations = elf_getdata(section, nullptr);
  Elf_Scn* symbolSection = elf_getscn(elf, header.sh_link);
  Elf_Data* symbols = elf_getdata(symbolSection, nullptr);
  GElf_Shdr symbolHeader;
  if (relocations == nullptr || symbols == nullptr || gelf_getshdr(symbolSection, &symbolHeader) == nullptr)
    return names;
  for (int i = 0;; ++i) {
    GElf_Rela relocation;
    GElf_Rel shortRelocation;
    if (header.sh_type == SHT_RELA) {
      if (gelf_getrela(relocations, i, &relocation) == nullptr) return names;
    } else {
      if (gelf_getrel(relocations, i, &shortRelocation) == nullptr) return names;
      relocation.r_info = shortRelocation.r_info;
    }
    GElf_Sym symbol;
    const char* name = nullptr;
    if (gelf_getsym(symbols, static_cast<int>(GELF_R_SYM(relocation.r_info)), &symbol) != nullptr)
      name = elf_strptr(elf, symbolHeader.sh_link, symbol.st_name);
    names.emplace_back(name != nullptr ? name : "");
  }
}

}  // namespace

void addPltSymbols(Elf* elf, std::uint64_t bias, SymbolListBuilder& builder) {
  GElf_Ehdr file;
  if (gelf_getehdr(elf, &file) == nullptr) return;
  for (const StubForm& form : kForms) {
    GElf_Shdr header;
    if (form.machine != file.e_machine || sectionNamed(elf, form.section, header) == nullptr) continue;
    std::vector<std::string> names = calledNames(elf);
    if (header.sh_size != form.header + names.size() * form.stub) return;
    std::uint64_t address = header.sh_addr + bias + form.header;
    for (std::string& name : names) {
      if (!name.empty())
        builder.add({.address = address, .size = form.stub, .name = name.append(kStubEnding)},
                    header.sh_addr + bias + header.sh_size);
      address += form.stub;
    }
    return;
  }
}

}  // namespace zelkit
