#include "core/PathText.h"

#include "core/TextCase.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
// Where the extension's dot stands in a name, or npos.
std::size_t extensionDot(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == 0 ? std::string_view::npos : dot;
}

// "/", "\" and "C:\" keep their separator: without it they would name something else.
bool isRoot(std::string_view folder, PathStyle style) {
    if (folder.size() == 1) return isSeparator(folder[0], style);
    return style == PathStyle::Windows && folder.size() == 3 && folder[1] == ':' &&
           isSeparator(folder[2], style);
}
}  // namespace

PathStyle nativePathStyle() {
    return nativeSeparator() == '\\' ? PathStyle::Windows : PathStyle::Posix;
}

char separatorOf(PathStyle style) {
    return style == PathStyle::Windows ? '\\' : '/';
}

bool isSeparator(char c, PathStyle style) {
    return c == '/' || (c == '\\' && style == PathStyle::Windows);
}

std::size_t lastSeparator(std::string_view path, PathStyle style) {
    std::size_t at = path.size();
    while (at > 0 && !isSeparator(path[at - 1], style)) --at;
    return at - 1;
}

std::string_view folderOf(std::string_view path, PathStyle style) {
    const std::size_t at = lastSeparator(path, style);
    if (at == std::string_view::npos) return {};
    if (isRoot(path.substr(0, at + 1), style)) return path.substr(0, at + 1);
    return path.substr(0, at);
}

std::string_view fileNameOf(std::string_view path, PathStyle style) {
    return path.substr(lastSeparator(path, style) + 1);  // npos + 1 is the whole path
}

std::string_view baseNameOf(std::string_view path, PathStyle style) {
    const std::string_view name = fileNameOf(path, style);
    return name.substr(0, extensionDot(name));
}

std::string_view extensionOf(std::string_view path, PathStyle style) {
    const std::string_view name = fileNameOf(path, style);
    const std::size_t dot = extensionDot(name);
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

std::string_view parentOf(std::string_view folder, PathStyle style) {
    const std::string_view above = folderOf(folder, style);
    return above.size() < folder.size() ? above : std::string_view();
}

std::string joinPath(std::string_view folder, std::string_view name, PathStyle style) {
    std::string path;
    path.reserve(folder.size() + name.size() + 1);
    path = folder;
    if (!path.empty() && !isSeparator(path.back(), style)) path += separatorOf(style);
    return path += name;
}

bool isAbsolutePath(std::string_view path, PathStyle style) {
    if (path.empty()) return false;
    if (isSeparator(path[0], style)) return true;
    return style == PathStyle::Windows && path.size() >= 3 && path[1] == ':' &&
           isSeparator(path[2], style);
}

bool liesIn(std::string_view path, std::string_view folder, PathStyle style) {
    while (!folder.empty() && isSeparator(folder.back(), style)) folder.remove_suffix(1);
    if (path.size() < folder.size()) return false;
    const std::string_view head = path.substr(0, folder.size());
    const bool same = style == PathStyle::Windows ? equalsNoCase(head, folder) : head == folder;
    return same && (path.size() == folder.size() || isSeparator(path[folder.size()], style));
}

}  // namespace tavlo
