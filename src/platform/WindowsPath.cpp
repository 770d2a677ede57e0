#include "platform/WindowsPath.h"

#include <algorithm>
#include <vector>

#include "platform/PlainText.h"

namespace tavlo {

namespace {
constexpr std::string_view verbatim = R"(\\?\)";
constexpr std::string_view device = R"(\\.\)";
constexpr std::string_view share = R"(\\)";
constexpr std::string_view verbatimShare = R"(\\?\UNC\)";

bool isLetter(char c) {
    return lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z';
}

bool beginsWithDrive(std::string_view path) {
    return path.size() >= 2 && isLetter(path[0]) && path[1] == ':';
}

bool beginsWith(std::string_view path, std::string_view front) {
    return path.size() >= front.size() && sameAscii(path.substr(0, front.size()), front);
}

std::string withBackslashes(std::string_view path) {
    std::string out(path);
    std::replace(out.begin(), out.end(), '/', '\\');
    return out;
}

// Cuts the level in front off, with the separators behind it.
std::string_view takeLevel(std::string_view& path) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    const std::string_view level = path.substr(0, end);
    path.remove_prefix(std::min(path.find_first_not_of('\\', end), path.size()));
    return level;
}

// "C:\" or "\\server\share\", which no ".." leads out of, cut off the front of a full path.
std::string takeRoot(std::string_view& path) {
    if (!path.starts_with(share)) {
        std::string root(path.substr(0, 2));
        path.remove_prefix(std::min(path.find_first_not_of('\\', 2), path.size()));
        return root + '\\';
    }
    path.remove_prefix(std::min(path.find_first_not_of('\\'), path.size()));
    std::string root(share);
    root.append(takeLevel(path)) += '\\';
    return root.append(takeLevel(path)) += '\\';
}

std::string withoutSteps(std::string_view path) {
    const std::string root = takeRoot(path);
    std::vector<std::string_view> levels;
    while (!path.empty()) {
        const std::string_view level = takeLevel(path);
        if (level == "..") {
            if (!levels.empty()) levels.pop_back();
        } else if (!level.empty() && level != ".") {
            levels.push_back(level);
        }
    }
    std::string out = root;
    for (const std::string_view level : levels) out.append(level) += '\\';
    // Only a drive needs the separator behind it.
    if (out.size() > 3) out.pop_back();
    return out;
}

std::string fullPath(const std::string& path, const CurrentFolderOf& current) {
    const bool hasDrive = beginsWithDrive(path);
    if (path.starts_with(share) || (hasDrive && path.substr(2, 1) == "\\")) return path;
    if (hasDrive) return current(path.substr(0, 2)) + '\\' + path.substr(2);
    std::string folder = current({});
    if (!path.starts_with('\\')) return folder + '\\' + path;
    std::string_view rest = folder;
    return takeRoot(rest) + path;
}

// "\\?\C:\..." without its mark; nothing else has a plain form.
std::string_view unmarked(std::string_view path) {
    const std::string_view rest = path.substr(verbatim.size());
    const bool isPlain = beginsWithDrive(rest) && (rest.size() == 2 || rest[2] == '\\');
    return isPlain ? rest : path;
}
}  // namespace

std::string plainPath(std::string_view path, const CurrentFolderOf& current) {
    if (path.empty()) return {};
    const std::string wanted = withBackslashes(path);
    if (wanted.starts_with(device)) return wanted;
    if (beginsWith(wanted, verbatimShare)) {
        return withoutSteps(std::string(share) + wanted.substr(verbatimShare.size()));
    }
    if (wanted.starts_with(verbatim)) {
        const std::string_view plain = unmarked(wanted);
        return plain.size() < wanted.size() ? withoutSteps(plain) : wanted;
    }
    return withoutSteps(fullPath(wanted, current));
}

std::string systemPath(std::string_view plain) {
    if (plain.empty() || plain.starts_with(verbatim) || plain.starts_with(device)) {
        return std::string(plain);
    }
    if (plain.starts_with(share)) {
        return std::string(verbatimShare).append(plain.substr(share.size()));
    }
    return std::string(verbatim).append(plain);
}

}  // namespace tavlo
