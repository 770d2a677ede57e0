#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string>
#include <string_view>

namespace tavlo {

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

void writeText(JsonWriter& json, std::string_view text);

/// A path; a byte that is no UTF-8 becomes U+DC80 to U+DCFF, so that nothing of the name is lost.
void writeName(JsonWriter& json, const std::string& name);

}  // namespace tavlo
