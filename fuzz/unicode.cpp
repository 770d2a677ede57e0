#include <algorithm>

#include "core/ByteCursor.h"
#include "core/TextCase.h"
#include "fuzz/Promise.h"
#include "platform/CodePage.h"
#include "platform/Utf16.h"
#include "platform/Utf8.h"
#include "tags/TagText.h"

using namespace tavlo;

namespace {
void checkUtf16(Bytes bytes) {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        units += static_cast<char16_t>(bytes[i] << 8U | bytes[i + 1]);
    }
    promise(utf16FromUtf8(utf8FromUtf16(units)) == units);
    static const CodePage ansi(1251);
    for (int encoding = 0; encoding < 4; ++encoding) {
        promise(isValidUtf8(decodeText(static_cast<TextEncoding>(encoding), bytes, ansi)));
    }
}

void checkUtf8(std::string_view text) {
    const bool valid = isValidUtf8(text);
    const std::string back = utf8FromUtf16(utf16FromUtf8(text));
    promise(!valid || back == text);
    promise(!valid || (isValidUtf8(lowerCase(text)) && isValidUtf8(upperCase(text))));
    promise(equalsNoCase(text, lowerCase(text)));
    promise(hashNoCase(text) == hashNoCase(lowerCase(text)));
}

void checkCodePage(const CodePage& page, std::string_view bytes, bool everyByte) {
    const std::string text = page.toUtf8(bytes);
    promise(isValidUtf8(text));
    const CodePage::Encoded back = page.fromUtf8(text);
    promise(!everyByte || (back.bytes == bytes && !back.lossy));
    page.fromUtf8(bytes);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CodePage cyrillic(1251), latin(1252), japanese(932), utf8(65001);
    const Bytes bytes(data, size);
    checkUtf16(bytes);
    checkUtf8(textOf(bytes));
    checkCodePage(cyrillic, textOf(bytes), true);
    checkCodePage(latin, textOf(bytes), true);
    checkCodePage(japanese, textOf(bytes), false);
    checkCodePage(utf8, textOf(bytes), false);
    return 0;
}
