#include "tags/ID3tag.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/Numbers.h"
#include "platform/FileSystem.h"
#include "platform/Utf8.h"
#include "tags/FieldSetters.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::string_view roundBrackets = "()";
constexpr std::string_view squareBrackets = "[]";
constexpr std::size_t yearDigits = 4;
constexpr int mostTrackNumber = 65535;

std::string_view longOrShort(std::string_view longForm, std::string_view shortForm) {
    const std::string_view text = trimBlanks(longForm);
    return text.empty() ? trimBlanks(shortForm) : text;
}

void setBoth(std::string& longForm, std::string& shortForm, std::string_view text) {
    longForm = trimBlanks(text);
    shortForm = longForm;
}
struct SplitTitle {
    std::string_view title, mix;
};

std::optional<SplitTitle> splitAt(std::string_view text, std::string_view brackets) {
    const std::size_t opening = text.rfind(brackets[0]);
    if (!text.ends_with(brackets[1]) || opening == std::string_view::npos) return std::nullopt;
    return SplitTitle{trimBlanks(text.substr(0, opening)),
                      trimBlanks(text.substr(opening + 1, text.size() - opening - 2))};
}

// Whether reading a text gives this title and this mix.
bool isSplitInto(std::string_view text, std::string_view title, std::string_view mix) {
    auto split = splitAt(text, roundBrackets);
    if (!split) split = splitAt(text, squareBrackets);
    return split && split->title == title && split->mix == mix;
}
}  // namespace

std::string ID3tag::Time() const {
    return std::to_string(Seconds / 60) + ":" + paddedNumber(Seconds % 60, 2);
}

std::string ID3tag::Time2x2() const {
    return paddedNumber(Seconds / 60, 2) + ":" + paddedNumber(Seconds % 60, 2);
}

std::string_view ID3tag::GetArtist() const {
    return longOrShort(ID3v2Ext.Artist, Artist);
}
std::string_view ID3tag::GetTitle() const {
    return longOrShort(ID3v2Ext.TrackTitle, Title);
}
std::string_view ID3tag::GetAlbum() const {
    return longOrShort(ID3v2Ext.AlbumTitle, Album);
}
std::string_view ID3tag::GetMix() const {
    return trimBlanks(ID3v2Ext.Mix);
}
std::string_view ID3tag::GetYear() const {
    return longOrShort(ID3v2Ext.Year, Year);
}
std::string_view ID3tag::GetComment() const {
    return longOrShort(ID3v2Ext.Comments, Comment);
}

std::string_view ID3tag::GetGenre() const {
    return longOrShort(ID3v2Ext.Genre, genreName(Genre));
}

std::string ID3tag::GetNumber() const {
    const std::string_view text = trimBlanks(ID3v2Ext.TrackNumber);
    if (!text.empty()) return std::string(text);
    return TrackNumber > 0 ? std::to_string(TrackNumber) : std::string();
}

std::string ID3tag::GetNumberAndCount() const {
    return withCount(GetNumber(), TracksCount);
}

std::string ID3tag::joinedTitleMix(std::string_view brackets) const {
    std::string joined(GetTitle());
    const std::string_view mix = GetMix();
    if (mix.empty()) return joined;
    if (!joined.empty()) joined += ' ';
    joined += brackets[0];
    joined += mix;
    joined += brackets[1];
    return joined;
}

std::string ID3tag::GetTitleMix() const {
    return joinedTitleMix(roundBrackets);
}

// With the kind that the title was read with, unless only the other one is split at the same place.
std::string ID3tag::GetTitleMixV2() const {
    const std::string usual = joinedTitleMix(squareBrackets_ ? squareBrackets : roundBrackets);
    if (GetMix().empty() || isSplitInto(usual, GetTitle(), GetMix())) return usual;
    std::string other = joinedTitleMix(squareBrackets_ ? roundBrackets : squareBrackets);
    return isSplitInto(other, GetTitle(), GetMix()) ? other : usual;
}

std::string ID3tag::GetArtistTitleMix() const {
    const std::string_view artist = GetArtist();
    if (artist.empty()) return GetTitleMix();
    return std::string(artist) + " - " + GetTitleMix();
}

void ID3tag::SetArtist(std::string_view text) {
    setBoth(ID3v2Ext.Artist, Artist, text);
}
void ID3tag::SetTitle(std::string_view text) {
    setBoth(ID3v2Ext.TrackTitle, Title, text);
}
void ID3tag::SetMix(std::string_view text) {
    ID3v2Ext.Mix = trimBlanks(text);
}
void ID3tag::SetAlbum(std::string_view text) {
    setBoth(ID3v2Ext.AlbumTitle, Album, text);
}
void ID3tag::SetComment(std::string_view text) {
    setBoth(ID3v2Ext.Comments, Comment, text);
}

void ID3tag::SetYear(std::string_view text) {
    ID3v2Ext.Year = trimBlanks(text);
    Year = utf8Head(ID3v2Ext.Year, yearDigits);
}

void ID3tag::SetGenre(std::string_view name) {
    ID3v2Ext.Genre = trimBlanks(name);
    Genre = genreNumber(name);
}

void ID3tag::SetGenreID(std::uint8_t number) {
    ID3v2Ext.Genre = genreName(number);
    Genre = number;
}

void ID3tag::SetNumber(std::string_view text) {
    text = trimBlanks(text);
    ID3v2Ext.TrackNumber = text == "0" ? std::string_view() : text;
    TrackNumber = static_cast<std::uint16_t>(std::clamp(leadingNumber(text), 0, mostTrackNumber));
    const std::size_t slash = text.find('/');
    if (slash != std::string_view::npos) TracksCount = leadingNumber(text.substr(slash + 1));
}

void ID3tag::SetNumberL(int number) {
    SetNumber(std::to_string(number));
}

bool ID3tag::splitTitleMix(std::string_view text, std::string_view brackets) {
    const auto split = splitAt(text, brackets);
    if (!split) return false;
    SetTitle(split->title);
    SetMix(split->mix);
    squareBrackets_ = brackets == squareBrackets;
    return true;
}

void ID3tag::SetTitleMixV1(std::string_view text) {
    text = trimBlanks(text);
    if (splitTitleMix(text, roundBrackets)) return;
    SetTitle(text);
    SetMix({});
}

void ID3tag::SetTitleMixV2(std::string_view text) {
    text = trimBlanks(text);
    if (splitTitleMix(text, roundBrackets) || splitTitleMix(text, squareBrackets)) return;
    SetTitle(text);
    SetMix({});
}

void ID3tag::SetTitleMix(std::string_view text) {
    SetTitleMixV2(text);
}

void ID3tag::splitOwnTitle() {
    const std::string title(GetTitle());
    if (!splitTitleMix(title, roundBrackets)) splitTitleMix(title, squareBrackets);
}

void ID3tag::UpdateBasicFields(const BasicFields& fields) {
    ClearReadOnlyFlag();
    SetBasicFields(fields);
}

void ID3tag::SetBasicFields(const BasicFields& fields) {
    struct Row {
        std::string_view text;
        void (ID3tag::*set)(std::string_view);
    };
    const std::array<Row, 7> basic{{{fields.artist, &ID3tag::SetArtist},
                                    {fields.album, &ID3tag::SetAlbum},
                                    {fields.year, &ID3tag::SetYear},
                                    {fields.title, &ID3tag::SetTitle},
                                    {fields.mix, &ID3tag::SetMix},
                                    {fields.genre, &ID3tag::SetGenre},
                                    {fields.number, &ID3tag::SetNumber}}};
    for (const Row& row : basic) {
        if (!row.text.empty()) (this->*row.set)(row.text);
    }
    if (!fields.title.empty() && fields.mix.empty() && !GetTitle().empty()) splitOwnTitle();
    if (!fields.composer.empty()) ID3v2Ext.Composer = trimBlanks(fields.composer);
    if (!fields.copyright.empty()) ID3v2Ext.CopyRight = trimBlanks(fields.copyright);
    if (!fields.url.empty()) ID3v2Ext.URL = trimBlanks(fields.url);
}

bool ID3tag::ClearReadOnlyFlag() const {
    return Path.empty() || clearReadOnly(Path);
}

void ID3tag::FillFromID3(const ID3tag& other) {
    SetArtist(other.GetArtist());
    SetTitle(other.GetTitle());
    SetMix(other.GetMix());
    squareBrackets_ = other.squareBrackets_;
    SetAlbum(other.GetAlbum());
    SetYear(other.GetYear());
    SetComment(other.GetComment());
    SetNumber(other.GetNumber());
    ID3v2Ext.Genre = other.GetGenre();
    Genre = other.GetGenreID();
    ID3v2Ext.Composer = other.ID3v2Ext.Composer;
    ID3v2Ext.OriginalArtist = other.ID3v2Ext.OriginalArtist;
    ID3v2Ext.CopyRight = other.ID3v2Ext.CopyRight;
    ID3v2Ext.URL = other.ID3v2Ext.URL;
    TracksCount = other.TracksCount;
    DiskNumber = other.DiskNumber;
    DisksCount = other.DisksCount;
    BPM = other.BPM;
    IsPartOfCompilation = other.IsPartOfCompilation;
    AlbumArt = other.AlbumArt;
    AlbumArt.At = 0;
    AlbumArtType = other.AlbumArtType;
    fillFormatItems();
}

void ID3tag::fillFormatItems() {
    cFormatExt ID3tag::*const own = formatItems(FileType);
    if (own == nullptr) return;
    auto& items = (this->*own).Items;
    items.clear();
    const std::array<std::pair<std::string_view, int>, 3> counts{
        {{"TracksCount", TracksCount}, {"DiskNumber", DiskNumber}, {"DisksCount", DisksCount}}};
    for (const auto& [name, number] : counts) {
        if (number > 0) items.emplace_back(name, std::to_string(number));
    }
}

// Formats whose only tag is APEv2 keep the counts as items of their own.
cFormatExt ID3tag::*formatItems(FileTypes type) {
    switch (type) {
        case FileType::Mpc:
            return &ID3tag::MPCExt;
        case FileType::Wv:
            return &ID3tag::WavPackExt;
        case FileType::Ape:
            return &ID3tag::MonkeyExt;
        default:
            return nullptr;
    }
}

}  // namespace tavlo
