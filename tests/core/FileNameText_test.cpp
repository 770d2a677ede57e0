#include "core/FileNameText.h"

#include <gtest/gtest.h>

namespace tavlo {
namespace {

std::string times(std::size_t count, std::string_view text) {
    return count == 0 ? std::string() : times(count - 1, text).append(text);
}

TEST(FileNameText, EverySystemCanHoldTheName) {
    struct Row {
        std::string text, posix, windows = posix;
        std::size_t extensionSize = 0;
    };
    // clang-format off
    const Row rows[] = {
        {"a<b>c:d\"e/f|g?h*i", "a_b_c_d_e_f_g_h_i"}, {"a\x01\n\x7F\u0085z", "a____z"},
        {" a. .", "a"}, {"..", ""}, {"a\\..\\ . \\\\b\\", "a\\b"}, {"\\a/../b", "a_.._b"},
        {"..\x02", "_._", ".._"}, {".a\\..b", "_a\\_.b", ".a\\..b"}, {"\xFF \xD0", "\xFF \xD0"},
        {"con\\Nul \\LPT9.a\\com\u00B2\\prn .x", "con_\\Nul_\\LPT9_.a\\com\u00B2_\\prn _.x"},
        {"console\\com10\\lpt\\xcon", "console\\com10\\lpt\\xcon"},
        // 247 remain of 255 beside the counter; cut between two characters.
        {times(300, "a"), times(247, "a")}, {times(300, "a") + "\\b", times(255, "a") + "\\b"},
        {times(200, "я"), times(121, "я"), times(200, "я"), 4},
        {times(200, "😀"), times(60, "😀"), times(121, "😀"), 4},
        {times(245, "a") + ". b", times(245, "a")},
        // What cutting brings to light is cleaned as well.
        {"con" + times(300, " ") + "x", "con_"}, {"a\\" + times(300, ".") + "x\\..", "a"},
        {"nul." + times(300, "a"), "nul_." + times(242, "a")},
    };
    // clang-format on
    for (const auto& [text, posix, windows, extensionSize] : rows) {
        EXPECT_EQ(cleanFileName(text, PathStyle::Posix, extensionSize), posix);
        EXPECT_EQ(cleanFileName(text, PathStyle::Windows, extensionSize), windows);
    }
    EXPECT_EQ(cleanAsciiFileName("é – 日本\\\xFF\\con", PathStyle::Posix), "_ _ __\\_\\con_");
}

}  // namespace
}  // namespace tavlo
