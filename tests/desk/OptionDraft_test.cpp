#include "desk/OptionDraft.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestRegistry.h"

namespace tavlo {
namespace {

const OptionRow& rowOf(Setting setting) {
    static const OptionRow none{OptionKind::Heading, Text::OptionsTitle};
    for (const OptionPage& page : optionPages())
        for (const OptionRow& row : page.rows)
            if (row.hasSetting() && row.setting == setting) return row;
    return none;
}

const OptionPage& pageOf(Text title) {
    return *std::ranges::find(optionPages(), title, &OptionPage::title);
}

class OptionDraftTest : public testing::Test {
 protected:
    OptionDraftTest() {
        store.Company(test::TestRegistry::company());
        settings.load();
    }

    // As the next start of the program finds them.
    Settings stored() {
        Settings again(store);
        again.load();
        return again;
    }

    test::TestRegistry test;
    RegistryEx store{test.registry()};
    Settings settings{store};
    ShellIntegration shell{test.registry(),
                           "C:\\T\\tavlo.exe",
                           {test::TestRegistry::key("Classes"), test::TestRegistry::key("All"),
                            test::TestRegistry::key("Choices"), test::TestRegistry::key("Run")}};
    Texts texts;
};

TEST_F(OptionDraftTest, NothingCountsBeforeItIsSaved) {
    OptionDraft draft(settings, shell);
    draft.setFlag(rowOf(Setting::DeleteToRecycleBin), false);
    draft.type(rowOf(Setting::RenameTemplateDef), "%T");
    draft.choose(rowOf(Setting::Priority), 2);
    EXPECT_TRUE(draft.isChanged());
    EXPECT_TRUE(settings.flag(Setting::DeleteToRecycleBin));
    EXPECT_EQ(settings.text(Setting::RenameTemplateDef), "%N %A - %T (%M)");

    EXPECT_EQ(draft.save(), OptionDraft::Saved::Done);
    EXPECT_FALSE(draft.isChanged());
    for (const Settings& now : {settings, stored()}) {
        EXPECT_FALSE(now.flag(Setting::DeleteToRecycleBin));
        EXPECT_EQ(now.text(Setting::RenameTemplateDef), "%T");
        EXPECT_EQ(now.text(Setting::Priority), "High");
    }
}

// Another window or run of the program may have stored other settings meanwhile.
TEST_F(OptionDraftTest, OnlyWhatChangedIsStored) {
    OptionDraft draft(settings, shell);
    draft.setFlag(rowOf(Setting::Trim), !draft.flag(rowOf(Setting::Trim)));
    draft.type(rowOf(Setting::FLACModeDef), " 8 ");
    draft.type(rowOf(Setting::PlayerPath), "/p");
    draft.type(rowOf(Setting::PlayerPath), "");
    EXPECT_EQ(draft.changed(), (std::vector{Setting::Trim, Setting::FLACModeDef}));

    Settings other(store);
    other.set(Setting::PlayerPath, std::string("/other"));
    ASSERT_TRUE(other.save(Setting::PlayerPath));
    EXPECT_EQ(draft.save(), OptionDraft::Saved::Done);
    EXPECT_EQ(stored().number(Setting::FLACModeDef), 8);
    EXPECT_EQ(stored().text(Setting::PlayerPath), "/other");
}

TEST_F(OptionDraftTest, NumbersAndNeededTextsAreChecked) {
    struct Row {
        Setting setting;
        std::string typed, message;
    };
    const std::vector<Row> rows{
        {Setting::FLACModeDef, "8", ""},
        {Setting::FLACModeDef, "9", "Level of FLAC: a whole number within 0–8 is needed."},
        {Setting::FLACModeDef, "-1", "Level of FLAC: a whole number within 0–8 is needed."},
        {Setting::FLACModeDef, "", "Level of FLAC: a whole number within 0–8 is needed."},
        {Setting::FLACModeDef, "3x", "Level of FLAC: a whole number within 0–8 is needed."},
        {Setting::FAACModeDef, "99999999999",
         "Quality of FAAC: a whole number within 1–500 is needed."},
        {Setting::RenameTemplateDef, "  ", "Template for /rename: this must not be empty."},
        {Setting::PlayerPlayback, "", ""},
        {Setting::NormalizeLevel, "none", ""},  // normalizing is off
        {Setting::PlayerPath, "", ""},          // as is the player
    };
    for (const Row& row : rows) {
        OptionDraft draft(settings, shell);
        draft.type(rowOf(row.setting), row.typed);
        const auto fault = draft.firstFault(texts);
        EXPECT_EQ(fault ? fault->message : "", row.message) << row.typed;
        EXPECT_TRUE(!fault || fault->row->setting == row.setting);
    }
}

TEST_F(OptionDraftTest, ConditionsFollowTheirFlag) {
    OptionDraft draft(settings, shell);
    EXPECT_FALSE(draft.isEnabled(rowOf(Setting::PlayerPath)));
    EXPECT_TRUE(draft.isEnabled(rowOf(Setting::BitrateRise)));
    draft.setFlag(rowOf(Setting::PlayerEn), true);
    draft.setFlag(rowOf(Setting::BeginnerMode), true);
    EXPECT_TRUE(draft.isEnabled(rowOf(Setting::PlayerPath)));
    EXPECT_FALSE(draft.isEnabled(rowOf(Setting::BitrateRise)));
    const auto fault = draft.firstFault(texts);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->page->title, Text::OptPagePlayer);
}

// A number that was typed into a row that is off must not hinder the others, nor be stored.
TEST_F(OptionDraftTest, WhatCannotBeStoredStaysAsItWas) {
    OptionDraft draft(settings, shell);
    draft.type(rowOf(Setting::NormalizeLevel), "5000");
    draft.type(rowOf(Setting::NormalizeAbove), "");
    EXPECT_FALSE(draft.firstFault(texts));
    EXPECT_FALSE(draft.isChanged());
}

TEST_F(OptionDraftTest, AValueThatIsNoChoiceStaysUnlessAnotherIsChosen) {
    settings.set(Setting::AnsiCodePage, 20866);
    settings.set(Setting::Priority, std::string("hIgH"));
    OptionDraft draft(settings, shell);
    EXPECT_EQ(draft.choice(rowOf(Setting::AnsiCodePage)), std::nullopt);
    EXPECT_EQ(draft.choice(rowOf(Setting::Priority)), 2U);
    EXPECT_FALSE(draft.isChanged());
    draft.choose(rowOf(Setting::AnsiCodePage), 2);
    EXPECT_EQ(draft.save(), OptionDraft::Saved::Done);
    EXPECT_EQ(stored().number(Setting::AnsiCodePage), 1251);
}

TEST_F(OptionDraftTest, DefaultsOfAPageAndOfAll) {
    settings.set(Setting::ReduceLevel, false);
    settings.set(Setting::NormalizeLevel, 12);
    settings.set(Setting::LamePreset1Code, std::string("-V 0"));
    settings.set(Setting::MainL, 77);
    OptionDraft draft(settings, shell);
    draft.putDefaults(pageOf(Text::OptPageProcessing));
    EXPECT_EQ(draft.changed(), (std::vector{Setting::ReduceLevel, Setting::NormalizeLevel}));
    EXPECT_EQ(draft.text(rowOf(Setting::NormalizeLevel)), "94");
    draft.putDefaults();
    EXPECT_EQ(draft.text(rowOf(Setting::LamePreset1Code)), "-m j -h -b 160 --lowpass 18.0");
    EXPECT_EQ(draft.save(), OptionDraft::Saved::Done);
    EXPECT_EQ(settings.number(Setting::MainL), 77);
}

TEST_F(OptionDraftTest, ShellEntriesAreSavedWithTheRest) {
    const OptionRow& verb =
        *std::ranges::find(pageOf(Text::OptPageSystem).rows, OptionKind::Shell, &OptionRow::kind);
    OptionDraft draft(settings, shell, PathStyle::Windows);
    EXPECT_FALSE(draft.flag(verb));
    draft.setFlag(verb, true);
    EXPECT_TRUE(draft.isChanged());
    EXPECT_FALSE(shell.isOn(ShellEntry::FolderVerb));
    EXPECT_EQ(draft.save(), OptionDraft::Saved::Done);
    EXPECT_TRUE(shell.isOn(ShellEntry::FolderVerb));
    EXPECT_TRUE(OptionDraft(settings, shell, PathStyle::Windows).flag(verb));
}

TEST_F(OptionDraftTest, WhatIsNotStoredDoesNotCount) {
    if (!test::TestRegistry::usesFile()) GTEST_SKIP() << "the registry can always be written";
    test.folder.write("in the way", "");
    Registry broken(test.folder.path("in the way") + "/settings.txt");
    RegistryEx brokenStore(broken);
    Settings unsaved(brokenStore);
    OptionDraft draft(unsaved, shell);
    draft.setFlag(rowOf(Setting::Normalize), true);
    EXPECT_EQ(draft.save(), OptionDraft::Saved::NotStored);
    EXPECT_FALSE(unsaved.flag(Setting::Normalize));
    EXPECT_TRUE(draft.isChanged());
}

}  // namespace
}  // namespace tavlo
