#include "core/Settings.h"

#include <gtest/gtest.h>

#include "core/AnsiCodePage.h"
#include "support/TestRegistry.h"

namespace tavlo {
namespace {

using test::TestRegistry;

class SettingsTest : public testing::Test {
 protected:
    SettingsTest() { bind(store); }

    static void bind(RegistryEx& ex) {
        ex.Company(TestRegistry::company());
        ex.AppName("Desk");
        ex.Version("4.0");
    }
    std::optional<RegistryValue> raw(const std::string& section, const std::string& name) {
        return Registry(test.file()).read(TestRegistry::key("Desk\\4.0\\" + section), name);
    }

    TestRegistry test;
    RegistryEx store{test.registry()};
    Settings settings{store};
};

TEST_F(SettingsTest, ValuesAreTypedByTheirDefault) {
    struct Row {
        SettingValue written;
        SettingValue fallback;
        SettingValue read;
    };
    const std::string none;
    const std::vector<Row> rows{
        {true, false, true},
        {false, true, false},
        {std::string("-1"), false, true},
        {std::string("True"), false, true},
        {std::string("False"), true, false},
        {std::string("rubbish"), true, true},
        {-5, 0, -5},
        {std::string("123"), 0, 123},
        {std::string("12x"), 7, 7},
        {300, std::uint8_t{9}, std::uint8_t{255}},
        {-1, std::uint8_t{9}, std::uint8_t{0}},
        {240, none, std::string("240")},
        {std::string("x\ny"), none, std::string("x\ny")},
    };
    for (const Row& row : rows) {
        ASSERT_TRUE(store.SaveSetting("S", "v", row.written));
        EXPECT_EQ(store.GetSetting("S", "v", row.fallback), row.read) << (&row - rows.data());
    }
    EXPECT_EQ(store.GetSetting("S", "missing", 42), SettingValue(42));
}

TEST_F(SettingsTest, KeysLieWhereOtherProgramsLook) {
    ASSERT_TRUE(store.SaveSetting("S", "flag", true));
    EXPECT_EQ(raw("S", "flag"), RegistryValue(0xFFFFFFFFU));
    RegistryEx shell(test.registry());
    shell.Root(true);
    ASSERT_TRUE(shell.SaveSetting(TestRegistry::key("Verb").path, "", std::string("cmd")));
    EXPECT_EQ(Registry(test.file()).read(TestRegistry::key("Verb"), ""), RegistryValue("cmd"));
}

TEST_F(SettingsTest, DeleteSettingTakesAValueAllValuesOrTheSection) {
    for (const char* name : {"a", "b", "c"}) ASSERT_TRUE(store.SaveSetting("S", name, 1));
    ASSERT_TRUE(store.SaveSetting("S\\Below", "x", 1));
    EXPECT_TRUE(store.DeleteSetting("S", "a"));
    EXPECT_FALSE(raw("S", "a"));
    EXPECT_TRUE(raw("S", "b"));
    EXPECT_TRUE(store.DeleteSetting("S", "*"));
    EXPECT_FALSE(raw("S", "b"));
    EXPECT_TRUE(raw("S\\Below", "x"));
    EXPECT_TRUE(store.DeleteSetting("S"));
    EXPECT_FALSE(raw("S\\Below", "x"));
    RegistryEx root(test.registry());
    root.Root(true);
    EXPECT_FALSE(root.DeleteSetting(""));
}

TEST_F(SettingsTest, AnEmptyStoreGivesTheDefaults) {
    settings.load();
    EXPECT_EQ(settings.number(Setting::AlphaLevel), 240);
    EXPECT_EQ(settings.text(Setting::RenameTemplateDef), "%N %A - %T (%M)");
    EXPECT_EQ(settings.text(Setting::CurrentFolder), "C:\\");
    EXPECT_TRUE(settings.flag(Setting::TAGSAllTags));
    EXPECT_TRUE(settings.flag(Setting::EnableOGG));
    EXPECT_FALSE(settings.flag(Setting::PreserveFileTimes));
    EXPECT_EQ(settings.text(Setting::LamePreset3Code), "-m s -h -b 256 --lowpass 20.0");
}

TEST_F(SettingsTest, NumbersComeIntoTheirRange) {
    struct Row {
        int stored;
        int read;
    };
    for (const Row& row :
         {Row{50, 128}, Row{128, 128}, Row{200, 200}, Row{999, 255}, Row{-3, 128}}) {
        ASSERT_TRUE(store.SaveSetting("Settings", "AlphaLevel", row.stored));
        settings.load();
        EXPECT_EQ(settings.number(Setting::AlphaLevel), row.read) << row.stored;
    }
    ASSERT_TRUE(store.SaveSetting("Settings", "AnsiCodePage", -7));
    settings.load();
    EXPECT_EQ(settings.number(Setting::AnsiCodePage), 0);
}

TEST_F(SettingsTest, AnEmptyServerIsTheDefaultOne) {
    const std::string standard = settings.text(Setting::CDServer);
    ASSERT_TRUE(store.SaveSetting("Settings", "CD_Server", std::string()));
    settings.load();
    EXPECT_EQ(settings.text(Setting::CDServer), standard);
    ASSERT_TRUE(store.SaveSetting("Settings", "CD_Server", std::string("cd.example.org")));
    settings.load();
    EXPECT_EQ(settings.text(Setting::CDServer), "cd.example.org");
}

/// A value of the setting's kind that is not its default and lies in its range.
SettingValue otherValue(const SettingRow& row) {
    switch (row.kind) {
        case SettingKind::Boolean:
        case SettingKind::TextBoolean:
            return row.number == 0;
        case SettingKind::Integer:
            return row.number + 1;
        case SettingKind::Byte:
            return static_cast<std::uint8_t>(row.number - 1);
        case SettingKind::Text:
            break;
    }
    return "other " + std::string(row.key);
}

SettingValue current(const Settings& settings, const SettingRow& row) {
    switch (row.kind) {
        case SettingKind::Boolean:
        case SettingKind::TextBoolean:
            return settings.flag(row.setting);
        case SettingKind::Integer:
            return settings.number(row.setting);
        case SettingKind::Byte:
            return static_cast<std::uint8_t>(settings.number(row.setting));
        case SettingKind::Text:
            break;
    }
    return settings.text(row.setting);
}

TEST_F(SettingsTest, EverySettingSurvivesSaveAll) {
    for (const SettingRow& row : settingsTable) settings.set(row.setting, otherValue(row));
    ASSERT_TRUE(settings.saveAll());
    Registry secondRegistry(test.file());
    RegistryEx second(secondRegistry);
    bind(second);
    Settings again(second);
    again.load();
    for (const SettingRow& row : settingsTable)
        EXPECT_EQ(current(again, row), otherValue(row)) << row.key;
    EXPECT_EQ(raw("Settings", "TAGS_ShowFiles"), RegistryValue("False"));
    EXPECT_EQ(raw("Windows", "MainTB"), RegistryValue("other MainTB"));
}

TEST_F(SettingsTest, AGroupIsSavedAlone) {
    settings.set(Setting::LangFile, std::string("my.lng"));
    settings.set(Setting::CDBitrate, 192);
    ASSERT_TRUE(settings.saveGroup(SettingsGroup::Language));
    EXPECT_EQ(raw("Settings", "LangFile"), RegistryValue("my.lng"));
    EXPECT_FALSE(raw("Settings", "CD_Bitrate"));
    ASSERT_TRUE(settings.save(Setting::CDBitrate));
    EXPECT_EQ(raw("Settings", "CD_Bitrate"), RegistryValue(192U));
    EXPECT_FALSE(raw("Settings", "CD_TargetFolder"));
}

TEST_F(SettingsTest, AValueOfAnotherKindChangesNothing) {
    settings.set(Setting::AlphaLevel, std::string("x"));
    settings.set(Setting::LangFile, 3);
    EXPECT_EQ(settings.number(Setting::AlphaLevel), 240);
    EXPECT_EQ(settings.text(Setting::LangFile), "");
}

TEST_F(SettingsTest, ListsAreNumberedFromOneAndShrink) {
    const std::vector<std::string> three{"C:\\a", "", "Ф"};
    ASSERT_TRUE(settings.saveHistory(HistoryList::Folders, three));
    EXPECT_EQ(settings.history(HistoryList::Folders), three);
    EXPECT_EQ(raw("History", "FoldersCount"), RegistryValue(3U));
    EXPECT_EQ(raw("History", "Folder1"), RegistryValue("C:\\a"));
    ASSERT_TRUE(settings.saveHistory(HistoryList::Folders, {"only"}));
    EXPECT_FALSE(raw("History", "Folder3"));
    EXPECT_EQ(settings.history(HistoryList::Folders), std::vector<std::string>{"only"});
    EXPECT_TRUE(settings.history(HistoryList::Servers).empty());
    ASSERT_TRUE(store.SaveSetting("History", "ServersCount", 2000000000));
    EXPECT_EQ(settings.history(HistoryList::Servers).size(), 100U);
}

TEST(AnsiCodePage, TheEnvironmentBeatsTheSettingBeatsTheSystem) {
    struct Row {
        std::optional<std::string> environment;
        int setting;
        int chosen;
    };
    const std::vector<Row> rows{{std::nullopt, 0, 1252}, {std::nullopt, 1251, 1251},
                                {"1250", 1251, 1250},    {"1250", 0, 1250},
                                {"", 1251, 1251},        {"0", 1251, 1251},
                                {"x", 1251, 1251},       {"-5", 0, 1252}};
    for (const Row& row : rows)
        EXPECT_EQ(chooseAnsiCodePage(row.environment, row.setting, 1252), row.chosen)
            << row.environment.value_or("none");
}

}  // namespace
}  // namespace tavlo
