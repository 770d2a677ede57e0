#include "tags/TagText.h"

#include <algorithm>
#include <charconv>

#include "platform/Utf16.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
constexpr char16_t byteOrderMark = 0xFEFF, swappedMark = 0xFFFE;
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

class Utf16Reader {
 public:
    Utf16Reader(Bytes text, bool bigEndian) : cursor_(text), bigEndian_(bigEndian) {
        ByteCursor mark(text);
        const auto first = mark.bigEndian(2);
        if (first != 0xFEFFU && first != 0xFFFEU) return;
        bigEndian_ = first == 0xFEFFU;
        cursor_ = mark;
    }

    void appendTo(std::string& out) {
        while (const auto unit = next()) {
            // Every value of a list may have one, and some writers put the other one behind it.
            if (*unit == byteOrderMark || *unit == swappedMark) continue;
            appendUtf8(out, isSurrogate(*unit) ? completed(*unit) : *unit);
        }
    }

 private:
    static bool isSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xE000; }

    std::optional<char32_t> next() {
        const auto unit = bigEndian_ ? cursor_.bigEndian(2) : cursor_.littleEndian(2);
        return unit ? std::optional<char32_t>(*unit) : std::nullopt;
    }

    // The pair that a high surrogate begins; a lone one is no text.
    char32_t completed(char32_t high) {
        const ByteCursor before = cursor_;
        const auto low = next();
        if (high < 0xDC00 && low && *low >= 0xDC00 && *low < 0xE000) {
            return 0x10000U + ((high - 0xD800U) << 10U) + (*low - 0xDC00U);
        }
        cursor_ = before;
        return replacementCharacter;
    }

    ByteCursor cursor_;
    bool bigEndian_;
};

// Writers that take an empty text of UTF-16 for one of 8 bits leave its mark behind.
bool isMarkAlone(Bytes text) {
    return text.size() >= 2 && textOf(text).find_first_not_of('\0', 2) == std::string_view::npos &&
           (textOf(text).starts_with("\xFF\xFE") || textOf(text).starts_with("\xFE\xFF"));
}

std::string withoutMark(std::string text) {
    if (text.starts_with(utf8Mark)) text.erase(0, utf8Mark.size());
    return text;
}
}  // namespace

int leadingNumber(std::string_view text) {
    text = trimBlanks(text);
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string fixedWidthText(Bytes field, const CodePage& ansi) {
    std::string_view text = trimBlanks(textOf(field));
    text = trimBlanks(text.substr(0, text.find('\0')));
    return ansi.toUtf8(text);
}

std::string utf8OrAnsi(std::string_view bytes, const CodePage& ansi) {
    return isValidUtf8(bytes) ? std::string(bytes) : ansi.toUtf8(bytes);
}

std::string joinValues(std::string text) {
    constexpr std::string_view separator = "; ";
    while (text.ends_with('\0')) text.pop_back();
    const auto count = static_cast<std::size_t>(std::ranges::count(text, '\0'));
    if (count == 0) return text;
    std::string joined;
    joined.reserve(text.size() + count);
    for (const char c : text) {
        if (c == '\0') {
            joined += separator;
        } else {
            joined += c;
        }
    }
    return joined;
}

std::size_t unitSize(TextEncoding encoding) {
    return encoding == TextEncoding::Utf16 || encoding == TextEncoding::Utf16BigEndian ? 2 : 1;
}

std::string decodeText(TextEncoding encoding, Bytes text, const CodePage& ansi) {
    if (encoding == TextEncoding::Latin1) return isMarkAlone(text) ? "" : ansi.toUtf8(textOf(text));
    if (encoding == TextEncoding::Utf8) return withoutMark(utf8OrAnsi(textOf(text), ansi));
    std::string out;
    out.reserve(text.size());
    Utf16Reader(text, encoding == TextEncoding::Utf16BigEndian).appendTo(out);
    return out;
}

std::string utf16Text(std::string_view text) {
    const std::u16string units = utf16FromUtf8(text);
    std::string out;
    out.reserve(2 * units.size() + 2);
    const auto add = [&](char16_t unit) {
        out += static_cast<char>(unit & 0xFFU);
        out += static_cast<char>(unit >> 8U);
    };
    bool begins = true;
    for (const char16_t unit : units) {
        if (begins) add(byteOrderMark);
        add(unit);
        begins = unit == 0;
    }
    if (units.empty()) add(byteOrderMark);
    return out;
}

Bytes takeTerminated(ByteCursor& cursor, TextEncoding encoding) {
    if (unitSize(encoding) == 1) return cursor.takeUntil(0);
    const Bytes all = cursor.rest();
    while (const auto unit = cursor.take(2)) {
        if ((*unit)[0] == 0 && (*unit)[1] == 0) return all.first(all.size() - cursor.left() - 2);
    }
    return *cursor.take(cursor.left());
}

}  // namespace tavlo
