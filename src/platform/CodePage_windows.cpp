#include <windows.h>

#include "platform/CodePageSystem.h"
#include "platform/Utf16.h"

namespace tavlo {
namespace {

constexpr wchar_t replacement = 0xFFFD;
constexpr int lastAlias = CP_THREAD_ACP;  // numbers up to here stand for another page

bool isPrivateUse(wchar_t unit) {
    return unit >= 0xE000 && unit <= 0xF8FF;
}

/// The character of one code unit sequence; U+FFFD when the page does not define it.
wchar_t decodeOne(UINT page, const char* bytes, int length) {
    std::array<wchar_t, 2> units{};
    const int count = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes, length, units.data(),
                                          static_cast<int>(units.size()));
    return count == 1 ? units[0] : replacement;
}

std::wstring decodeAll(UINT page, std::string_view bytes) {
    const int length = static_cast<int>(bytes.size());
    const int count =
        MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), length, nullptr, 0);
    std::wstring units(static_cast<std::size_t>(count), L'\0');
    if (count > 0)
        MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), length, units.data(), count);
    return units;
}

std::wstring decodeOneByOne(UINT page, std::string_view bytes) {
    std::wstring units;
    while (!bytes.empty()) {
        const bool lead =
            bytes.size() > 1 && IsDBCSLeadByteEx(page, static_cast<BYTE>(bytes.front())) != 0;
        std::size_t used = lead ? 2 : 1;
        units.push_back(decodeOne(page, bytes.data(), static_cast<int>(used)));
        if (units.back() == replacement) used = 1;
        bytes.remove_prefix(used);
    }
    return units;
}

bool isHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

/// One mark for each character beyond 16 bits; the system would write two for its two units.
std::wstring withoutPairs(const std::u16string& text) {
    std::wstring units;
    for (const char16_t unit : text) {
        if (!units.empty() && isHighSurrogate(units.back()) && unit >= 0xDC00 && unit < 0xE000) {
            units.back() = replacement;
        } else {
            units.push_back(static_cast<wchar_t>(unit));
        }
    }
    return units;
}

std::u16string asUtf16(const std::wstring& units) {
    return {units.begin(), units.end()};
}

}  // namespace

std::optional<std::array<char16_t, 128>> systemUpperHalf(int number) {
    const auto page = static_cast<UINT>(number);
    CPINFO info{};
    if (number <= lastAlias || GetCPInfo(page, &info) == 0 || info.MaxCharSize != 1)
        return std::nullopt;
    if (decodeOne(page, "A", 1) != L'A') return std::nullopt;
    std::array<char16_t, 128> half{};
    for (unsigned i = 0; i < half.size(); ++i) {
        const char byte = static_cast<char>(0x80 + i);
        const wchar_t unit = decodeOne(page, &byte, 1);
        half[i] = static_cast<char16_t>(isPrivateUse(unit) ? replacement : unit);
    }
    return half;
}

bool systemHasMultiByte(int number) {
    return IsValidCodePage(static_cast<UINT>(number)) != 0;
}

std::string systemDecode(int number, std::string_view bytes) {
    const auto page = static_cast<UINT>(number);
    std::wstring units = decodeAll(page, bytes);
    if (units.empty()) units = decodeOneByOne(page, bytes);
    return utf8FromUtf16(asUtf16(units));
}

CodePage::Encoded systemEncode(int number, std::string_view text) {
    const std::wstring units = withoutPairs(utf16FromUtf8(text));
    BOOL replaced = FALSE;
    const auto convert = [&](char* bytes, int size) {
        return WideCharToMultiByte(static_cast<UINT>(number), WC_NO_BEST_FIT_CHARS, units.data(),
                                   static_cast<int>(units.size()), bytes, size, "?", &replaced);
    };
    CodePage::Encoded result;
    result.bytes.resize(static_cast<std::size_t>(convert(nullptr, 0)));
    convert(result.bytes.data(), static_cast<int>(result.bytes.size()));
    result.lossy = replaced != FALSE;
    return result;
}

int systemCodePage() {
    return static_cast<int>(GetACP());
}

}  // namespace tavlo
