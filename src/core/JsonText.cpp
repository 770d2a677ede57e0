#include "core/JsonText.h"

#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
// As the library writes it.
std::string plainJson(std::string_view text) {
    rapidjson::StringBuffer buffer;
    JsonWriter json(buffer);
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    return {buffer.GetString() + 1, buffer.GetSize() - 2};
}

std::string escapedUnit(char32_t unit) {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    std::string out = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += hexDigits[(unit >> shift) & 15U];
    return out;
}

// The text as JSON without its quotes. The library leaves what a terminal acts on beyond ASCII.
std::string escaped(std::string_view text) {
    std::string json = plainJson(text);
    if (!hasUnseen(json)) return json;
    std::string out;
    for (std::string_view rest = json; !rest.empty();) {
        const CodePoint next = firstCodePoint(rest);
        out += next.valid && isUnseen(next.value) ? escapedUnit(next.value)
                                                  : std::string(rest.substr(0, next.length));
        rest.remove_prefix(next.length);
    }
    return out;
}

// A name that is no UTF-8: its good parts as they are, every other byte as a low surrogate.
std::string escapedName(std::string_view name) {
    std::string out;
    std::size_t good = 0;  // length of the valid text at the front
    while (good < name.size()) {
        const CodePoint next = firstCodePoint(name.substr(good));
        if (next.valid) {
            good += next.length;
            continue;
        }
        const auto byte = static_cast<unsigned char>(name[good]);
        out += escaped(name.substr(0, good)) + escapedUnit(0xDC00U | byte);
        name.remove_prefix(good + 1);
        good = 0;
    }
    return out + escaped(name);
}
}  // namespace

void writeText(JsonWriter& json, std::string_view text) {
    if (!hasUnseen(text, "\b\f\n\r\t")) {
        json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
        return;
    }
    const std::string quoted = '"' + escaped(text) + '"';
    json.RawValue(quoted.data(), quoted.size(), rapidjson::kStringType);
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
