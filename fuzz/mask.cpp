#include "core/ByteCursor.h"
#include "core/TextCase.h"
#include "core/WildcardMask.h"
#include "fuzz/Promise.h"
#include "platform/Utf8.h"

using namespace tavlo;

namespace {
// A mask that takes exactly this name.
std::string literal(std::string_view name) {
    std::string mask;
    for (const char c : name) {
        const bool special = std::string_view("*?#[").find(c) != std::string_view::npos;
        mask += special ? std::string("[") + c + "]" : std::string(1, c);
    }
    return mask;
}
}  // namespace

// The input: a mask, NUL, and a name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input = textOf({data, size});
    const std::string_view text = takePiece(input);
    const std::string_view name = input;
    const WildcardMask mask(text);
    promise(!mask.takesAll() || mask.matches(name));
    promise(mask.matches(name) == mask.matches(lowerCase(name)));
    promise(WildcardMask(literal(name)).matches(name));
    promise(WildcardMask(literal(name) + '*').matches(std::string(name) + ".mp3"));
    promise(!WildcardMask('?' + literal(name)).matches(name) || name.empty());
    return 0;
}
