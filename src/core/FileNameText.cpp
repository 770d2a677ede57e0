#include "core/FileNameText.h"

#include <algorithm>
#include <array>
#include <vector>

#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
constexpr std::size_t longestName = 255;  // bytes, or on Windows units of UTF-16
constexpr std::size_t counterRoom = 8;    // for " (123)" behind a name that is taken

bool isForbidden(char32_t point) {
    if (point >= 0x7F) return point < 0xA0;
    constexpr std::string_view marks = "<>:\"/|?*";
    return point < 0x20 || marks.find(static_cast<char>(point)) != std::string_view::npos;
}

// Names that mean a device whatever the extension.
bool isDeviceName(std::string_view name) {
    constexpr std::array<std::string_view, 6> devices{"con", "prn",    "aux",
                                                      "nul", "conin$", "conout$"};
    const std::string_view base = trimBlanks(name.substr(0, name.find('.')));
    for (const std::string_view device : devices) {
        if (sameAscii(base, device)) return true;
    }
    const std::string_view port = base.substr(0, 3);
    const std::string_view number = base.substr(port.size());
    const bool isNumber = (number.size() == 1 && number[0] >= '1' && number[0] <= '9') ||
                          number == "\u00B9" || number == "\u00B2" || number == "\u00B3";
    return isNumber && (sameAscii(port, "com") || sameAscii(port, "lpt"));
}

std::string withoutForbidden(std::string_view level) {
    std::string out;
    while (!level.empty()) {
        const CodePoint next = firstCodePoint(level);
        if (next.valid && isForbidden(next.value)) {
            out += '_';
        } else {
            out += level.substr(0, next.length);
        }
        level.remove_prefix(next.length);
    }
    return out;
}

std::string_view trimmedLevel(std::string_view level) {
    level = trimBlanks(level);
    while (level.ends_with('.') || level.ends_with(' ')) level.remove_suffix(1);
    return level;
}

// As many whole characters as fit; Windows counts units of UTF-16.
std::string_view cutTo(std::string_view name, std::size_t most, PathStyle style) {
    if (name.size() <= most) return name;  // no character has more units than bytes
    std::size_t size = 0;
    std::size_t bytes = 0;
    while (bytes < name.size()) {
        const CodePoint next = firstCodePoint(name.substr(bytes));
        size += style == PathStyle::Posix ? next.length : next.value > 0xFFFF ? 2 : 1;
        if (size > most) break;
        bytes += next.length;
    }
    return name.substr(0, bytes);
}

// At most `most` units; cutting may bring blanks, dots or a device's name to light.
std::string cleanLevel(std::string_view text, std::size_t most, PathStyle style) {
    const std::string plain = withoutForbidden(text);
    std::string level(trimmedLevel(cutTo(trimmedLevel(plain), most, style)));
    if (isDeviceName(level)) {
        level.insert(std::min(level.find('.'), level.size()), 1, '_');
        level = trimmedLevel(cutTo(level, most, style));
    }
    if (style == PathStyle::Posix && level.starts_with('.')) level[0] = '_';
    return level;
}

std::vector<std::string> cleanLevels(std::string_view text, PathStyle style) {
    std::vector<std::string> levels;
    while (true) {
        const std::size_t end = text.find('\\');
        std::string level = cleanLevel(text.substr(0, end), longestName, style);
        if (!level.empty()) levels.push_back(std::move(level));
        if (end == std::string_view::npos) return levels;
        text.remove_prefix(end + 1);
    }
}
}  // namespace

std::string cleanFileName(std::string_view text, PathStyle style, std::size_t extensionSize) {
    const std::size_t reserved = std::min(extensionSize + counterRoom, longestName - 1);
    std::vector<std::string> levels = cleanLevels(text, style);
    while (!levels.empty()) {
        levels.back() = cleanLevel(levels.back(), longestName - reserved, style);
        if (!levels.back().empty()) break;
        levels.pop_back();
    }
    std::string out;
    for (const std::string& level : levels) {
        if (!out.empty()) out += '\\';
        out += level;
    }
    return out;
}

std::string cleanAsciiFileName(std::string_view text, PathStyle style, std::size_t extensionSize) {
    std::string ascii;
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        ascii += next.value < 0x80 ? text[0] : '_';
        text.remove_prefix(next.length);
    }
    return cleanFileName(ascii, style, extensionSize);
}

}  // namespace tavlo
