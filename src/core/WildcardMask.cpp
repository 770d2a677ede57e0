#include "core/WildcardMask.h"

#include "core/TextCase.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
std::u32string lowerPoints(std::string_view text) {
    std::u32string points;
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        points += lowerCase(next.value);
        text.remove_prefix(next.length);
    }
    return points;
}

using Rest = std::u32string_view;

// Takes "[...]" off the mask and tells whether the character is one that it accepts. A bracket
// that never closes stands for itself.
bool takeSet(Rest& mask, char32_t c) {
    const std::size_t end = mask.find(U']', 2);
    if (end == Rest::npos) {
        mask.remove_prefix(1);
        return c == U'[';
    }
    Rest set = mask.substr(1, end - 1);
    mask.remove_prefix(end + 1);
    const bool excluded = set[0] == U'!';
    if (excluded) set.remove_prefix(1);
    bool found = false;
    while (!set.empty()) {
        const bool range = set.size() >= 3 && set[1] == U'-';
        found = found || (c >= set[0] && c <= set[range ? 2 : 0]);
        set.remove_prefix(range ? 3 : 1);
    }
    return found != excluded;
}

// Takes one element that stands for a single character off the mask.
bool takeOne(Rest& mask, char32_t c) {
    if (mask[0] == U'[') return takeSet(mask, c);
    const char32_t wanted = mask[0];
    mask.remove_prefix(1);
    if (wanted == U'#') return c >= U'0' && c <= U'9';
    return wanted == U'?' || wanted == c;
}
}  // namespace

WildcardMask::WildcardMask(std::string_view mask) : mask_(lowerPoints(mask)) {
    if (mask_ == U"*.*" || mask_.empty()) mask_.assign(1, U'*');
}

// A "*" first stands for nothing and takes one character more whenever what follows fails.
bool WildcardMask::matches(std::string_view name) const {
    if (takesAll()) return true;
    const std::u32string text = lowerPoints(name);
    Rest mask = mask_;
    Rest rest = text;
    Rest maskBehindStar;
    Rest restBehindStar;
    bool starred = false;
    while (!rest.empty()) {
        if (!mask.empty() && mask[0] == U'*') {
            mask.remove_prefix(1);
            maskBehindStar = mask;
            restBehindStar = rest;
            starred = true;
            continue;
        }
        if (!mask.empty() && takeOne(mask, rest[0])) {
            rest.remove_prefix(1);
            continue;
        }
        if (!starred) return false;
        restBehindStar.remove_prefix(1);
        mask = maskBehindStar;
        rest = restBehindStar;
    }
    return mask.find_first_not_of(U'*') == Rest::npos;
}

}  // namespace tavlo
