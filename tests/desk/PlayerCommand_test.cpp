#include "desk/PlayerCommand.h"

#include <gtest/gtest.h>

#include "platform/Process.h"
#include "support/ChildProgram.h"
#include "support/MemorySink.h"
#include "support/TestProgress.h"
#include "support/TestRegistry.h"

namespace tavlo {
namespace {

class PlayerOrderTest : public testing::Test {
 protected:
    PlayerOrderTest() { settings.set(Setting::PlayerEn, true); }

    PlayerOrder order(const std::string& file, PlayWish wish = PlayWish::Play) {
        const auto exists = [](const std::string& path) {
            return path == "C:\\P F\\play.exe" || path == "D:\\bin\\mpx.exe";
        };
        return playerOrder(settings, file, wish, {PathStyle::Windows, "C:\\T", "D:\\bin", exists});
    }
    void choose(const std::string& player) { settings.set(Setting::PlayerPath, player); }

    test::TestRegistry test;
    RegistryEx store{test.registry()};
    Settings settings{store};
};

TEST_F(PlayerOrderTest, PlayingAndEnqueuingHaveOptionsOfTheirOwn) {
    choose("C:\\P F\\play.exe");
    EXPECT_EQ(order("C:\\a b.mp3").program, "C:\\P F\\play.exe");
    EXPECT_EQ(order("C:\\a b.mp3").line, "\"C:\\P F\\play.exe\" \"C:\\a b.mp3\"");
    EXPECT_EQ(order("C:\\c.mp3", PlayWish::Enqueue).line,
              "\"C:\\P F\\play.exe\" /ADD \"C:\\c.mp3\"");
}

TEST_F(PlayerOrderTest, SaysWhyThereIsNoPlayer) {
    EXPECT_EQ(order("a").fault, Text::PlayerNotChosen);
    choose("C:\\gone\\play.exe");
    EXPECT_EQ(order("a").fault, Text::PlayerNotFound);
    EXPECT_EQ(order("a").program, "C:\\gone\\play.exe");
    choose("mpx.exe");
    EXPECT_EQ(order("a").program, "D:\\bin\\mpx.exe");
    settings.set(Setting::PlayerEn, false);
    EXPECT_TRUE(!order("a").fault && order("a").line.empty());
}

// Whatever stands in a name, the player has to get it as one word.
TEST(PlayerArguments, TheFileArrivesAsOneWord) {
    struct Row {
        std::string pattern, path;
        std::vector<std::string> words;
    };
    const std::vector<Row> rows{
        {"%1", "/m/a b.mp3", {"/m/a b.mp3"}},
        {"\"%1\"", "/m/a b.mp3", {"/m/a b.mp3"}},
        {"/ADD %1 /now", "/m/%1 %T.mp3", {"/ADD", "/m/%1 %T.mp3", "/now"}},
        {"--file=%1", "a b", {"--file=a b"}},
        {"/play", "a b", {"/play", "a b"}},
        {"", "a b", {"a b"}},
        {"%1 %1", "a b", {"a b", "a b"}},
        {"%1 -x", "C:\\ends in\\", {"C:\\ends in\\", "-x"}},
        {"%1 -x", "/m/say \"hi\\\".mp3", {"/m/say \"hi\\\".mp3", "-x"}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(splitCommandLine(playerArguments(row.pattern, row.path)), row.words)
            << row.pattern << ' ' << row.path;
}

class PlayFilesTest : public testing::Test {
 protected:
    bool play(const std::string& player) {
        settings.set(Setting::PlayerEn, true);
        settings.set(Setting::PlayerPath, player);
        settings.set(Setting::PlayerPlayback, std::string("--does=garbage -o %1"));
        Services services{options, settings, texts,           errors,
                          output,  progress, progress.cancel, 1252};
        return playFiles(services, {folder.path("a b.x")}, PlayWish::Play);
    }

    test::TempFolder folder;
    test::TestRegistry test;
    RegistryEx store{test.registry()};
    Settings settings{store};
    Texts texts;
    test::MemorySink output, messages;
    ErrorReport errors{texts, messages};
    test::TestProgress progress;
    JobOptions options;
};

TEST_F(PlayFilesTest, ThePlayerIsStarted) {
    EXPECT_TRUE(play(TAVLO_CHILD));
    EXPECT_TRUE(test::comesTrue([&] { return folder.read("a b.x") == "garbage"; }));
    EXPECT_EQ(messages.text, "");
}

TEST_F(PlayFilesTest, AMissingPlayerIsReportedOnce) {
    const std::string player = folder.path("gone.exe");
    EXPECT_FALSE(play(player));
    EXPECT_EQ(messages.text, texts.get(Text::PlayerNotFound, player) + '\n');
    EXPECT_EQ(errors.count(), 1U);
}

}  // namespace
}  // namespace tavlo
