#include "platform/Process.h"

#include <gtest/gtest.h>

#include <atomic>

#include "support/ChildProgram.h"
#include "support/TempFolder.h"

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

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

std::string letters(std::size_t from, std::size_t to) {
    std::string text;
    for (std::size_t i = from; i < to; ++i) text += static_cast<char>('a' + i % 26);
    return text;
}

TEST(Process, ArgumentsArriveUnharmed) {
    const std::pair<std::string, std::string> lines[] = {
        {R"(a  "b c" --x="d e" "" -)", "a\nb%20c\n--x=d%20e\n\n-\n"},
        {R"("say \"no\"" 'e f')", "say%20\"no\"\n'e\nf'\n"},
        {R"("C:\a b\\" C:\c\ "\\d\e.wav")", "C:\\a%20b\\\nC:\\c\\\n\\\\d\\e.wav\n"},
        {"$HOME %PATH% `id` ~ &|;<^!", "$HOME\n%25PATH%25\n`id`\n~\n&|;<^!\n"},
        {"\"*\" \"[a] Ж\xC3\xA9.ogg\"", "*\n[a]%20%D0%96%C3%A9.ogg\n"},
    };
    for (const auto& [line, told] : lines) EXPECT_EQ(outputOf("args", line), told);
}

TEST(Process, WhatCannotBeStartedIsNothing) {
    const TempFolder folder;
    const std::string text = folder.write("no program.exe", "text");
    EXPECT_EQ(startProcess({folder.path("none"), "none", ""}), nullptr);
    EXPECT_EQ(startProcess({text, "none", ""}), nullptr);
    EXPECT_EQ(startProcess({TAVLO_CHILD, "child --does=exit", folder.path("none")}), nullptr);
}

TEST(Process, RunsInItsFolderAndHasNoInput) {
    const TempFolder folder;
    ProcessStart start;
    start.folder = folder.makeFolder("Ж");
    const auto child = startChild("garbage input", "-o ./made.wav", start);
    ASSERT_TRUE(child != nullptr && child->waitFor(longWait));
    EXPECT_EQ(folder.read("Ж/made.wav"), "garbage");
    EXPECT_EQ(child->output(), "0");
}

TEST(Process, LastOutputIsKeptAndNeverStopsIt) {
    constexpr std::size_t many = 1'000'000;
    EXPECT_EQ(outputOf("print=3 exit=3"), "abc");
    EXPECT_EQ(outputOf("print=3 crash").substr(0, 3), "abc");
    EXPECT_TRUE(outputOf("print=1000000") == letters(many - Process::mostOutput, many));
}

TEST(Process, EndIsNoticedAtOnceAndNotBefore) {
    constexpr int times = 20;
    Clock::duration late{};
    for (int i = 0; i < times; ++i) {
        const TempFolder folder;
        const auto child = startChild("print=9 await", folder.path("gate"));
        ASSERT_TRUE(child != nullptr && saysSomething(*child));
        const auto start = Clock::now();
        EXPECT_FALSE(child->waitFor(20));
        EXPECT_GE(Clock::now() - start, milliseconds(20));
        child->kill();
        const auto killed = Clock::now();
        EXPECT_TRUE(child->waitFor(longWait));
        late += Clock::now() - killed;
    }
    EXPECT_LT(late, milliseconds(times * 50));
}

TEST(Process, WhatItLeftBehindIsNotWaitedFor) {
    const auto child = startChild("leave=2500 print=3", "");
    ASSERT_NE(child, nullptr);
    const auto start = Clock::now();
    EXPECT_TRUE(child->waitFor(longWait));
    EXPECT_LT(Clock::now() - start, milliseconds(2000));
    EXPECT_EQ(child->output(), "abc");
}

TEST(Process, PriorityIsThatOfAllItsThreads) {
    const TempFolder folder;
    for (const PriorityClass atStart : {PriorityClass::Idle, PriorityClass::Normal}) {
        const std::string gate = std::to_string(static_cast<int>(atStart));
        ProcessStart start;
        start.priority = atStart;
        const auto child = startChild("print=1 await priority", folder.path(gate), start);
        ASSERT_TRUE(child != nullptr && saysSomething(*child));
        if (atStart == PriorityClass::Normal) child->setPriority(PriorityClass::Idle);
        folder.write(gate, "");
        EXPECT_TRUE(child->waitFor(longWait));
        EXPECT_EQ(child->output(), "aidle");
    }
}

TEST(Process, ManyAtOnceHaveNothingOfEachOther) {
    std::atomic<int> right{0};
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&right] {
            const auto first = startChild("print=70000 inheritance", "");
            const auto second = startChild("inheritance print=5", "");
            if (first == nullptr || second == nullptr) return;
            if (second->waitFor(longWait) && second->output() == "abcde") ++right;
            if (first->waitFor(longWait) && first->output().ends_with(letters(69'000, 70'000))) {
                ++right;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(right, 8);
}

TEST(Process, GoesOnWhenNobodyListens) {
    const TempFolder folder;
    ASSERT_NE(startChild("sleep=100 print=300000 garbage", "-o " + folder.path("made")), nullptr);
    EXPECT_TRUE(comesTrue([&] { return folder.read("made") == "garbage"; }));
}

}  // namespace
}  // namespace tavlo::test
