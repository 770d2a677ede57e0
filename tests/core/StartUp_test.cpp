#include "core/StartUp.h"

#include <gtest/gtest.h>

#include "core/ConsoleProgress.h"
#include "core/ExternalTools.h"
#include "support/MemorySink.h"
#include "support/TempFolder.h"
#include "support/TestRegistry.h"

namespace tavlo {
namespace {

/// One start of the program after another; none of them saves a setting.
class StartUpTest : public testing::Test {
 protected:
    int run(const std::vector<std::string>& arguments) {
        StartUp start({registry, output, messages, progress, cancel, "1.2.3",
                       [this](PriorityClass chosen) { priorities.push_back(chosen); }},
                      {{RunMode::Scan, [this](Services& services) {
                            folder = services.options.folder.value_or("");
                            if (folder == "broken") services.errors.report(Text::FileNotRead, "x");
                            return services.errors.exitCode();
                        }}});
        return start.run({std::nullopt, arguments});
    }

    test::TempFolder home;
    Registry registry{home.path("settings.txt")};
    test::MemorySink output;
    test::MemorySink messages;
    ConsoleProgress progress{messages, 0};
    CancelFlag cancel{false};
    Texts texts{languageFor(systemLanguage())};
    std::vector<PriorityClass> priorities;
    std::string folder;
};

TEST_F(StartUpTest, RunsTheJobWithItsOptions) {
    EXPECT_EQ(run({"--scan", "/home/x"}), 0);
    EXPECT_EQ(folder, "/home/x");
    EXPECT_EQ(messages.text, "");
}

TEST_F(StartUpTest, ExitCodesAndMessages) {
    struct Row {
        std::vector<std::string> arguments;
        int exitCode;
        std::string message;
    };
    const std::vector<Row> rows{
        {{"/scan", "broken"}, 1, texts.get(Text::FileNotRead, "x") + '\n'},
        {{"/scan", "--zzz"}, 0, texts.get(Text::UnknownOption, "--zzz") + '\n'},
        {{"-r"}, 2, texts.get(Text::JobNotAvailable, "/r") + '\n'},
        {{"/encode", "ogg"}, 2, texts.get(Text::JobNotAvailable, "/encode") + '\n'},
        {{"/scan", "/lng", "none.lng"}, 0, texts.get(Text::LanguageFileNotRead, "none.lng") + '\n'},
        {{"/version"}, 0, ""},
    };
    for (const Row& row : rows) {
        messages.text.clear();
        EXPECT_EQ(run(row.arguments), row.exitCode) << row.arguments.front();
        EXPECT_EQ(messages.text, row.message) << row.arguments.front();
    }
    EXPECT_EQ(output.text, texts.get(Text::VersionLine, "1.2.3") + '\n');
}

TEST_F(StartUpTest, ALineIsReadByTheRulesOfItsSystem) {
    StartUp start({registry, output, messages, progress, cancel, "1", [](PriorityClass) {}}, {});
    start.run({"\"C:\\My Music\" /h", {}});
    EXPECT_EQ(start.options().folder, "C:\\My Music");
    EXPECT_EQ(start.options().startFolder, currentFolder());
    EXPECT_NE(output.text.find("/rename"), std::string::npos);
}

TEST_F(StartUpTest, ALanguageFileHoldsForItsRun) {
    home.write("my.lng", "2101=Version %1!\n");
    EXPECT_EQ(run({"/version", "/lng", home.path("my.lng")}), 0);
    EXPECT_EQ(run({"/version", "/lng", "0"}), 0);
    EXPECT_EQ(output.text, "Version 1.2.3!\n" + texts.get(Text::VersionLine, "1.2.3") + '\n');
}

TEST_F(StartUpTest, ThePrioritySettingCountsWithoutAnOption) {
    if (!test::TestRegistry::usesFile()) GTEST_SKIP() << "the store is the user's own here";
    RegistryEx store(registry);
    bindToProgram(store);
    for (const char* word : {"High", "idle", "rubbish"}) {
        ASSERT_TRUE(store.SaveSetting("Settings", "Priority", std::string(word)));
        run({"/scan"});
        run({"/scan", "/normal"});
    }
    using enum PriorityClass;
    EXPECT_EQ(priorities, (std::vector{High, Normal, Idle, Normal, Idle, Normal}));
}

TEST_F(StartUpTest, AFullOutputIsAFailure) {
    output.full = true;
    EXPECT_EQ(run({"/help"}), 1);
    EXPECT_EQ(messages.text, texts.get(Text::OutputNotWritten) + '\n');
}

TEST(ConsoleProgress, DrawsSeldomAndClearsBehindItself) {
    test::MemorySink terminal;
    {
        ConsoleProgress progress(terminal, 12);
        const auto start = ConsoleProgress::Clock::now();
        progress.setRange(20);
        progress.step();
        progress.reportAt("Длинное имя", start);
        EXPECT_EQ(terminal.text, "\r1/20 Длинно");
        for (int i = 0; i < 1000; ++i) progress.reportAt("other", start);
        EXPECT_EQ(terminal.text, "\r1/20 Длинно");
        terminal.text.clear();
        progress.reportAt("a\n", start + std::chrono::seconds(1));
        EXPECT_EQ(terminal.text, "\r1/20 a     ");
        terminal.text.clear();
        progress.write("message\n");
        EXPECT_EQ(terminal.text, "\r" + std::string(7, ' ') + "\rmessage\n");
        progress.reportAt("x", start);
        terminal.text.clear();
    }
    EXPECT_EQ(terminal.text, "\r" + std::string(6, ' ') + "\r");
}

TEST(ExternalTools, LooksInTheProgramsFolderFirstAndThenInThePath) {
    const auto has = [](const std::string& path) {
        return path == "/opt/t/lame" || path == "/usr/bin/lame" || path == "/usr/bin/flac";
    };
    const ToolPlaces places{PathStyle::Posix, "/opt/t", "/bin::/usr/bin", has};
    EXPECT_EQ(findTool("lame.exe", places), "/opt/t/lame");
    EXPECT_EQ(findTool("flac.exe", places), "/usr/bin/flac");
    EXPECT_EQ(findTool("mac.exe", places), "");
}

TEST(ExternalTools, NamesWhatIsMissing) {
    const auto hasAllBut = [](const std::string& path) {
        return !path.ends_with("lame.exe") && !path.ends_with("wnaspi32.dll");
    };
    EXPECT_EQ(missingTools({PathStyle::Windows, "C:\\T", "", hasAllBut}), "wnaspi32.dll, lame.exe");
    const auto hasNone = [](const std::string&) { return false; };
    const std::string missing = missingTools({PathStyle::Posix, "/t", "/a", hasNone});
    EXPECT_TRUE(missing.starts_with("cddae, lame, ")) << missing;
    EXPECT_EQ(missing.find(".exe"), std::string::npos) << missing;
}

}  // namespace
}  // namespace tavlo
