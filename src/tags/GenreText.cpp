#include "tags/GenreText.h"

#include <algorithm>
#include <optional>

#include "core/Numbers.h"
#include "core/TextCase.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
struct GenreReference {
    std::uint8_t number;
    std::string_view name;
};

// Takes "(17)", "(RX)" or "(CR)" off the front.
std::optional<GenreReference> takeReference(std::string_view& text) {
    const std::size_t end = text.find(')');
    if (!text.starts_with('(') || end == std::string_view::npos) return std::nullopt;
    const std::string_view inner = text.substr(1, end - 1);
    const std::string_view whole = text.substr(0, end + 1);
    const auto number = parseInteger(inner);
    const bool known = number && *number >= 0 && *number <= noGenre;
    if (!known && inner != "RX" && inner != "CR") return std::nullopt;
    text.remove_prefix(whole.size());
    if (!known) return GenreReference{noGenre, inner == "RX" ? "Remix" : "Cover"};
    return GenreReference{static_cast<std::uint8_t>(*number), genreName(*number)};
}

void appendValue(std::string& list, std::string_view value) {
    if (value.empty()) return;
    if (!list.empty()) list += "; ";
    list += value;
}

// A text behind a single reference refines it and stands for it.
GenreText parseOneGenre(std::string_view text) {
    text = trimBlanks(text);
    if (text.starts_with("((")) return {noGenre, std::string(text.substr(1))};
    std::string_view rest = text;
    if (const auto bare = parseInteger(text); bare && *bare >= 0 && *bare <= noGenre) {
        return {static_cast<std::uint8_t>(*bare), std::string(genreName(*bare))};
    }
    const auto first = takeReference(rest);
    if (!first) return {genreNumber(text), std::string(text)};
    GenreText genre{first->number, std::string(first->name)};
    std::string_view last = first->name;
    while (const auto next = takeReference(rest)) {
        appendValue(genre.text, next->name);
        last = next->name;
    }
    rest = trimBlanks(rest);
    if (rest.empty() || equalsNoCase(rest, last)) return genre;
    if (last.data() == first->name.data()) genre.text.clear();
    appendValue(genre.text, rest);
    return genre;
}
}  // namespace

GenreText parseGenreText(std::string_view text) {
    GenreText all;
    for (bool first = true; !text.empty(); first = false) {
        const std::size_t end = std::min(text.find('\0'), text.size());
        const GenreText one = parseOneGenre(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (first) all.number = one.number;
        appendValue(all.text, one.text);
    }
    return all;
}

std::string formatGenreText(std::uint8_t number, std::string_view text) {
    const std::string reference = "(" + std::to_string(number) + ")";
    const GenreText wanted{number, std::string(text)};
    if (text.empty()) return number == noGenre ? std::string() : reference;
    // The usual case: a name and its number.
    if (number != noGenre && text == genreName(number)) return wanted.text;
    for (const std::string& form : {wanted.text, reference + wanted.text, "(" + wanted.text}) {
        if (parseGenreText(form) == wanted) return form;
    }
    return wanted.text;
}

}  // namespace tavlo
