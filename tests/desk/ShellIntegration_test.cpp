#include "desk/ShellIntegration.h"

#include <gtest/gtest.h>

#include "support/TestRegistry.h"

namespace tavlo {
namespace {

using test::TestRegistry;

class ShellIntegrationTest : public testing::Test {
 protected:
    static RegistryKey classes(const std::string& below = {}) {
        return TestRegistry::key(below.empty() ? "Classes" : "Classes\\" + below);
    }
    std::string text(const RegistryKey& key, const std::string& name = {}) {
        const auto value = registry.read(key, name);
        return value ? std::get<std::string>(*value) : "(none)";
    }
    void write(const RegistryKey& key, const std::string& name, const std::string& text) {
        ASSERT_TRUE(registry.write(key, name, text));
    }

    TestRegistry test;
    Registry& registry = test.registry();
    const ShellPlaces places{classes(), TestRegistry::key("All"), TestRegistry::key("Choices"),
                             TestRegistry::key("Run")};
    ShellIntegration shell{registry, "C:\\My Music\\tavlo.exe", places};
    // The program was moved, or is there twice.
    ShellIntegration moved{registry, "D:\\tavlo.exe", places};
};

TEST_F(ShellIntegrationTest, WritesAndRemovesItsEntries) {
    write(TestRegistry::key("All\\.m3u"), {}, "Player.M3U");
    write(classes("Folder\\shell\\other\\command"), {}, "other.exe");
    write(TestRegistry::key("Run"), "Other", "other.exe");
    struct Row {
        ShellEntry entry;
        RegistryKey key;
        std::string name, text;
    };
    const std::vector<Row> rows{
        {ShellEntry::FolderVerb, classes("Folder\\shell\\Browse with Tavlo\\command"), "",
         "\"C:\\My Music\\tavlo.exe\" \"%1\""},
        {ShellEntry::PlaylistVerb, classes("Player.M3U\\shell\\Tavlo Copy playlist\\command"), "",
         "\"C:\\My Music\\tavlo.exe\" /copy \"%1\""},
        {ShellEntry::StartWithSystem, TestRegistry::key("Run"), "Tavlo Audio Desk",
         "C:\\My Music\\tavlo.exe"},
    };
    for (const Row& row : rows) {
        EXPECT_FALSE(shell.isOn(row.entry));
        EXPECT_TRUE(shell.set(row.entry, true));
        EXPECT_EQ(text(row.key, row.name), row.text);
        EXPECT_TRUE(shell.isOn(row.entry));
        EXPECT_FALSE(moved.isOn(row.entry));
        // What another copy has written is not this one's to remove.
        EXPECT_TRUE(moved.set(row.entry, false));
        EXPECT_TRUE(shell.isOn(row.entry));
        EXPECT_TRUE(shell.set(row.entry, false));
        EXPECT_EQ(text(row.key, row.name), "(none)");
        EXPECT_FALSE(shell.isOn(row.entry));
    }
    EXPECT_TRUE(registry.subkeys(classes("Player.M3U\\shell")).empty());
    EXPECT_EQ(registry.subkeys(classes("Folder\\shell")), std::vector<std::string>{"other"});
    EXPECT_EQ(registry.valueNames(TestRegistry::key("Run")), std::vector<std::string>{"Other"});
}

TEST_F(ShellIntegrationTest, TheVerbGoesToTheTypeThatCounts) {
    const std::string verb = "\\shell\\Tavlo Copy playlist\\command";
    const auto hasVerb = [&](const std::string& type) {
        return text(classes(type + verb)) != "(none)";
    };
    write(TestRegistry::key("All\\.m3u"), {}, "Everybodys");
    EXPECT_TRUE(shell.set(ShellEntry::PlaylistVerb, true));
    EXPECT_TRUE(hasVerb("Everybodys"));
    write(classes(".m3u"), {}, "Users");
    EXPECT_FALSE(shell.isOn(ShellEntry::PlaylistVerb));
    EXPECT_TRUE(shell.set(ShellEntry::PlaylistVerb, true));
    EXPECT_TRUE(hasVerb("Users"));
    write(TestRegistry::key("Choices\\.m3u\\UserChoice"), "ProgId", "Chosen");
    EXPECT_TRUE(shell.set(ShellEntry::PlaylistVerb, true));
    EXPECT_TRUE(hasVerb("Chosen"));

    EXPECT_TRUE(shell.set(ShellEntry::PlaylistVerb, false));
    for (const char* type : {"Everybodys", "Users", "Chosen"}) EXPECT_FALSE(hasVerb(type)) << type;
    EXPECT_EQ(text(classes(".m3u")), "Users");
}

TEST_F(ShellIntegrationTest, WithoutATypeThereIsOneOfItsOwn) {
    EXPECT_TRUE(shell.set(ShellEntry::PlaylistVerb, true));
    EXPECT_EQ(text(classes(".m3u")), "Tavlo.Playlist");
    EXPECT_TRUE(shell.isOn(ShellEntry::PlaylistVerb));
    EXPECT_TRUE(shell.set(ShellEntry::PlaylistVerb, false));
    EXPECT_EQ(text(classes(".m3u")), "(none)");
    EXPECT_TRUE(registry.subkeys(classes("Tavlo.Playlist")).empty());
}

}  // namespace
}  // namespace tavlo
