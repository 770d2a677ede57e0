#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "platform/CodePageSystem.h"
#include "platform/Utf16.h"

namespace tavlo {
namespace {

constexpr const char* wide = "UTF-16LE";

struct NamedPage {
    int number;
    const char* name;
};

// Pages whose name is not "CP" and the number.
constexpr std::array namedPages{NamedPage{20866, "KOI8-R"}, NamedPage{21866, "KOI8-U"},
                                NamedPage{936, "GBK"}, NamedPage{949, "UHC"}};

struct LanguagePage {
    std::string_view language;
    int page;
};

// The longer name stands before its beginning.
constexpr std::array languagePages{
    LanguagePage{"ru", 1251}, LanguagePage{"uk", 1251},   LanguagePage{"be", 1251},
    LanguagePage{"bg", 1251}, LanguagePage{"cs", 1250},   LanguagePage{"pl", 1250},
    LanguagePage{"hu", 1250}, LanguagePage{"sl", 1250},   LanguagePage{"hr", 1250},
    LanguagePage{"sk", 1250}, LanguagePage{"ro", 1250},   LanguagePage{"el", 1253},
    LanguagePage{"tr", 1254}, LanguagePage{"he", 1255},   LanguagePage{"ar", 1256},
    LanguagePage{"lt", 1257}, LanguagePage{"lv", 1257},   LanguagePage{"et", 1257},
    LanguagePage{"ja", 932},  LanguagePage{"zh_TW", 950}, LanguagePage{"zh_HK", 950},
    LanguagePage{"zh", 936},  LanguagePage{"ko", 949}};

std::string pageName(int number) {
    const auto* found = std::ranges::find(namedPages, number, &NamedPage::number);
    if (found != namedPages.end()) return found->name;
    if (number > 28590 && number <= 28606) return "ISO-8859-" + std::to_string(number - 28590);
    return "CP" + std::to_string(number);
}

class Converter {
 public:
    Converter(const std::string& to, const std::string& from)
        : handle_(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (*this) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    explicit operator bool() const { return handle_ != std::bit_cast<iconv_t>(std::intptr_t{-1}); }

    /// Converts from the front of `input` and cuts off what was understood; false when something
    /// is left that cannot be converted.
    bool convert(std::string_view& input, std::string& output) {
        std::array<char, 1024> buffer{};
        while (!input.empty()) {
            const std::size_t before = input.size();
            char* out = buffer.data();
            std::size_t room = buffer.size();
            char* in = const_cast<char*>(input.data());
            std::size_t left = input.size();
            iconv(handle_, &in, &left, &out, &room);
            input.remove_prefix(before - left);
            output.append(buffer.data(), buffer.size() - room);
            if (left == before) return false;
        }
        return true;
    }

    /// Writes a character that the converter still holds back for a possible accent after it.
    void flush(std::string& output) {
        std::array<char, 64> buffer{};
        char* out = buffer.data();
        std::size_t room = buffer.size();
        iconv(handle_, nullptr, nullptr, &out, &room);
        output.append(buffer.data(), buffer.size() - room);
    }

 private:
    iconv_t handle_;
};

char16_t unitAt(const std::string& bytes, std::size_t at) {
    return static_cast<char16_t>(static_cast<unsigned char>(bytes[at]) |
                                 static_cast<unsigned char>(bytes[at + 1]) << 8);
}

std::string bytesOf(std::u16string_view units) {
    std::string bytes;
    for (const char16_t unit : units) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

char16_t decodeByte(Converter& converter, unsigned byte) {
    const char value = static_cast<char>(byte);
    std::string_view input(&value, 1);
    std::string output;
    const bool done = converter.convert(input, output);
    converter.flush(output);
    return done && output.size() == 2 ? unitAt(output, 0) : char16_t{0xFFFD};
}

std::string localeName() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != 0) return value;
    }
    return {};
}

bool beginsWithWord(std::string_view text, std::string_view word) {
    constexpr std::string_view ends = "_.@-";
    if (!text.starts_with(word)) return false;
    return text.size() == word.size() || ends.find(text[word.size()]) != std::string_view::npos;
}

}  // namespace

std::optional<std::array<char16_t, 128>> systemUpperHalf(int number) {
    Converter converter(wide, pageName(number));
    // A page that is no superset of ASCII (EBCDIC, UTF-16) cannot be one of a tag's text.
    if (!converter || decodeByte(converter, 'A') != u'A') return std::nullopt;
    std::array<char16_t, 128> half{};
    for (unsigned i = 0; i < half.size(); ++i) half[i] = decodeByte(converter, 0x80 + i);
    return half;
}

bool systemHasMultiByte(int number) {
    return static_cast<bool>(Converter(wide, pageName(number)));
}

std::string systemDecode(int number, std::string_view bytes) {
    Converter converter(wide, pageName(number));
    std::string wideBytes;
    while (!converter.convert(bytes, wideBytes)) {
        wideBytes += "\xFD\xFF";
        bytes.remove_prefix(1);
    }
    converter.flush(wideBytes);
    std::u16string units;
    for (std::size_t i = 0; i + 1 < wideBytes.size(); i += 2) units.push_back(unitAt(wideBytes, i));
    return utf8FromUtf16(units);
}

CodePage::Encoded systemEncode(int number, std::string_view text) {
    Converter converter(pageName(number), wide);
    CodePage::Encoded result;
    const std::string wideBytes = bytesOf(utf16FromUtf8(text));
    std::string_view input = wideBytes;
    while (!converter.convert(input, result.bytes)) {
        result.bytes.push_back('?');
        result.lossy = true;
        const bool pair =
            input.size() >= 4 && (static_cast<unsigned char>(input[1]) & 0xFC) == 0xD8;
        input.remove_prefix(pair ? 4 : 2);
    }
    converter.flush(result.bytes);
    return result;
}

int systemCodePage() {
    const std::string locale = localeName();
    for (const LanguagePage& row : languagePages)
        if (beginsWithWord(locale, row.language)) return row.page;
    return 1252;
}

}  // namespace tavlo
