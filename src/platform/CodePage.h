#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavlo {

/// One 8-bit or East Asian code page by its Windows number; an unknown number behaves as 1252.
class CodePage {
 public:
    struct Encoded {
        std::string bytes;
        bool lossy = false;  ///< a character was replaced by "?"
    };

    explicit CodePage(int number);

    /// The page that is really used: 1252 when the wanted one is unknown.
    int number() const { return number_; }

    /// Every byte string decodes: an undefined byte 0x80..0x9F of a single-byte page becomes the
    /// C1 control of the same number, any other bad byte U+FFFD.
    std::string toUtf8(std::string_view bytes) const;

    /// A character that the page cannot hold becomes "?", never a look-alike.
    Encoded fromUtf8(std::string_view text) const;

 private:
    struct Glyph {
        std::array<char, 3> utf8;
        std::uint8_t length;
    };
    struct Reverse {
        char16_t character;
        char byte;
    };

    void buildTables(const std::array<char16_t, 128>& upperHalf);

    int number_;
    bool singleByte_ = true;
    std::array<Glyph, 128> glyphs_{};     // bytes 0x80..0xFF
    std::array<Reverse, 128> reverse_{};  // sorted by character
};

/// The system's ANSI code page; where there is none, the one usual for the locale's language.
int systemCodePage();

}  // namespace tavlo
