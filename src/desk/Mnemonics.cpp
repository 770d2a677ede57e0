#include "desk/Mnemonics.h"

#include <optional>
#include <set>

#include "core/TextCase.h"
#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
bool isLetter(char32_t point) {
    return lowerCase(point) != upperCase(point) || (point >= U'0' && point <= U'9');
}

// Where the mark of a caption stands; npos for none.
std::size_t markIn(const std::string& caption) {
    for (std::size_t at = 0; (at = caption.find('&', at)) < caption.size(); at += 2) {
        const bool isLast = at + 1 == caption.size();
        if (!isLast && caption[at + 1] != '&') return at;
    }
    return std::string::npos;
}

class FreeLetters {
 public:
    void take(std::string_view from) { taken_.insert(lowerCase(firstCodePoint(from).value)); }

    // Where the first letter begins that is still free.
    std::optional<std::size_t> findIn(const std::string& caption, bool onlyFirsts) const {
        bool isFirst = true;
        for (std::size_t at = 0; at < caption.size();) {
            const CodePoint point = firstCodePoint(std::string_view(caption).substr(at));
            const bool letter = isLetter(point.value);
            const bool asked = letter && (isFirst || !onlyFirsts);
            if (asked && !taken_.contains(lowerCase(point.value))) return at;
            isFirst = !letter;
            at += point.length;
        }
        return std::nullopt;
    }

 private:
    std::set<char32_t> taken_;
};
}  // namespace

std::vector<std::string> withMnemonics(std::vector<std::string> captions) {
    FreeLetters letters;
    for (const std::string& caption : captions)
        if (const std::size_t mark = markIn(caption); mark != std::string::npos)
            letters.take(std::string_view(caption).substr(mark + 1));
    for (const bool onlyFirsts : {true, false})
        for (std::string& caption : captions) {
            if (markIn(caption) != std::string::npos) continue;
            const auto at = letters.findIn(caption, onlyFirsts);
            if (!at) continue;
            letters.take(std::string_view(caption).substr(*at));
            caption.insert(*at, 1, '&');
        }
    return captions;
}

std::string withoutMnemonic(std::string text) {
    replaceAll(text, "&", "&&");
    return text;
}

}  // namespace tavlo
