#include "core/JsonText.h"

#include "platform/Utf8.h"

namespace tavlo {

namespace {
// The text as JSON without its quotes.
std::string escaped(std::string_view text) {
    rapidjson::StringBuffer buffer;
    JsonWriter json(buffer);
    writeText(json, text);
    return {buffer.GetString() + 1, buffer.GetSize() - 2};
}

// A name that is no UTF-8: its good parts as they are, every other byte as a low surrogate.
std::string escapedName(std::string_view name) {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    std::string out;
    std::size_t good = 0;  // length of the valid text at the front
    while (good < name.size()) {
        const CodePoint next = firstCodePoint(name.substr(good));
        if (next.valid) {
            good += next.length;
            continue;
        }
        const auto byte = static_cast<unsigned char>(name[good]);
        out += escaped(name.substr(0, good)) + "\\udc";
        out += hexDigits[byte >> 4U];
        out += hexDigits[byte & 15U];
        name.remove_prefix(good + 1);
        good = 0;
    }
    return out + escaped(name);
}
}  // namespace

void writeText(JsonWriter& json, std::string_view text) {
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void writeName(JsonWriter& json, const std::string& name) {
    if (isValidUtf8(name)) {
        writeText(json, name);
        return;
    }
    const std::string text = '"' + escapedName(name) + '"';
    json.RawValue(text.data(), text.size(), rapidjson::kStringType);
}

}  // namespace tavlo
