#include "records/RecordView.h"

std::string_view RecordView::text(std::size_t offset) const {
  if (offset > _bytes.size()) return {};
  const std::string_view rest = _bytes.substr(offset);
  return rest.substr(0, rest.find('\0'));
}
