#include "symbols/LineTable.h"

#include <dwarf.h>

#include <cstddef>

namespace zelkit {

std::uint64_t LineTable::unsignedNumber(Bytes& bytes) {
  std::uint64_t number = 0;
  for (unsigned int shift = 0; bytes.left() != 0; shift += 7) {
    const std::uint8_t part = bytes.u8();
    if (shift < 64) number |= std::uint64_t{part & 0x7FU} << shift;
    if ((part & 0x80) == 0) return number;
  }
  bytes.skip(1);  // beyond the end
  return 0;
}

std::int64_t LineTable::signedNumber(Bytes& bytes) {
  const std::size_t before = bytes.left();
  const std::uint64_t number = unsignedNumber(bytes);
  const std::size_t bits = (before - bytes.left()) * 7;
  if (bits == 0 || bits >= 64) return static_cast<std::int64_t>(number);
  const std::uint64_t sign = std::uint64_t{1} << (bits - 1);
  return static_cast<std::int64_t>((number ^ sign) - sign);
}

/// Reads the folders or the files of a header. A form that the table should not have counts as its end.
std::vector<LineTable::Name> LineTable::readNames(Bytes& header, std::string_view texts) {
  struct Field {
    std::uint64_t content;
    std::uint64_t form;
  };
  std::vector<Field> fields(header.u8());
  for (Field& field : fields) field = {unsignedNumber(header), unsignedNumber(header)};
  const std::uint64_t count = unsignedNumber(header);
  std::vector<Name> names;
  while (names.size() < count && !fields.empty() && header.ok()) {
    Name name;
    for (const Field& field : fields) {
      std::string_view text;
      std::uint64_t number = 0;
      switch (field.form) {
        case DW_FORM_string:
          text = header.text();
          break;
        case DW_FORM_line_strp: {
          const std::uint32_t offset = header.u32();
          if (offset < texts.size()) text = Bytes(texts.substr(offset)).text();
          break;
        }
        case DW_FORM_udata:
          number = unsignedNumber(header);
          break;
        case DW_FORM_data1:
          number = header.u8();
          break;
        case DW_FORM_data2:
          number = header.u16();
          break;
        case DW_FORM_data16:
          header.skip(16);
          break;
        default:
          header.skip(header.left() + 1);
      }
      if (field.content == DW_LNCT_path) name.text = text;
      if (field.content == DW_LNCT_directory_index) name.folder = number;
    }
    names.push_back(name);
  }
  return names;
}

std::optional<LineTable> LineTable::next(Bytes& tables, std::string_view texts) {
  constexpr std::uint16_t kVersion = 5;
  Bytes bytes(tables.take(tables.u32()));
  const std::uint16_t version = bytes.u16();
  bytes.skip(2);  // sizes of addresses, which the code repeats, and of segment selectors
  Bytes header(bytes.take(bytes.u32()));
  LineTable table;
  table._code = bytes;
  table._step = header.u8();
  const std::uint8_t operationsOfAnInstruction = header.u8();
  header.skip(1);  // whether rows are statements by default
  table._lineBase = static_cast<std::int8_t>(header.u8());
  table._lineRange = header.u8();
  table._firstSpecial = header.u8();
  for (std::size_t i = 1; i < table._firstSpecial; ++i) table._operands[i] = header.u8();
  table._folders = readNames(header, texts);
  table._files = readNames(header, texts);
  if (!tables.ok() || !header.ok() || version != kVersion || operationsOfAnInstruction != 1 ||
      table._lineRange == 0)
    return std::nullopt;
  return table;
}

LineTable::Effect LineTable::run(Bytes& code, Row& row) const {
  const std::uint8_t operation = code.u8();
  if (operation >= _firstSpecial) {
    const int advance = operation - _firstSpecial;
    row.address += static_cast<std::uint64_t>(advance / _lineRange * _step);
    row.line += static_cast<std::uint32_t>(_lineBase + advance % _lineRange);
    return Effect::kRow;
  }
  switch (operation) {
    case 0:
      return runExtended(code, row);
    case DW_LNS_copy:
      return Effect::kRow;
    case DW_LNS_advance_pc:
      row.address += unsignedNumber(code) * _step;
      break;
    case DW_LNS_advance_line:
      row.line += static_cast<std::uint32_t>(signedNumber(code));
      break;
    case DW_LNS_set_file:
      row.file = unsignedNumber(code);
      break;
    case DW_LNS_const_add_pc:
      row.address += static_cast<std::uint64_t>((255 - _firstSpecial) / _lineRange * _step);
      break;
    case DW_LNS_fixed_advance_pc:
      row.address += code.u16();
      break;
    default:
      for (unsigned int i = 0; i < _operands[operation]; ++i) unsignedNumber(code);
  }
  return Effect::kNone;
}

LineTable::Effect LineTable::runExtended(Bytes& code, Row& row) {
  Bytes operands(code.take(unsignedNumber(code)));
  switch (operands.u8()) {
    case DW_LNE_end_sequence:
      return Effect::kEnd;
    case DW_LNE_set_address:
      row.address = operands.left() == 4 ? operands.u32() : operands.u64();
      break;
    default:
      break;
  }
  return Effect::kNone;
}

std::string LineTable::fileName(std::uint64_t file) const {
  if (file >= _files.size()) return {};
  const Name& name = _files[file];
  if (name.text.starts_with('/') || name.folder >= _folders.size()) return std::string(name.text);
  std::string path(_folders[name.folder].text);
  return (path += '/').append(name.text);
}

}  // namespace zelkit
