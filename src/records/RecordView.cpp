#include "records/RecordView.h"

#include <cstring>

#include "records/PerfFactory.h"

RecordView::RecordView(const char* record) : _bytes(record, PerfFactory::tmpLength()) {}

template <typename Number>
Number RecordView::load(std::size_t offset) const {
  Number value = 0;
  if (offset <= _bytes.size() && sizeof value <= _bytes.size() - offset)
    std::memcpy(&value, _bytes.data() + offset, sizeof value);
  return value;
}

template std::uint16_t RecordView::load(std::size_t) const;
template std::uint32_t RecordView::load(std::size_t) const;
template std::int32_t RecordView::load(std::size_t) const;
template unsigned long long RecordView::load(std::size_t) const;

std::string_view RecordView::text(std::size_t offset) const {
  if (offset > _bytes.size()) return {};
  const std::string_view rest = _bytes.substr(offset);
  return rest.substr(0, rest.find('\0'));
}
