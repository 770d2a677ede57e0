#include "platform/WindowsPath.h"

#include <gtest/gtest.h>

namespace tavlo {
namespace {

std::string currentOf(std::string_view drive) {
    if (drive.empty() || drive == "c:" || drive == "C:") return R"(C:\Work\Now)";
    return std::string(drive) + '\\';
}

struct Case {
    std::string typed, plain, system;
};

const Case cases[] = {
    // Names as they stand: dots and blanks behind them, devices' names.
    {R"(C:\M\Album.)", R"(C:\M\Album.)", R"(\\?\C:\M\Album.)"},
    {R"(C:\M\Album \x.mp3)", R"(C:\M\Album \x.mp3)", R"(\\?\C:\M\Album \x.mp3)"},
    {R"(C:\M\Album...\x.mp3)", R"(C:\M\Album...\x.mp3)", R"(\\?\C:\M\Album...\x.mp3)"},
    {R"(C:\M\...)", R"(C:\M\...)", R"(\\?\C:\M\...)"},
    {R"(C:\M\con.mp3)", R"(C:\M\con.mp3)", R"(\\?\C:\M\con.mp3)"},
    // What people type.
    {"C:/M/a/../b/./c", R"(C:\M\b\c)", R"(\\?\C:\M\b\c)"},
    {R"(C:\M\\a\)", R"(C:\M\a)", R"(\\?\C:\M\a)"},
    {R"(C:\M\Album.\)", R"(C:\M\Album.)", R"(\\?\C:\M\Album.)"},
    {"a.mp3", R"(C:\Work\Now\a.mp3)", R"(\\?\C:\Work\Now\a.mp3)"},
    {".", R"(C:\Work\Now)", R"(\\?\C:\Work\Now)"},
    {R"(..\..\..\a)", R"(C:\a)", R"(\\?\C:\a)"},
    {R"(\a\b)", R"(C:\a\b)", R"(\\?\C:\a\b)"},
    {"C:a", R"(C:\Work\Now\a)", R"(\\?\C:\Work\Now\a)"},
    {"D:a", R"(D:\a)", R"(\\?\D:\a)"},
    {R"(D:\)", R"(D:\)", R"(\\?\D:\)"},
    {"D:", R"(D:\)", R"(\\?\D:\)"},
    // Shares.
    {"//server/share/a/../b", R"(\\server\share\b)", R"(\\?\UNC\server\share\b)"},
    {R"(\\server\share\..\..\b.)", R"(\\server\share\b.)", R"(\\?\UNC\server\share\b.)"},
    {R"(\\server\share\)", R"(\\server\share)", R"(\\?\UNC\server\share)"},
    // With the mark already.
    {R"(\\?\C:\M\\Album.\)", R"(C:\M\Album.)", R"(\\?\C:\M\Album.)"},
    {R"(\\?\UNC\server\share\b )", R"(\\server\share\b )", R"(\\?\UNC\server\share\b )"},
    {R"(\\?\unc\server\share\b)", R"(\\server\share\b)", R"(\\?\UNC\server\share\b)"},
    {R"(\\?\Volume{1}\a)", R"(\\?\Volume{1}\a)", R"(\\?\Volume{1}\a)"},
    {R"(\\.\D:)", R"(\\.\D:)", R"(\\.\D:)"},
    {"", "", ""},
};

TEST(WindowsPath, NamesAreTakenToTheLetter) {
    for (const Case& each : cases) {
        const std::string plain = plainPath(each.typed, currentOf);
        EXPECT_EQ(plain, each.plain) << each.typed;
        EXPECT_EQ(systemPath(plain), each.system) << each.typed;
        EXPECT_EQ(plainPath(plain, currentOf), plain) << "again: " << each.typed;
    }
}

}  // namespace
}  // namespace tavlo
