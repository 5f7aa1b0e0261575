#include "records/PerfRecord.h"

std::string withoutDeletedMark(std::string_view name) {
  return std::string(name.substr(0, name.find(" (deleted)")));
}
