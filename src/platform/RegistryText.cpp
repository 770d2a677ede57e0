#include "platform/RegistryText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "platform/PlainText.h"

namespace tavlo {
namespace {

struct NamedHive {
    std::uint32_t hive;
    std::string_view name;
};

constexpr std::array hives{
    NamedHive{0x80000000, "HKEY_CLASSES_ROOT"}, NamedHive{0x80000001, "HKEY_CURRENT_USER"},
    NamedHive{0x80000002, "HKEY_LOCAL_MACHINE"}, NamedHive{0x80000003, "HKEY_USERS"}};

std::string pathOf(const RegistryKey& key) {
    const auto* found = std::ranges::find(hives, key.hive, &NamedHive::hive);
    std::string path(found != hives.end() ? std::string(found->name) : std::to_string(key.hive));
    if (!key.path.empty()) path += '\\' + key.path;
    return path;
}

bool isBelow(std::string_view path, std::string_view above) {
    return path.size() > above.size() && path[above.size()] == '\\' &&
           sameAscii(path.substr(0, above.size()), above);
}

std::string quoted(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += {'\\', c};
        } else if (c == '\n') {
            result += "\\n";
        } else if (byte < 0x20) {
            result += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::optional<char> takeHexByte(std::string_view& text) {
    unsigned value = 0;
    if (text.size() < 2) return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + 2, value, 16);
    if (error != std::errc() || end != text.data() + 2) return std::nullopt;
    text.remove_prefix(2);
    return static_cast<char>(value);
}

/// The character of an escape behind its backslash.
std::optional<char> takeEscape(std::string_view& text) {
    if (text.empty()) return std::nullopt;
    const char kind = text.front();
    text.remove_prefix(1);
    if (kind == 'n') return '\n';
    if (kind == 'x') return takeHexByte(text);
    if (kind == '"' || kind == '\\') return kind;
    return std::nullopt;
}

/// A text in quotes cut off the front; nothing when it is not one.
std::optional<std::string> takeQuoted(std::string_view& text) {
    if (!text.starts_with('"')) return std::nullopt;
    text.remove_prefix(1);
    std::string result;
    while (!text.empty()) {
        const char c = text.front();
        text.remove_prefix(1);
        if (c == '"') return result;
        const auto plain = c == '\\' ? takeEscape(text) : std::optional(c);
        if (!plain) return std::nullopt;
        result += *plain;
    }
    return std::nullopt;
}

std::string valueText(const RegistryValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return quoted(*text);
    // Signed, because true is -1.
    return std::to_string(static_cast<std::int32_t>(std::get<std::uint32_t>(value)));
}

std::optional<RegistryValue> parseValue(std::string_view text) {
    if (auto string = takeQuoted(text)) {
        if (!text.empty()) return std::nullopt;
        return *string;
    }
    std::int64_t number = 0;
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc() || end != last || number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

std::string valueLine(const std::string& name, const RegistryValue& value) {
    return quoted(name) + '=' + valueText(value);
}

}  // namespace

RegistryText::RegistryText(std::string_view text) {
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        std::string_view rest = line;
        if (line.starts_with('[')) {
            Section section{std::nullopt, std::string(line), {}};
            if (line.ends_with(']')) section.path = line.substr(1, line.size() - 2);
            sections_.push_back(std::move(section));
            continue;
        }
        Line entry{{}, std::nullopt, std::string(line)};
        const auto name = takeQuoted(rest);
        if (name && rest.starts_with('=')) {
            entry.name = *name;
            entry.value = parseValue(rest.substr(1));
        }
        sections_.back().lines.push_back(std::move(entry));
    }
}

std::string RegistryText::text() const {
    std::string result;
    for (const Section& section : sections_) {
        if (&section != &sections_.front()) result += section.raw + '\n';
        for (const Line& line : section.lines) result += line.raw + '\n';
    }
    return result;
}

std::optional<std::size_t> RegistryText::sectionOf(const RegistryKey& key) const {
    const std::string path = pathOf(key);
    for (std::size_t i = 0; i < sections_.size(); ++i)
        if (sections_[i].path && sameAscii(*sections_[i].path, path)) return i;
    return std::nullopt;
}

std::optional<std::size_t> RegistryText::lineOf(const Section& section, const std::string& name) {
    for (std::size_t i = 0; i < section.lines.size(); ++i)
        if (section.lines[i].value && sameAscii(section.lines[i].name, name)) return i;
    return std::nullopt;
}

std::optional<RegistryValue> RegistryText::read(const RegistryKey& key,
                                                const std::string& name) const {
    const auto index = sectionOf(key);
    if (!index) return std::nullopt;
    const auto line = lineOf(sections_[*index], name);
    return line ? sections_[*index].lines[*line].value : std::nullopt;
}

RegistryText::Section& RegistryText::sectionFor(const RegistryKey& key) {
    if (const auto index = sectionOf(key)) return sections_[*index];
    const std::string path = pathOf(key);
    sections_.push_back({path, '[' + path + ']', {}});
    return sections_.back();
}

void RegistryText::write(const RegistryKey& key, const std::string& name,
                         const RegistryValue& value) {
    Section& section = sectionFor(key);
    Line line{name, value, valueLine(name, value)};
    if (const auto index = lineOf(section, name)) {
        section.lines[*index] = std::move(line);
        return;
    }
    // Before the blank lines that set the next heading apart.
    auto at = section.lines.end();
    while (at != section.lines.begin() && std::prev(at)->raw.empty()) --at;
    section.lines.insert(at, std::move(line));
}

bool RegistryText::deleteValue(const RegistryKey& key, const std::string& name) {
    const auto index = sectionOf(key);
    return index && std::erase_if(sections_[*index].lines, [&](const Line& line) {
                        return line.value && sameAscii(line.name, name);
                    }) > 0;
}

bool RegistryText::deleteKey(const RegistryKey& key) {
    const std::string path = pathOf(key);
    return std::erase_if(sections_, [&](const Section& section) {
               return section.path &&
                      (sameAscii(*section.path, path) || isBelow(*section.path, path));
           }) > 0;
}

std::vector<std::string> RegistryText::valueNames(const RegistryKey& key) const {
    std::vector<std::string> names;
    if (const auto index = sectionOf(key))
        for (const Line& line : sections_[*index].lines)
            if (line.value) names.push_back(line.name);
    return names;
}

std::vector<std::string> RegistryText::subkeys(const RegistryKey& key) const {
    const std::string path = pathOf(key);
    std::vector<std::string> names;
    for (const Section& section : sections_) {
        if (!section.path || !isBelow(*section.path, path)) continue;
        std::string name = section.path->substr(path.size() + 1);
        name.resize(std::min(name.size(), name.find('\\')));
        const auto same = [&](const std::string& other) { return sameAscii(name, other); };
        if (std::ranges::none_of(names, same)) names.push_back(std::move(name));
    }
    return names;
}

}  // namespace tavlo
