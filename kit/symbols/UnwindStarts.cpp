#include "symbols/UnwindStarts.h"

#include <gelf.h>

#include <cstring>
#include <string_view>

#include "symbols/ElfSections.h"

namespace zelkit {

namespace {

std::uint32_t wordAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, sizeof word);
  return word;
}

/// Returns an address plus a signed distance.
std::uint64_t moved(std::uint64_t address, std::int32_t distance) {
  return address + static_cast<std::uint64_t>(std::int64_t{distance});
}

/// The table of .eh_frame_hdr: pairs of function and its frame description, relative to the section.
void readFrameTable(std::string_view bytes, std::uint64_t address, std::vector<std::uint64_t>& starts) {
  // Version 1; pointer to .eh_frame relative to itself, count and table of 4 bytes, the table relative to the
  // section.
  constexpr std::string_view kUsualForm("\x01\x1b\x03\x3b", 4);
  constexpr std::size_t kTable = 12;
  if (bytes.size() < kTable || !bytes.starts_with(kUsualForm)) return;
  const std::size_t count = wordAt(bytes, 8);
  for (std::size_t i = 0, at = kTable; i < count && at + 8 <= bytes.size(); ++i, at += 8)
    starts.push_back(moved(address, static_cast<std::int32_t>(wordAt(bytes, at))));
}

/// .ARM.exidx: pairs of words, of which the first is a distance of 31 bits from itself to the function.
void readExceptionIndex(std::string_view bytes, std::uint64_t address, std::vector<std::uint64_t>& starts) {
  for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
    const auto distance = static_cast<std::int32_t>(wordAt(bytes, at) << 1) >> 1;
    starts.push_back(moved(address + at, distance) & 0xFFFFFFFF);
  }
}

std::string_view contentOf(Elf_Scn* section) {
  const Elf_Data* data = elf_rawdata(section, nullptr);
  if (data == nullptr || data->d_buf == nullptr) return {};
  return {static_cast<const char*>(data->d_buf), data->d_size};
}

}  // namespace

std::vector<std::uint64_t> unwindStarts(Elf* elf) {
  std::vector<std::uint64_t> starts;
  GElf_Ehdr file;
  if (gelf_getehdr(elf, &file) == nullptr || file.e_ident[EI_DATA] != ELFDATA2LSB) return starts;
  forEachSection(elf, [&](Elf_Scn* section, const GElf_Shdr& header, std::string_view name) {
    if (name == ".eh_frame_hdr") readFrameTable(contentOf(section), header.sh_addr, starts);
    if (file.e_machine == EM_ARM && header.sh_type == SHT_ARM_EXIDX)
      readExceptionIndex(contentOf(section), header.sh_addr, starts);
  });
  return starts;
}

}  // namespace zelkit
