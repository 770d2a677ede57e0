#include "core/Texts.h"

#include <gtest/gtest.h>

#include "core/LanguageFile.h"
#include "support/TempFolder.h"

namespace tavlo {
namespace {

TEST(Texts, SpeaksTwoLanguages) {
    EXPECT_EQ(Texts(Language::English).get(Text::FileNotOpenedForWriting, "a.mp3"),
              "Unable to open file for writing: a.mp3");
    EXPECT_EQ(Texts(Language::Russian).get(Text::FileNotOpenedForWriting, "a.mp3"),
              "Не удалось открыть файл для записи: a.mp3");
    EXPECT_EQ(Texts().get(Text::FileNotCreated, "x"), "File \"x\" could not be created.");
    EXPECT_EQ(languageFor("ru"), Language::Russian);
    EXPECT_EQ(languageFor("de"), Language::English);
}

// A translation that forgets the argument hides from the user which file failed.
TEST(Texts, BothLanguagesTakeTheSameArgument) {
    for (const TextRow& row : textTable) {
        const auto has = [](std::string_view text) { return text.find("%1") != text.npos; };
        EXPECT_EQ(has(row.english), has(row.russian)) << static_cast<int>(row.number);
        EXPECT_FALSE(row.english.empty() || row.russian.empty()) << static_cast<int>(row.number);
    }
}

TEST(Texts, TheArgumentIsTakenAsItIs) {
    Texts texts;
    texts.addReplacements("1008=<%1> and <%1>");
    EXPECT_EQ(texts.get(Text::UnknownError, "%1"), "<%1> and <%1>");
    EXPECT_EQ(texts.get(Text::UnknownError, ""), "<> and <>");
}

TEST(Texts, ALanguageFileReplacesByNumber) {
    Texts texts;
    texts.addReplacements(
        "\xEF\xBB\xBF"
        "1004=first\r\n; comment\n\n=x\nabc=y\n1008 x\n99=none\n"
        "99999999999999=far\n1006=a=b\n1007=\n1008=last without an end");
    EXPECT_EQ(texts.get(Text::FolderNotCreated), "first");
    EXPECT_EQ(texts.get(Text::FileNotOpenedForWriting), "a=b");
    EXPECT_EQ(texts.get(Text::FileNotCreated), "");
    EXPECT_EQ(texts.get(Text::UnknownError), "last without an end");
}

TEST(Texts, TheTemplateReadsBackAsEveryText) {
    const Texts russian(Language::Russian);
    Texts replaced(Language::English);
    replaced.addReplacements(russian.languageFileTemplate());
    for (const TextRow& row : textTable) EXPECT_EQ(replaced.get(row.number), row.russian);
}

TEST(LanguageFile, TheTemplateNeverOverwrites) {
    const test::TempFolder folder;
    folder.write("tavlo.lng", "mine");
    const auto first = writeLanguageTemplate(Texts(), folder.path());
    const auto second = writeLanguageTemplate(Texts(), folder.path());
    EXPECT_EQ(first, folder.path("tavlo (1).lng"));
    EXPECT_EQ(second, folder.path("tavlo (2).lng"));
    EXPECT_EQ(folder.read("tavlo.lng"), "mine");
    EXPECT_EQ(readLanguageFile(*first), Texts().languageFileTemplate());
    EXPECT_FALSE(writeLanguageTemplate(Texts(), folder.path("missing")));
}

TEST(LanguageFile, WhatIsNoFileIsNotRead) {
    const test::TempFolder folder;
    EXPECT_FALSE(readLanguageFile(folder.path("missing.lng")));
    EXPECT_FALSE(readLanguageFile(folder.path()));
}

}  // namespace
}  // namespace tavlo
