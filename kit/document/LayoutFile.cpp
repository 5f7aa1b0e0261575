#include "document/LayoutFile.h"

#include <rapidjson/document.h>
#include <sys/stat.h>

#include <charconv>
#include <stdexcept>
#include <string_view>

#include "document/ByteSource.h"

namespace zelkit {

namespace {

/// Returns the address in a member of the object, "0x" and hexadecimal digits.
std::uint64_t addressIn(const rapidjson::Value& object, const char* member) {
  const auto found = object.FindMember(member);
  if (found == object.MemberEnd() || !found->value.IsString())
    throw std::runtime_error("a mapping lacks an address");
  const std::string_view text(found->value.GetString(), found->value.GetStringLength());
  std::uint64_t address = 0;
  const char* const end = text.data() + text.size();
  if (!text.starts_with("0x") || std::from_chars(text.data() + 2, end, address, 16).ptr != end)
    throw std::runtime_error("a mapping has no address but \"" + std::string(text.substr(0, 20)) + "\"");
  return address;
}

}  // namespace

LayoutFile LayoutFile::beside(const std::string& documentPath) {
  LayoutFile layout;
  const std::string path = pathOf(documentPath);
  if (struct stat status{}; documentPath == "-" || stat(path.c_str(), &status) != 0) return layout;
  FileSource source(path);
  rapidjson::Document document;
  document.Parse<rapidjson::kParseIterativeFlag>(wholeText(source).c_str());
  if (!document.IsObject() || !document.HasMember("mappings") || !document["mappings"].IsArray())
    throw std::runtime_error(path + ": not a layout file: it has no list of mappings");
  try {
    for (const rapidjson::Value& mapping : document["mappings"].GetArray()) {
      if (!mapping.IsObject() || !mapping.HasMember("pid") || !mapping["pid"].IsUint())
        throw std::runtime_error("a mapping lacks its process");
      layout._mappings[{mapping["pid"].GetUint(), addressIn(mapping, "start")}] = {
          addressIn(mapping, "size"), addressIn(mapping, "original")};
    }
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(path + ": " + error.what());
  }
  return layout;
}

std::uint64_t LayoutFile::original(std::uint32_t pid, std::uint64_t address) const {
  auto next = _mappings.upper_bound({pid, address});
  if (next == _mappings.begin()) return address;
  const auto& [place, mapping] = *--next;
  const std::uint64_t offset = address - place.second;
  return place.first == pid && offset < mapping.size ? mapping.original + offset : address;
}

}  // namespace zelkit
