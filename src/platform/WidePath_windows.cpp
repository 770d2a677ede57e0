#include <windows.h>

#include <algorithm>

#include "platform/Utf16.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
// CreateDirectory takes 12 characters fewer than MAX_PATH; beyond that only the prefix helps.
constexpr std::size_t longestPlainPath = MAX_PATH - 12;

std::wstring fullPath(const std::wstring& path) {
    const DWORD needed = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(needed, L'\0');
    const DWORD length = ::GetFullPathNameW(path.c_str(), needed, full.data(), nullptr);
    if (length == 0 || length >= needed) return path;
    full.resize(length);
    return full;
}
}  // namespace

std::wstring widePath(std::string_view path) {
    const std::u16string text = utf16FromUtf8(path);
    std::wstring wide(text.begin(), text.end());
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    if (wide.size() < longestPlainPath || wide.starts_with(L"\\\\?\\")) return wide;
    wide = fullPath(wide);
    if (wide.starts_with(L"\\\\")) return L"\\\\?\\UNC" + wide.substr(1);
    return L"\\\\?\\" + wide;
}

}  // namespace tavlo
