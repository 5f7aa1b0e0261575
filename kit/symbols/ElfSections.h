#pragma once

#include <gelf.h>

#include <cstddef>
#include <string_view>

namespace zelkit {

/// Calls `take(section, header, name)` for each section that has content in the file.
template <typename Take>
void forEachSection(Elf* elf, Take take) {
  std::size_t names = 0;
  if (elf_getshdrstrndx(elf, &names) != 0) return;
  for (Elf_Scn* section = elf_nextscn(elf, nullptr); section != nullptr;
       section = elf_nextscn(elf, section)) {
    GElf_Shdr header;
    if (gelf_getshdr(section, &header) == nullptr || header.sh_type == SHT_NOBITS) continue;
    const char* name = elf_strptr(elf, names, header.sh_name);
    if (name != nullptr) take(section, header, std::string_view(name));
  }
}

}  // namespace zelkit
