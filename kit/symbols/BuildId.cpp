#include "symbols/BuildId.h"

#include <elf.h>

#include <algorithm>
#include <cstring>

namespace zelkit {

namespace {

std::size_t alignedToWord(std::size_t size) {
  return (size + 3) & ~std::size_t{3};
}

}  // namespace

std::string buildIdText(const void* bytes, std::size_t size) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const char byte : std::string_view(static_cast<const char*>(bytes), size)) {
    text += digits[static_cast<unsigned char>(byte) >> 4];
    text += digits[static_cast<unsigned char>(byte) & 15];
  }
  return text;
}

bool sameBuildId(std::string_view recorded, std::string_view own) {
  return !own.empty() && recorded.starts_with(own) &&
         recorded.find_first_not_of('0', own.size()) == std::string_view::npos;
}

std::string buildIdInNotes(std::string_view notes) {
  Elf32_Nhdr note;
  while (notes.size() >= sizeof note) {
    std::memcpy(&note, notes.data(), sizeof note);
    notes.remove_prefix(sizeof note);
    const std::size_t nameRoom = alignedToWord(note.n_namesz);
    if (nameRoom > notes.size() || note.n_descsz > notes.size() - nameRoom) return {};
    if (note.n_type == NT_GNU_BUILD_ID && notes.substr(0, note.n_namesz) == std::string_view("GNU\0", 4))
      return buildIdText(notes.data() + nameRoom, note.n_descsz);
    notes.remove_prefix(std::min(nameRoom + alignedToWord(note.n_descsz), notes.size()));
  }
  return {};
}

}  // namespace zelkit
