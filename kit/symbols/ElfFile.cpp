#include "symbols/ElfFile.h"

#include <elfutils/libdwelf.h>
#include <gelf.h>

#include <memory>
#include <stdexcept>
#include <string_view>

#include "symbols/BuildId.h"
#include "symbols/CheckedFile.h"
#include "symbols/ElfSections.h"

namespace zelkit {

namespace {

constexpr std::size_t kLongestBuildId = 64;

void readSegments(Elf* elf, ElfFile& file) {
  std::size_t count = 0;
  if (elf_getphdrnum(elf, &count) != 0) return;
  for (std::size_t i = 0; i < count; ++i) {
    GElf_Phdr header;
    if (gelf_getphdr(elf, static_cast<int>(i), &header) == nullptr || header.p_type != PT_LOAD) continue;
    file.segments.push_back({.offset = header.p_offset,
                             .address = header.p_vaddr,
                             .fileSize = header.p_filesz,
                             .executable = (header.p_flags & PF_X) != 0});
  }
}

void readSections(Elf* elf, ElfFile& file) {
  forEachSection(elf, [&](Elf_Scn*, const GElf_Shdr& header, std::string_view name) {
    if (header.sh_type == SHT_SYMTAB) file.hasSymbolTable = true;
    if (name == ".debug_line" || name == ".zdebug_line") file.hasLines = true;
  });
}

void readNotes(Elf* elf, ElfFile& file) {
  const void* id = nullptr;
  const ssize_t size = dwelf_elf_gnu_build_id(elf, &id);
  if (size > 0 && static_cast<std::size_t>(size) <= kLongestBuildId)
    file.buildId = buildIdText(id, static_cast<std::size_t>(size));
  GElf_Word crc = 0;
  if (const char* link = dwelf_elf_gnu_debuglink(elf, &crc); link != nullptr) {
    file.debugLink = link;
    file.debugLinkCrc = crc;
  }
}

}  // namespace

std::optional<std::uint64_t> ElfFile::addressOf(std::uint64_t fileOffset) const {
  std::optional<std::uint64_t> address;
  for (const ElfSegment& segment : segments) {
    if (fileOffset < segment.offset || fileOffset - segment.offset >= segment.fileSize) continue;
    if (!address || segment.executable) address = segment.address + (fileOffset - segment.offset);
  }
  return address;
}

ElfFile ElfFile::read(const std::string& path) {
  const Descriptor descriptor = openRegular(path);
  elf_version(EV_CURRENT);
  const std::unique_ptr<Elf, decltype(&elf_end)> elf(elf_begin(descriptor.number(), ELF_C_READ_MMAP, nullptr),
                                                     elf_end);
  GElf_Ehdr header;
  if (elf == nullptr || elf_kind(elf.get()) != ELF_K_ELF || gelf_getehdr(elf.get(), &header) == nullptr)
    throw std::runtime_error(path + ": not an ELF file");
  ElfFile file;
  file.positionIndependent = header.e_type == ET_DYN;
  file.wide = header.e_ident[EI_CLASS] == ELFCLASS64;
  file.machine = header.e_machine;
  readSegments(elf.get(), file);
  readSections(elf.get(), file);
  readNotes(elf.get(), file);
  return file;
}

}  // namespace zelkit
