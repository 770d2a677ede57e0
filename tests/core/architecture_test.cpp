#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Room {
    std::string_view name;
    std::array<std::string_view, 2> standsOn;
};

constexpr Room rooms[] = {
    {"platform", {}},
    {"core", {"platform"}},
    {"tags", {"core"}},
    {"collection", {"tags"}},
    {"convert", {"collection"}},
    {"cd", {"core"}},
    {"desk", {"convert", "cd"}},
    {"ui", {"desk"}},
    {"main", {"ui"}},
};

const Room* findRoom(std::string_view name) {
    for (const Room& room : rooms) {
        if (room.name == name) return &room;
    }
    return nullptr;
}

/// True when sources of `from` may include headers of `to`: its own, or any that an arrow reaches.
bool mayInclude(std::string_view from, std::string_view to) {
    const Room* room = findRoom(from);
    if (room == nullptr || findRoom(to) == nullptr) return false;
    if (from == to) return true;
    for (std::string_view lower : room->standsOn) {
        if (!lower.empty() && mayInclude(lower, to)) return true;
    }
    return false;
}

/// The text between the quotes of an `#include "..."` line; nothing for any other line.
std::optional<std::string_view> quotedInclude(std::string_view line) {
    const auto skipBlanks = [&line] {
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    };
    skipBlanks();
    if (!line.starts_with('#')) return std::nullopt;
    line.remove_prefix(1);
    skipBlanks();
    if (!line.starts_with("include")) return std::nullopt;
    line.remove_prefix(std::string_view("include").size());
    skipBlanks();
    if (!line.starts_with('"')) return std::nullopt;
    line.remove_prefix(1);
    return line.substr(0, line.find('"'));
}

/// The room that a path below src/ belongs to; files that lie in src/ itself belong to main.
std::string roomOf(const fs::path& belowSource) {
    const bool inFolder = std::next(belowSource.begin()) != belowSource.end();
    return inFolder ? belowSource.begin()->string() : "main";
}

struct Include {
    fs::path file;
    std::size_t line;
    std::string target;
};

std::vector<Include> includesBelow(const fs::path& source) {
    std::vector<Include> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(source)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream stream(entry.path());
        std::string text;
        for (std::size_t number = 1; std::getline(stream, text); ++number) {
            const auto target = quotedInclude(text);
            if (target) found.push_back({entry.path(), number, std::string(*target)});
        }
    }
    return found;
}

TEST(Architecture, NoIncludePointsUp) {
    const fs::path source = fs::path(TAVLO_SOURCE_DIR) / "src";
    const std::vector<Include> includes = includesBelow(source);
    EXPECT_FALSE(includes.empty()) << "nothing read below " << source;
    for (const Include& include : includes) {
        const std::string from = roomOf(fs::relative(include.file, source));
        const std::string to = roomOf(fs::path(include.target));
        EXPECT_TRUE(mayInclude(from, to))
            << include.file.string() << ":" << include.line << ": " << from
            << " must not include \"" << include.target << '"';
    }
}

}  // namespace
