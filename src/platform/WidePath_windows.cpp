#include "platform/FileSystem.h"
#include "platform/Utf16.h"
#include "platform/WidePath.h"
#include "platform/WindowsPath.h"

namespace tavlo {

std::wstring wideText(std::string_view text) {
    const std::u16string units = utf16FromUtf8(text);
    return {units.begin(), units.end()};
}

std::wstring widePath(std::string_view path) {
    return wideText(systemPath(absolutePath(std::string(path))));
}

std::wstring plainWidePath(std::string_view path) {
    return path.empty() ? std::wstring() : wideText(absolutePath(std::string(path)));
}

}  // namespace tavlo
