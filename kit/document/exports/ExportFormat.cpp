#include "document/exports/ExportFormat.h"

#include <algorithm>

namespace zelkit {

namespace {

std::vector<const ExportFormat*>& registered() {
  static std::vector<const ExportFormat*> formats;
  return formats;
}

}  // namespace

ExportFormat::ExportFormat(const char* name, const char* description, Takes takes, Maker maker)
    : _name(name), _description(description), _takes(takes), _maker(maker) {
  registered().push_back(this);
}

std::vector<const ExportFormat*> ExportFormat::all() {
  std::vector<const ExportFormat*> formats = registered();
  std::sort(formats.begin(), formats.end(),
            [](const ExportFormat* left, const ExportFormat* right) { return left->name() < right->name(); });
  return formats;
}

const ExportFormat* ExportFormat::find(const std::string& name) {
  const auto& formats = registered();
  const auto found = std::find_if(formats.begin(), formats.end(),
                                  [&](const ExportFormat* format) { return format->name() == name; });
  return found == formats.end() ? nullptr : *found;
}

}  // namespace zelkit
