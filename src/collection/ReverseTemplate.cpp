#include "collection/ReverseTemplate.h"

#include <algorithm>
#include <array>

#include "core/DecodedText.h"
#include "core/TextCase.h"
#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
using namespace std::string_view_literals;

constexpr std::string_view border = "%\\";
constexpr std::string_view percentMark = "\0"sv;  // "%%" until the tokens are cut

struct FieldToken {
    std::string_view word;
    void (ID3tag::*set)(std::string_view);
};

constexpr std::array<FieldToken, 9> fieldTokens{{{"%N", &ID3tag::SetNumber},
                                                 {"%A", &ID3tag::SetArtist},
                                                 {"%T", &ID3tag::SetTitle},
                                                 {"%M", &ID3tag::SetMix},
                                                 {"%Z", &ID3tag::SetTitleMix},
                                                 {"%Y", &ID3tag::SetYear},
                                                 {"%G", &ID3tag::SetGenre},
                                                 {"%L", &ID3tag::SetAlbum},
                                                 {"%C", &ID3tag::SetAlbum}}};

const FieldToken* fieldOf(std::string_view token) {
    const auto* row = std::find_if(fieldTokens.begin(), fieldTokens.end(),
                                   [&](const FieldToken& t) { return t.word == token; });
    return row == fieldTokens.end() ? nullptr : row;
}

bool startsWithNoCase(std::string_view text, std::string_view wanted) {
    while (!text.empty() && !wanted.empty()) {
        const CodePoint a = firstCodePoint(text);
        const CodePoint b = firstCodePoint(wanted);
        const bool same =
            a.valid && b.valid ? lowerCase(a.value) == lowerCase(b.value) : text[0] == wanted[0];
        if (!same) return false;
        text.remove_prefix(a.length);
        wanted.remove_prefix(b.length);
    }
    return wanted.empty();
}

// Letter by letter, for a letter's two cases need not have the same size.
std::size_t findNoCase(std::string_view text, std::string_view wanted, std::size_t from) {
    for (std::size_t at = from; at < text.size();) {
        if (startsWithNoCase(text.substr(at), wanted)) return at;
        at += firstCodePoint(text.substr(at)).length;
    }
    return std::string_view::npos;
}

// A "." further from the end is part of the name.
std::string_view withoutExtension(std::string_view name) {
    constexpr std::size_t longestExtension = 4;
    const std::size_t dot = name.rfind('.');
    const bool isExtension =
        dot != std::string_view::npos && characterCount(name.substr(dot + 1)) <= longestExtension;
    return trimBlanks(isExtension ? name.substr(0, dot) : name);
}

// "C:\", "\\server\share\" or "/".
std::string_view withoutDrive(std::string_view path, PathStyle style) {
    if (style == PathStyle::Posix) return path.substr(path.starts_with('/') ? 1 : 0);
    if (path.size() >= 2 && path[1] == ':')
        return path.substr(std::min<std::size_t>(path.size(), 3));
    if (path.size() < 2 || !isSeparator(path[0], style) || !isSeparator(path[1], style))
        return path;
    std::size_t at = 2;
    for (int part = 0; part < 2 && at < path.size(); ++part) {
        while (at < path.size() && !isSeparator(path[at], style)) ++at;
        ++at;
    }
    return path.substr(std::min(at, path.size()));
}
}  // namespace

bool SetFieldFromToken(ID3tag& record, std::string_view token, std::string_view text) {
    const FieldToken* const field = fieldOf(token);
    if (field == nullptr) return false;
    std::string value(text);
    std::replace(value.begin(), value.end(), '_', ' ');
    (record.*field->set)(value);
    return true;
}

bool ReverseTemplate::hasFields() const {
    return std::any_of(tokens_.begin(), tokens_.end(), [](const Token& token) {
        return token.isPlaceholder && fieldOf(token.text) != nullptr;
    });
}

void ReverseTemplate::CompileReverseTemplate(std::string_view nameTemplate) {
    tokens_.clear();
    std::string text(trimBlanks(nameTemplate));
    replaceAll(text, "%%", percentMark);
    replaceAll(text, "\\", border);
    for (const std::string_view mixed : {"%T (%M)", "%T(%M)", "%T [%M]", "%T[%M]"}) {
        replaceAll(text, mixed, "%Z");
    }
    // They are about the writing of names only.
    for (const std::string_view mark : {" %W", " %R", "%W", "%R"}) replaceAll(text, mark, "");
    std::string_view rest = text;
    while (!rest.empty() && tokens_.size() < mostTokens) {
        const std::size_t percent = rest.find('%');
        const bool isPlaceholder = percent == 0 && rest.size() > 1;
        const std::size_t size = isPlaceholder  ? 1 + firstCodePoint(rest.substr(1)).length
                                 : percent == 0 ? 1
                                                : percent;
        Token token{std::string(rest.substr(0, size)), isPlaceholder};
        if (!isPlaceholder) replaceAll(token.text, percentMark, "%");
        tokens_.push_back(std::move(token));
        rest.remove_prefix(std::min(size, rest.size()));
    }
}

// Each level by itself: its folder may have been named on another system.
std::optional<std::string> ReverseTemplate::decodedPath(std::string_view path, PathStyle style,
                                                        const CodePage& ansi) const {
    const auto isBorder = [](const Token& token) { return token.text == border; };
    auto levels = 1 + std::count_if(tokens_.begin(), tokens_.end(), isBorder);
    std::string decoded;
    for (; levels > 0; --levels) {
        const std::size_t above = lastSeparator(path, style);
        const auto text = decodedText(path.substr(above + 1), ansi);  // npos + 1 is the whole path
        if (!text) return std::nullopt;
        const bool isLast = above == std::string_view::npos;
        decoded.insert(0, (isLast ? "" : std::string(1, path[above])) + *text);
        if (isLast) return decoded;
        path = path.substr(0, above);
    }
    return std::string(path) + decoded;
}

bool ReverseTemplate::RetrieveTags(std::string_view path, PathStyle style, ID3tag& record) const {
    return readPath(withoutDrive(path, style), style, record);
}

bool ReverseTemplate::retrieveFromText(std::string_view text, ID3tag& record) const {
    return readPath(text, PathStyle::Windows, record);
}

// From the name upwards, as far as both the template and the path have levels.
bool ReverseTemplate::readPath(std::string_view path, PathStyle style, ID3tag& record) const {
    std::size_t last = tokens_.size();
    bool any = false;
    for (bool isName = true;; isName = false) {
        const std::size_t above = lastSeparator(path, style);
        const std::string_view level = path.substr(above + 1);  // npos + 1 is the whole path
        std::size_t first = last;
        while (first > 0 && tokens_[first - 1].text != border) --first;
        any = readLevel(isName ? withoutExtension(level) : level, first, last, record) || any;
        if (first == 0 || above == std::string_view::npos) return any;
        last = first - 1;
        path = path.substr(0, above);
    }
}

// A literal moves on by its length; a placeholder takes what stands before the next literal.
bool ReverseTemplate::readLevel(std::string_view text, std::size_t first, std::size_t last,
                                ID3tag& record) const {
    std::size_t at = 0;
    bool any = false;
    for (std::size_t i = first; i < last; ++i) {
        const Token& token = tokens_[i];
        if (!token.isPlaceholder) {
            for (std::size_t n = characterCount(token.text); n > 0 && at < text.size(); --n) {
                at += firstCodePoint(text.substr(at)).length;
            }
            continue;
        }
        const bool isLast = i + 1 == last;
        if (!isLast && tokens_[i + 1].isPlaceholder) continue;
        const std::size_t end = isLast ? text.size() : findNoCase(text, tokens_[i + 1].text, at);
        if (end == std::string_view::npos) return any;
        any = SetFieldFromToken(record, token.text, trimBlanks(text.substr(at, end - at))) || any;
        at = end;
    }
    return any;
}

}  // namespace tavlo
