#include "core/CommandString.h"

#include <gtest/gtest.h>

#include "core/Options.h"

namespace tavlo {
namespace {

std::vector<std::string> argumentsOf(const CommandString& line) {
    std::vector<std::string> arguments;
    for (std::size_t i = 1; i <= line.count(); ++i) arguments.push_back(line.ParameterEx(i));
    return arguments;
}

struct Split {
    std::string line;
    std::vector<std::string> arguments;
};

TEST(CommandString, SplitsAtBlanksOutsideQuotes) {
    const std::vector<Split> cases{
        {"", {}},
        {"  \t ", {}},
        {"one", {"one"}},
        {"  a  b\tc ", {"a", "b", "c"}},
        {"/a \"Two Words\" /s", {"/a", "Two Words", "/s"}},
        {"\"C:\\My Music\\\" /s", {"C:\\My Music\\", "/s"}},
        {"/a \"\" /s", {"/a", "", "/s"}},
        {"C:\\\"My Music\"\\x", {"C:\\My Music\\x"}},
        {"/t \"no end here", {"/t", "no end here"}},
        {"\"", {""}},
        {"Привет \"два слова\"", {"Привет", "два слова"}},
    };
    CommandString line(PathStyle::Windows, isOptionWord);
    for (const Split& row : cases) {
        line.Command(row.line);
        EXPECT_EQ(argumentsOf(line), row.arguments) << row.line;
        EXPECT_EQ(line.Command(), row.line);
    }
}

TEST(CommandString, SplitArgumentsMayHoldAnything) {
    const std::vector<std::string> arguments{"/a", "say \"hi\"", "", "tab\tnew\nline"};
    CommandString line(PathStyle::Posix, isOptionWord);
    line.assign(arguments);
    EXPECT_EQ(argumentsOf(line), arguments);
}

struct Kind {
    std::string word;
    bool onWindows;
    bool onPosix;
};

TEST(CommandString, TellsOptionsFromPaths) {
    const std::vector<Kind> cases{
        {"/rename", true, true},  {"-rename", true, true},  {"--rename", true, true},
        {"/home/x", true, false}, {"/foo", true, false},    {"/f", true, false},
        {"/f5", true, true},      {"/f5x", true, false},    {"/s", true, true},
        {"/", true, false},       {"--zzz", true, true},    {"-", true, true},
        {"/Rename", true, false}, {"folder", false, false}, {"./-x", false, false},
        {"C:\\a", false, false},
    };
    for (const auto style : {PathStyle::Windows, PathStyle::Posix})
        for (const Kind& row : cases) {
            CommandString line(style, isOptionWord);
            line.assign({row.word});
            EXPECT_EQ(line.IsOption(1), style == PathStyle::Windows ? row.onWindows : row.onPosix)
                << row.word;
        }
}

TEST(CommandString, AValueIsWhatFollowsAndIsNoOption) {
    CommandString line(PathStyle::Windows, isOptionWord);
    line.Command("/a /t \"\" x");
    EXPECT_FALSE(line.NextIsValue(1));
    EXPECT_TRUE(line.NextIsValue(2));
    EXPECT_TRUE(line.NextIsValue(3));
    for (const std::size_t outside : {std::size_t{0}, std::size_t{4}, std::size_t{99}})
        EXPECT_FALSE(line.NextIsValue(outside)) << outside;
    EXPECT_FALSE(line.IsOption(0));
    EXPECT_EQ(line.Parameter(5), "");
}

TEST(CommandString, ThePrefixDecides) {
    CommandString line(PathStyle::Windows, isOptionWord);
    line.Command("+x /y");
    line.Prefix("+");
    EXPECT_TRUE(line.IsOption(1));
    EXPECT_FALSE(line.IsOption(2));
}

}  // namespace
}  // namespace tavlo
