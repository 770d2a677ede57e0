#include "desk/OptionPages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "desk/Mnemonics.h"
#include "desk/ToolUses.h"

namespace tavlo {
namespace {

// "Title: caption, caption | Title: ..."
std::string found(Language language, std::string_view words,
                  PathStyle system = PathStyle::Windows) {
    const Texts texts(language);
    std::string all;
    for (const OptionMatch& match : findOptions(texts, words, system)) {
        all += (all.empty() ? "" : " | ") + texts.get(match.page->title) + ':';
        for (const OptionRow* row : match.rows)
            if (row->kind != OptionKind::Heading) all += ' ' + texts.get(row->caption) + ';';
    }
    return all;
}

TEST(OptionPages, SearchFindsWhatAPersonWouldType) {
    struct Row {
        Language language;
        std::string_view words;
        std::string_view found;
    };
    constexpr auto rows = std::to_array<Row>({
        {Language::English, "recycle", "General: Delete files to the recycle bin;"},
        {Language::English, " BIN  delete ", "General: Delete files to the recycle bin;"},
        {Language::English, "musepack version",  // of a row, and of a tool
         "Encoders: Musepack stream version 8; | System: Programs that are not there;"},
        {Language::English, "wvunpack.exe", "System: Programs that are not there;"},
        {Language::English, "cyrillic tags",  // a choice and its page
         "Tags: Code page of 8-bit texts;"},
        {Language::English, "vorbis preset 3",  // a page and a heading
         "Presets: Ogg Vorbis: Name; Options;"},
        {Language::English, "streamversion",
         "Encoders: Musepack stream version 8; | System: Programs that are not there;"},
        {Language::English, "player",  // named so
         "Player: Play files with a player of my choice; Program; Options to play; Options to "
         "enqueue; | Tags: ID3v2 in version 2.4; | System: Programs that are not there;"},
        {Language::English, "recycle language", ""},
        {Language::Russian, "КОРЗИНУ", "Общие: Удалять файлы в корзину;"},
        {Language::Russian, "проигрыватель программа", "Проигрыватель: Программа;"},
        {Language::Russian, "recycle", ""},
    });
    for (const Row& row : rows) EXPECT_EQ(found(row.language, row.words), row.found) << row.words;
}

TEST(OptionPages, AHeadingComesWithItsRowsOnly) {
    const Texts texts;
    const auto matches = findOptions(texts, "date of files");
    ASSERT_EQ(matches.size(), 1U);
    ASSERT_EQ(matches[0].rows.size(), 2U);
    EXPECT_EQ(matches[0].rows[0]->caption, Text::OptAllFormats);
    EXPECT_EQ(matches[0].rows[1]->setting, Setting::PreserveFileTimes);
}

TEST(OptionPages, WithoutWordsAllIsThereThatTheSystemHas) {
    EXPECT_EQ(findOptions(Texts(), "  ", PathStyle::Windows).size(), optionPages().size());
    EXPECT_EQ(findOptions(Texts(), "", PathStyle::Posix).size(), optionPages().size() - 1);
    EXPECT_EQ(found(Language::English, "windows media", PathStyle::Posix),
              "System: Programs that are not there;");
    EXPECT_EQ(found(Language::English, "start together", PathStyle::Posix), "");
    EXPECT_NE(found(Language::English, "start together", PathStyle::Windows), "");
}

TEST(OptionPages, ControlsHaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const OptionPage& page : optionPages())
        for (const OptionRow& row : page.rows)
            EXPECT_TRUE(row.kind == OptionKind::Heading || names.insert(controlName(row)).second)
                << controlName(row);
    for (const char* name : {"chkDeleteToRecycleBin", "cmbPriority", "txtPresetCode9",
                             "txtNEROPresetName", "chkShell1", "txtPlayerPath"})
        EXPECT_TRUE(names.contains(name)) << name;
}

// A condition on a row of another page could not be met where it is seen.
TEST(OptionPages, ConditionsNameAFlagOnTheSamePage) {
    for (const OptionPage& page : optionPages())
        for (const OptionRow& row : page.rows) {
            if (!row.condition) continue;
            const bool isThere = std::ranges::any_of(page.rows, [&](const OptionRow& other) {
                return other.kind == OptionKind::Flag && other.setting == row.condition->setting &&
                       (!other.onlyWindows || row.onlyWindows);
            });
            EXPECT_TRUE(isThere) << controlName(row);
        }
}

TEST(ToolUses, EveryToolIsNamedWithWhatItEnables) {
    std::set<std::string_view> named;
    for (const ToolUse& use : toolUses()) named.insert(use.tool);
    EXPECT_EQ(named.size(), toolUses().size());
    for (const std::string_view tool : externalTools()) EXPECT_TRUE(named.contains(tool)) << tool;

    const auto hasOthers = [](const std::string& path) {
        return path != "/t/flac" && path != "/t/oggdec";
    };
    const auto missing = missingToolUses({PathStyle::Posix, "/t", "", hasOthers});
    ASSERT_EQ(missing.size(), 2U);
    EXPECT_EQ(missing[0].name, "oggdec");
    EXPECT_EQ(missing[1].enables, Text::OptToolFlac);
}

TEST(Mnemonics, EachLetterOnce) {
    using Captions = std::vector<std::string>;
    struct Row {
        Captions captions, marked;
    };
    const std::vector<Row> rows{
        {{"Folder", "File", "First"}, {"&Folder", "F&ile", "Fi&rst"}},
        {{"One two", "Own", "o"}, {"&One two", "O&wn", "o"}},
        {{"fix", "&File", "F"}, {"f&ix", "&File", "F"}},
        {{"Теги", "теги", "Тип"}, {"&Теги", "т&еги", "Т&ип"}},
        {{"A && B", "B"}, {"&A && B", "&B"}},
        {{"-- 7", "", "\xFFx"}, {"-- &7", "", "\xFF&x"}},
    };
    for (const Row& row : rows) EXPECT_EQ(withMnemonics(row.captions), row.marked);
    EXPECT_EQ(withoutMnemonic("a & b"), "a && b");
}

// What cannot be reached by a letter of its own is slow to reach.
TEST(Mnemonics, SufficeForEveryPage) {
    for (const Language language : {Language::English, Language::Russian}) {
        const Texts texts(language);
        for (const OptionPage& page : optionPages()) {
            std::vector<std::string> captions{texts.get(Text::OptSearch),
                                              texts.get(Text::OptDefaults)};
            for (const OptionRow& row : page.rows)
                if (row.kind != OptionKind::Heading && row.kind != OptionKind::Tools)
                    captions.push_back(texts.get(row.caption));
            for (const std::string& caption : withMnemonics(captions))
                EXPECT_NE(caption.find('&'), std::string::npos) << caption;
        }
    }
}

}  // namespace
}  // namespace tavlo
