#include "collection/NameTemplate.h"

#include <array>

#include "core/FileNameText.h"
#include "core/Numbers.h"
#include "platform/PlainText.h"
#include "tags/FieldGetters.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
using namespace std::string_view_literals;

// It can occur in no value.
constexpr std::string_view folderMark = "%\0/"sv;

// False where the text has no such placeholder.
bool takeAway(std::string& text, std::string_view placeholder) {
    if (text.find(placeholder) == std::string::npos) return false;
    replaceAll(text, placeholder, {});
    return true;
}

std::string trackText(const ID3tag& record, std::size_t least) {
    const int number = leadingNumber(record.GetNumber());
    return number > 0 ? paddedNumber(number, least) : std::string();
}

// Halves go to the even multiple.
int roundedBitrate(int bitrate) {
    constexpr int step = 32;
    const int twice = 2 * (bitrate % step);
    int steps = bitrate / step;
    if (twice > step || (twice == step && steps % 2 == 1)) ++steps;
    return step * steps;
}

struct Placeholder {
    std::string_view word;
    std::string (*text)(const ID3tag&);
};

// clang-format off
constexpr std::array<Placeholder, 12> placeholders{{
    {"%A", gotten<&ID3tag::GetArtist>},
    {"%T", gotten<&ID3tag::GetTitle>},
    {"%M", gotten<&ID3tag::GetMix>},
    {"%Z", gotten<&ID3tag::GetTitleMix>},
    {"%Y", gotten<&ID3tag::GetYear>},
    {"%L", gotten<&ID3tag::GetAlbum>},
    {"%C", gotten<&ID3tag::GetAlbum>},
    {"%G", gotten<&ID3tag::GetGenre>},
    {"%N3", [](const ID3tag& r) { return trackText(r, 3); }},
    {"%N", [](const ID3tag& r) { return trackText(r, 2); }},
    {"%BS", [](const ID3tag& r) { return paddedNumber(roundedBitrate(r.Bitrate), 3); }},
    {"%B", [](const ID3tag& r) { return paddedNumber(r.Bitrate, 3); }},
}};

// In this order, each once over the whole text.
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> tidySteps{{
    {"[]", ""}, {"()", ""}, {"{}", ""},
    {" \\", "\\"}, {"\\ ", "\\"}, {"\\\\", "\\"}, {"\t", " "}, {"\0"sv, " "}, {"  ", " "},
}};
// clang-format on
}  // namespace

std::string nameByTemplate(const ID3tag& record, std::string_view nameTemplate,
                           const NameRules& rules) {
    std::string name(nameTemplate);
    replaceAll(name, "\\", folderMark);
    for (const Placeholder& placeholder : placeholders) {
        if (name.find(placeholder.word) == std::string::npos) continue;
        replaceAll(name, placeholder.word, placeholder.text(record));
    }
    replaceAll(name, "\\", "_");
    replaceAll(name, folderMark, "\\");
    for (const auto& [from, to] : tidySteps) replaceAll(name, from, to);
    if (takeAway(name, "%R")) {
        return cleanFileName(toLatin(name, rules.transliteration), rules.style,
                             rules.extensionSize);
    }
    if (takeAway(name, "%W")) {
        return cleanAsciiFileName(toLatin(name, rules.transliteration), rules.style,
                                  rules.extensionSize);
    }
    return cleanFileName(name, rules.style, rules.extensionSize);
}

std::string_view formatTemplate(int format, std::string_view freeTemplate) {
    constexpr int freeFormat = 6;
    constexpr std::array<std::string_view, 9> templates{
        "%A - %Z", "%A - %T", "%A - %Z", "%Z", "%A\\%Z", "%A - %Z %W", "", "%N %A - %Z", "%N %Z"};
    if (format == freeFormat) return freeTemplate;
    const bool known = format > 0 && static_cast<std::size_t>(format) < templates.size();
    return templates[known ? static_cast<std::size_t>(format) : 0];
}

}  // namespace tavlo
