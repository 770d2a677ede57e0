#include "platform/Process.h"

#include <gtest/gtest.h>

namespace tavlo::test {
namespace {

TEST(Process, CommandLineIsSplitByWindowsRules) {
    using Words = std::vector<std::string>;
    const std::pair<std::string_view, Words> lines[] = {
        {"", {}},
        {"  ", {}},
        {"a.exe -x \t y", {"a.exe", "-x", "y"}},
        {R"(a "b c" d"e f"g)", {"a", "b c", "de fg"}},
        {R"(a "" b)", {"a", "", "b"}},
        {R"("C:\x y\z.wav" C:\q\ r)", {R"(C:\x y\z.wav)", R"(C:\q\)", "r"}},
        {R"(a\"b "c\\" d\\\"e \\f)", {"a\"b", "c\\", "d\\\"e", "\\\\f"}},
        {R"("a ""b"" c" 'd e' $HOME %x% `y`)", {"a \"b\" c", "'d", "e'", "$HOME", "%x%", "`y`"}},
        {R"(--tag=TITLE="A B"  -q8 -n"C:\d\e f.ogg")",
         {"--tag=TITLE=A B", "-q8", "-nC:\\d\\e f.ogg"}},
        {R"("open)", {"open"}},
    };
    for (const auto& [line, words] : lines) EXPECT_EQ(splitCommandLine(line), words) << line;
}

}  // namespace
}  // namespace tavlo::test
