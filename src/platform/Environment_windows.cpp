#include <windows.h>

#include <string_view>

#include "platform/Environment.h"
#include "platform/Utf16.h"

namespace tavlo {
namespace {

constexpr DWORD longestPath = 32768;  // UTF-16 units

std::string utf8Of(std::wstring_view text) {
    return utf8FromUtf16(std::u16string(text.begin(), text.end()));
}

std::wstring wideOf(const std::string& text) {
    const std::u16string units = utf16FromUtf8(text);
    return {units.begin(), units.end()};
}

/// The line behind the program's name, which stands in quotes or ends at the first blank.
std::wstring_view withoutProgram(std::wstring_view line) {
    const bool quoted = line.starts_with(L'"');
    const std::size_t end =
        quoted ? line.find(L'"', 1) : line.find_first_of(std::wstring_view(L" \t"));
    if (end == std::wstring_view::npos) return {};
    line.remove_prefix(end + (quoted ? 1 : 0));
    const std::size_t begin = line.find_first_not_of(std::wstring_view(L" \t"));
    return begin == std::wstring_view::npos ? std::wstring_view() : line.substr(begin);
}

}  // namespace

CommandLine programCommandLine(int, char**) {
    return {utf8Of(withoutProgram(GetCommandLineW())), {}};
}

std::optional<std::string> environmentVariable(const std::string& name) {
    const std::wstring wideName = wideOf(name);
    SetLastError(ERROR_SUCCESS);
    const DWORD size = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
    if (size == 0) {
        if (GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
        return std::string();
    }
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), size));
    return utf8Of(value);
}

std::string programFile() {
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
    return utf8Of(path);
}

std::string programFolder() {
    const std::string file = programFile();
    const std::size_t separator = file.find_last_of('\\');
    return separator == std::string::npos ? std::string() : file.substr(0, separator);
}

std::string settingsFolder() {
    const std::string folder = environmentVariable("APPDATA").value_or("");
    return folder.empty() ? std::string() : folder + "\\Tavlo";
}

std::string currentFolder() {
    std::wstring path(longestPath, L'\0');
    path.resize(GetCurrentDirectoryW(longestPath, path.data()));
    return utf8Of(path);
}

std::string temporaryFolder() {
    std::wstring path(longestPath, L'\0');
    path.resize(GetTempPathW(longestPath, path.data()));
    return utf8Of(path);
}

std::string systemLanguage() {
    const LCID locale = MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT);
    wchar_t name[16] = {};
    const int count = GetLocaleInfoW(locale, LOCALE_SISO639LANGNAME, name, 16);
    return count > 1 ? utf8Of({name, static_cast<std::size_t>(count - 1)}) : std::string();
}

bool hasDisplay() {
    return true;
}

}  // namespace tavlo
