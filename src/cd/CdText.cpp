#include "cd/CdText.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/ByteCursor.h"
#include "platform/CodePage.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
constexpr std::size_t packSize = 18, textSize = 12, checkedSize = 16;
constexpr std::uint8_t titlePack = 0x80, artistPack = 0x81, sizePack = 0x8F;
constexpr std::size_t longestPosition = 15;  // it counts no further

struct Pack {
    std::uint8_t kind = 0;
    std::size_t track = 0;     // that its first text is of
    std::uint8_t number = 0;   // of the pack
    std::size_t position = 0;  // characters of that text in the packs before
    bool isWide = false;       // two bytes a character
    Bytes text;
};

// x^16 + x^12 + x^5 + 1, written inverted.
std::uint16_t checksum(Bytes bytes) {
    std::uint32_t sum = 0;
    for (const std::uint32_t byte : bytes) {
        sum ^= byte << 8U;
        for (int bit = 0; bit < 8; ++bit) {
            const bool carries = (sum & 0x8000U) != 0;
            sum = (sum << 1U ^ (carries ? 0x1021U : 0U)) & 0xFFFFU;
        }
    }
    return static_cast<std::uint16_t>(~sum);
}

// Nothing for a pack that is broken.
std::optional<Pack> parsePack(Bytes bytes) {
    const auto sum = static_cast<std::uint16_t>(bytes[checkedSize] << 8U | bytes[checkedSize + 1]);
    if (checksum(bytes.first(checkedSize)) != sum) return std::nullopt;
    const unsigned place = bytes[3];
    const bool isOurs = (place & 0x70U) == 0 && (bytes[1] & 0x80U) == 0;
    return Pack{isOurs ? bytes[0] : std::uint8_t{0},
                bytes[1],
                bytes[2],
                place & 0x0FU,
                (place & 0x80U) != 0,
                bytes.subspan(4, textSize)};
}

// The packs of the first language in their order. Those of another, and extensions, are of kind 0;
// broken ones are nothing.
std::vector<std::optional<Pack>> packsOf(Bytes answer) {
    std::vector<std::optional<Pack>> packs;
    ByteCursor cursor(answer);
    const auto size = cursor.bigEndian(2);  // of what follows
    if (!size || *size < 2 || !cursor.take(2)) return packs;
    cursor = ByteCursor(cursor.rest().first(std::min<std::size_t>(cursor.left(), *size - 2)));
    while (const auto bytes = cursor.take(packSize)) packs.push_back(parsePack(*bytes));
    if (cursor.left() > 0) packs.emplace_back();
    return packs;
}

// Texts are ISO 8859-1, of which ASCII is a part, or of a code page with two bytes a character. The
// first pack of sizes says which; without it those of two bytes are Japanese.
class CharacterCode {
 public:
    explicit CharacterCode(const std::vector<std::optional<Pack>>& packs) {
        for (const auto& pack : packs) {
            if (pack && pack->kind == sizePack && pack->track == 0) take(pack->text.front());
        }
    }

    [[nodiscard]] std::string toUtf8(std::string_view text, bool isWide) const {
        if (page_ != 0) return CodePage(page_).toUtf8(text);
        return isWide ? CodePage(japanese).toUtf8(text) : fromLatin1(text);
    }

 private:
    static constexpr int japanese = 932;

    void take(unsigned code) {
        struct Row {
            unsigned code;
            int page;
        };
        constexpr Row rows[] = {{0x80, japanese}, {0x81, 949}, {0x82, 936}};
        const auto* const row = std::ranges::find(rows, code, &Row::code);
        page_ = row == std::end(rows) ? 0 : row->page;
    }

    // It has no characters between 80 and 9F.
    static std::string fromLatin1(std::string_view text) {
        std::string utf8;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x80 || byte >= 0xA0) appendUtf8(utf8, byte);
        }
        return utf8;
    }

    int page_ = 0;
};

// The texts of one kind, pack by pack: each ends in a zero character, and the next one is the next
// track's.
class TextRun {
 public:
    TextRun(std::array<std::string, 100>& texts, std::size_t firstTrack, const CharacterCode& code)
        : texts_(texts), firstTrack_(firstTrack), code_(code) {}

    void add(const Pack& pack) {
        const std::size_t width = pack.isWide ? 2 : 1;
        isWide_ = pack.isWide;
        const auto expected = static_cast<std::uint8_t>(number_ + 1U);
        const bool continues = isWhole_ && track_ == pack.track && pack.number == expected &&
                               pack.position == std::min(text_.size() / width, longestPosition);
        number_ = pack.number;
        if (!continues) {
            text_.clear();
            track_ = pack.track;
            isWhole_ = pack.position == 0;
        }
        for (std::size_t i = 0; i + width <= pack.text.size(); i += width) {
            const std::string_view character = textOf(pack.text.subspan(i, width));
            if (character.find_first_not_of('\0') == std::string_view::npos) {
                end();
            } else {
                text_ += character;
            }
        }
    }

    // One tab says that the text is that of the track before.
    void end() {
        const std::string_view tab = isWide_ ? "\t\t" : "\t";
        const bool isKept = isWhole_ && track_ < texts_.size() && !text_.empty();
        if (isKept && text_ == tab) {
            if (track_ > firstTrack_) texts_[track_] = texts_[track_ - 1];
        } else if (isKept) {
            texts_[track_] = code_.toUtf8(text_, isWide_);
        }
        text_.clear();
        track_ = track_ == 0 ? firstTrack_ : track_ + 1;
        isWhole_ = true;
    }

    // What follows is lost.
    void breakOff() {
        text_.clear();
        isWhole_ = false;
    }

 private:
    std::array<std::string, 100>& texts_;
    const std::size_t firstTrack_;
    const CharacterCode& code_;
    std::string text_;
    std::size_t track_ = 0;
    std::uint8_t number_ = 0;
    bool isWide_ = false;
    bool isWhole_ = false;  // its beginning was not lost
};
}  // namespace

bool CdText::isEmpty() const {
    const auto isNone = [](const std::string& text) { return text.empty(); };
    return std::ranges::all_of(titles, isNone) && std::ranges::all_of(artists, isNone);
}

// The last text of a kind may lack its zero: it ends where another kind begins.
CdText parseCdText(Bytes answer, std::size_t firstTrack) {
    CdText texts;
    const auto packs = packsOf(answer);
    const CharacterCode code(packs);
    TextRun titles(texts.titles, firstTrack, code);
    TextRun artists(texts.artists, firstTrack, code);
    TextRun* current = nullptr;
    for (const auto& pack : packs) {
        TextRun* run = nullptr;
        if (pack && pack->kind == titlePack) run = &titles;
        if (pack && pack->kind == artistPack) run = &artists;
        if (current != nullptr && !pack) current->breakOff();
        if (current != nullptr && run != current) current->end();
        if (run != nullptr) run->add(*pack);
        current = run;
    }
    if (current != nullptr) current->end();
    return texts;
}

}  // namespace tavlo
