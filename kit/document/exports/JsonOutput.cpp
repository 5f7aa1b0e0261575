#include "document/exports/JsonOutput.h"

#include <rapidjson/stringbuffer.h>

namespace zelkit {

std::string quotedJson(std::string_view text) {
  const std::string valid = validUtf8(text);
  rapidjson::StringBuffer quoted;
  rapidjson::Writer<rapidjson::StringBuffer> writer(quoted);
  writer.String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
  return quoted.GetString();
}

}  // namespace zelkit
