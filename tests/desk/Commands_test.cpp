#include "desk/Commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/TextCase.h"
#include "desk/Mnemonics.h"
#include "platform/Utf8.h"

namespace tavlo::test {
namespace {

TEST(Commands, EveryKeyIsThereOnce) {
    std::map<std::string, std::string> owners;
    const Texts texts;
    for (const CommandRow& row : commandRows()) {
        if (row.key.empty()) continue;
        const std::string name = texts.get(row.caption);
        const auto [owner, isNew] = owners.emplace(lowerCase(row.key), name);
        EXPECT_TRUE(isNew) << row.key << ": " << name << ", " << owner->second;
    }
    // What text fields do with keys of their own stays theirs; the twins of Enter, Backspace
    // and Tab do not always arrive.
    for (const char* key : {"ctrl+c", "ctrl+v", "ctrl+x", "ctrl+z", "enter", "ctrl+m", "ctrl+h",
                            "ctrl+i", "ctrl+shift+i", "ctrl+shift+u", "alt+f4", "f10"}) {
        EXPECT_FALSE(owners.contains(key)) << key;
    }
}

TEST(Commands, EveryCommandIsInOneMenu) {
    std::multiset<Command> listed;
    for (const MenuRow& menu : menuRows()) {
        ASSERT_FALSE(menu.commands.empty());
        EXPECT_TRUE(menu.commands.front() && menu.commands.back()) << "a line at an end";
        for (std::size_t i = 0; i < menu.commands.size(); ++i) {
            if (menu.commands[i]) {
                listed.insert(*menu.commands[i]);
            } else {
                EXPECT_TRUE(menu.commands[i - 1]) << "two lines one behind the other";
            }
        }
    }
    for (const CommandRow& row : commandRows()) {
        EXPECT_EQ(listed.count(row.command), 1U) << Texts().get(row.caption);
    }
}

TEST(Commands, EveryCommandHasItsOwnTexts) {
    for (const Language language : {Language::English, Language::Russian}) {
        const Texts texts(language);
        std::set<std::string> captions;
        for (const CommandRow& row : commandRows()) {
            const std::string caption = texts.get(row.caption);
            EXPECT_NE(texts.get(row.tip), "") << caption;
            EXPECT_TRUE(captions.insert(caption).second) << caption;
        }
    }
}

// The letters that mark captions, a blank for one without.
std::vector<char32_t> marksOf(const std::vector<std::string>& captions) {
    std::vector<char32_t> marks;
    for (std::string_view caption : captions) {
        char32_t mark = U' ';
        for (std::size_t at = 0; (at = caption.find('&', at)) < caption.size(); at += 2) {
            if (at + 1 == caption.size() || caption[at + 1] == '&') continue;
            EXPECT_EQ(mark, U' ') << "marked twice: " << caption;
            mark = lowerCase(firstCodePoint(caption.substr(at + 1)).value);
        }
        marks.push_back(mark);
    }
    return marks;
}

void expectUnique(const std::vector<std::string>& captions) {
    const std::vector<char32_t> marks = marksOf(captions);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        EXPECT_NE(marks[i], U' ') << captions[i] << " has none";
        EXPECT_EQ(std::ranges::count(marks, marks[i]), 1) << captions[i];
    }
}

TEST(Commands, NoTwoLettersAreTheSameInAMenu) {
    for (const Language language : {Language::English, Language::Russian}) {
        const Texts texts(language);
        std::vector<std::string> titles;
        for (const MenuRow& menu : menuRows()) {
            titles.push_back(texts.get(menu.title));
            std::vector<std::string> captions;
            for (const auto& command : menu.commands) {
                if (command) captions.push_back(texts.get(commandRow(*command).caption));
            }
            expectUnique(captions);
        }
        expectUnique(titles);
    }
}

TEST(Mnemonics, LettersAreSharedOut) {
    const struct {
        std::vector<std::string> captions, marked;
    } cases[] = {
        {{"Open", "Options"}, {"&Open", "O&ptions"}},
        {{"Old name", "Open &name"}, {"&Old name", "Open &name"}},
        {{"Ж", "ж", "Жук"}, {"&Ж", "ж", "Ж&ук"}},
        {{"Drum && bass", "Drum"}, {"&Drum && bass", "D&rum"}},
        {{"&& so on", "Rock && &roll"}, {"&& &so on", "Rock && &roll"}},
        {{"&&", "…"}, {"&&", "…"}},
        {{""}, {""}},
    };
    for (const auto& c : cases) EXPECT_EQ(withMnemonics(c.captions), c.marked);
    EXPECT_EQ(withMnemonics({withoutMnemonic("&A & b")}).front(), "&&&A && b");
}

// What a command needs: it is possible with all of it, and not without any single one.
using Change = std::function<void(DeskState&)>;
struct Need {
    const char* name;
    Change give, take;
};

const Need oneSelected{"one file selected", [](DeskState& s) { s.selected = 1; },
                       [](DeskState& s) { s.selected = 2; }};
const Need selection{"a selection", [](DeskState& s) { s.selected = 1; },
                     [](DeskState& s) { s.selected = 0; }};
const Need editable{"files whose tags can be written", [](DeskState& s) { s.editable = 1; },
                    [](DeskState& s) { s.editable = 0; }};
const Need rest{"no saving", [](DeskState& s) { s.isSaving = false; },
                [](DeskState& s) { s.isSaving = true; }};
const Need shown{"rows", [](DeskState& s) { s.shown = 1; }, [](DeskState& s) { s.shown = 0; }};
const Need folder{"a folder", [](DeskState& s) { s.hasFolder = true; },
                  [](DeskState& s) { s.hasFolder = false; }};
const Need cover{"a cover", [](DeskState& s) { s.hasCover = true; },
                 [](DeskState& s) { s.hasCover = false; }};
const Need covers{"files with covers", [](DeskState& s) { s.hasCovers = true; },
                  [](DeskState& s) { s.hasCovers = s.hasCover = false; }};
const Need copied{"copied tags", [](DeskState& s) { s.hasCopiedTags = true; },
                  [](DeskState& s) { s.hasCopiedTags = false; }};
const Need target{"a target folder", [](DeskState& s) { s.hasTarget = true; },
                  [](DeskState& s) { s.hasTarget = false; }};
const Need editor{"the editor", [](DeskState& s) { s.hasEditor = true; },
                  [](DeskState& s) { s.hasEditor = false; }};
const Need edits{"edits", [](DeskState& s) { s.pending = 1; },
                 [](DeskState& s) { s.pending = 0, s.hasTyped = false; }};
const Need typed{"something typed", [](DeskState& s) { s.hasTyped = true; }, edits.take};
const Need loading{"loading", [](DeskState& s) { s.isLoading = true; },
                   [](DeskState& s) { s.isLoading = s.isSaving = false; }};
const Need saving{"saving", [](DeskState& s) { s.isSaving = true; }, loading.take};

const struct {
    Command command;
    std::vector<Need> needs;
} commandNeeds[] = {
    {Command::OpenFolder, {}},
    {Command::OpenList, {}},
    {Command::Save, {edits, rest}},
    {Command::Save, {typed, rest}},
    {Command::Revert, {edits, rest}},
    {Command::Revert, {typed, rest}},
    {Command::Play, {selection}},
    {Command::Enqueue, {selection}},
    {Command::ShowInFolder, {oneSelected}},
    {Command::Rename, {oneSelected, rest}},
    {Command::Delete, {selection, rest}},
    {Command::CopyToTarget, {selection, target, rest}},
    {Command::ListRelative, {folder, rest}},
    {Command::ListAbsolute, {folder, rest}},
    {Command::Info, {selection, rest}},
    {Command::Quit, {}},
    {Command::SelectAll, {shown}},
    {Command::Invert, {shown}},
    {Command::CopyTags, {oneSelected}},
    {Command::PasteTags, {editable, copied, rest}},
    {Command::EmptyField, {editable, rest}},
    {Command::Find, {}},
    {Command::PickCover, {editable, rest}},
    {Command::PasteCover, {editable, rest}},
    {Command::ExportCover, {cover}},
    {Command::RemoveCover, {editable, covers, rest}},
    {Command::Options, {}},
    {Command::Up, {}},
    {Command::Refresh, {}},
    {Command::Subfolders, {}},
    {Command::Stop, {loading}},
    {Command::Stop, {saving}},
    {Command::Tree, {}},
    {Command::Editor, {}},
    {Command::Cover, {}},
    {Command::TargetBar, {}},
    {Command::Columns, {}},
    {Command::AutoSize, {shown}},
    {Command::Unsort, {}},
    {Command::GoToList, {}},
    {Command::GoToFolder, {}},
    {Command::GoToEditor, {editor}},
    {Command::CommandHelp, {}},
    {Command::About, {}},
};

TEST(Commands, AreOfferedWhenTheyCanBeDone) {
    std::set<Command> told;
    for (const auto& row : commandNeeds) {
        told.insert(row.command);
        const CommandRow& command = commandRow(row.command);
        SCOPED_TRACE(Texts().get(command.caption));
        DeskState state;
        for (const Need& need : row.needs) need.give(state);
        EXPECT_TRUE(command.isPossible(state));
        for (const Need& need : row.needs) {
            DeskState without = state;
            need.take(without);
            EXPECT_FALSE(command.isPossible(without)) << "without " << need.name;
        }
    }
    EXPECT_EQ(told.size(), commandRows().size());
}

}  // namespace
}  // namespace tavlo::test
