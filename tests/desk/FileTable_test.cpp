#include "desk/FileTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/ListRows.h"

namespace tavlo::test {
namespace {

std::string showing(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : " ") + name;
    return all;
}

// Rows of few words, so that many of them are equal in a column and a filter finds some.
class RandomRows {
 public:
    ListRows make(std::size_t count) {
        ListRows list;
        for (std::size_t i = 0; i < count; ++i) add(list);
        return list;
    }
    std::size_t below(std::size_t end) { return random_() % end; }

 private:
    std::string word() {
        constexpr const char* words[] = {"",       "2",      "10",  "alpha", "Alpha",
                                         "alp 10", "ALP 9",  "Жук", "жуки",  "beta",
                                         "\xFF",   "\xD0 b", "é",   "alb et"};
        return words[below(std::size(words))];
    }
    void add(ListRows& list) {
        FileRow& row = list.add("sub" + std::to_string(below(3)) + "/" + std::to_string(made_++));
        for (std::size_t text = 2; text < rowTextCount; ++text) {
            row.texts[text] = list.store->add(word());
        }
        row.size = below(4) * 700;
        row.seconds = static_cast<std::int32_t>(below(4));
        row.hasStream = true;
        row.bitrate = static_cast<std::int32_t>(below(3) * 128);
        row.sampleRate = static_cast<std::int32_t>(below(3) * 22050);
        row.type = below(2) == 0 ? FileType::Mp3 : FileType::Ape;
        row.hasID3v1 = below(2) == 0;
    }

    std::mt19937 random_{1};
    std::size_t made_ = 0;
};

TEST(FileTable, RowsThatComeLaterLandWhereAWholeSortingPutsThem) {
    RandomRows random;
    const ListRows list = random.make(400);
    for (const ListColumnRow& column : listColumns) {
        for (const bool descending : {false, true}) {
            FileTable atOnce, inTurn;
            list.appendTo(atOnce);
            atOnce.sortBy(column.column, descending);
            inTurn.sortBy(column.column, descending);
            for (std::size_t at = 0; at < list.rows.size();) {
                const std::size_t count = std::min(random.below(60), list.rows.size() - at);
                inTurn.append(std::span(list.rows).subspan(at, count), list.store);
                at += count;
            }
            EXPECT_TRUE(std::ranges::equal(atOnce.shown(), inTurn.shown()))
                << static_cast<int>(column.column) << (descending ? " descending" : "");
        }
    }
}

// A row that was replaced may stand where it does not belong.
TEST(FileTable, NoRowIsLostWhereTheOrderIsBroken) {
    RandomRows random;
    const ListRows list = random.make(200);
    FileTable table;
    table.sortBy(ListColumn::Artist, false);
    for (std::size_t at = 0; at < list.rows.size(); at += 20) {
        table.append(std::span(list.rows).subspan(at, 20), list.store);
        for (RowId id = 0; id < at; id += 3) {
            ID3tag record;
            record.SetArtist(id % 2 == 0 ? "zz" : "0");
            table.replace(id, record, table.row(id).path());
        }
    }
    std::vector<RowId> found(table.shown().begin(), table.shown().end());
    std::ranges::sort(found);
    ASSERT_EQ(found.size(), list.rows.size());
    for (RowId id = 0; id < found.size(); ++id) EXPECT_EQ(found[id], id);
}

class FilteredTable : public testing::Test {
 protected:
    FilteredTable() {
        const struct {
            const char *path, *artist, *title;
        } files[] = {{"one.mp3", "Alpha", "Зима"},
                     {"two.mp3", "beta", "alphabet"},
                     {"deep/ALPHA.mp3", "", "ночь"},
                     {"deep/four.mp3", "\xFF\xD0", "Zero"}};
        for (const auto& file : files) {
            FileRow& row = list.add(file.path);
            list.set(row, RowText::Artist, file.artist);
            list.set(row, RowText::Title, file.title);
            row.size = 100;
            row.seconds = 60;
        }
        table.clear(musicPath());
        list.appendTo(table);
    }
    // As a person types it, a key each, and takes it back.
    void type(const std::string& words) {
        for (std::size_t end = 1; end <= words.size(); ++end) table.filter(words.substr(0, end));
    }
    void replaceTitle(RowId id, const std::string& title) {
        ID3tag record;
        record.SetTitle(title);
        record.Seconds = 5;
        record.Length = 1000;
        table.replace(id, record, table.row(id).path());
    }

    ListRows list;
    FileTable table;
};

TEST_F(FilteredTable, EveryWordHasToBeSomewhere) {
    const struct {
        const char* words;
        std::vector<std::string> names;
    } cases[] = {
        {"", {"one.mp3", "two.mp3", "ALPHA.mp3", "four.mp3"}},
        {"   ", {"one.mp3", "two.mp3", "ALPHA.mp3", "four.mp3"}},
        {"alpha", {"one.mp3", "two.mp3", "ALPHA.mp3"}},
        {"AlPhA", {"one.mp3", "two.mp3", "ALPHA.mp3"}},
        {" alpha  beta ", {"two.mp3"}},
        {"beta alpha", {"two.mp3"}},
        {"ЗИМА", {"one.mp3"}},
        {"зима alpha mp3", {"one.mp3"}},
        {"alphazima", {}},
        {"deep", {"ALPHA.mp3", "four.mp3"}},
        {"music", {}},  // the shown folder's own name is in every path
        {"\xFF\xD0", {"four.mp3"}},
        {"zero deep four \xFF", {"four.mp3"}},
    };
    for (const auto& c : cases) {
        table.filter(c.words);
        EXPECT_EQ(shownNames(table), showing(c.names)) << c.words;
        EXPECT_EQ(table.filterWords(), c.words);
        table.filter("");
        type(c.words);
        EXPECT_EQ(shownNames(table), showing(c.names)) << c.words << ", key by key";
    }
}

TEST_F(FilteredTable, WhatTheFilterHidesHasNoPlace) {
    table.filter("deep");
    EXPECT_FALSE(table.placeOf(0));
    EXPECT_EQ(table.placeOf(2), 0U);
    EXPECT_EQ(table.placeOf(3), 1U);
    EXPECT_EQ(table.shownAt(1), 3U);
    EXPECT_EQ(table.rowOfPath(musicPath("one.mp3")), 0U);
    EXPECT_FALSE(table.rowOfPath(musicPath("deep/one.mp3")));
    EXPECT_FALSE(table.rowOfPath("one.mp3"));
    EXPECT_EQ(table.sums().files, 4U);
}

TEST_F(FilteredTable, FilterKnowsWhatAReplacedFileHolds) {
    type("ze");
    EXPECT_EQ(shownNames(table), "four.mp3");
    replaceTitle(0, "Zebra");
    replaceTitle(3, "None");
    EXPECT_EQ(shownNames(table), "four.mp3") << "a row stays in sight when it was saved";
    table.filter("zeb");
    EXPECT_EQ(shownNames(table), "one.mp3");
    table.filter("");
    EXPECT_EQ(table.shownCount(), 4U);
}

TEST_F(FilteredTable, SumsFollowWhatIsReplacedAndRemoved) {
    const auto expect = [&](std::size_t files, std::uint64_t bytes, std::uint64_t seconds) {
        EXPECT_EQ(table.sums().files, files);
        EXPECT_EQ(table.sums().bytes, bytes);
        EXPECT_EQ(table.sums().seconds, seconds);
    };
    expect(4, 400, 240);
    replaceTitle(1, "Other");
    expect(4, 1300, 185);
    const std::vector<RowId> some{1, 3};
    EXPECT_EQ(table.sumsOf(some).bytes, 1100U);
    EXPECT_EQ(table.sumsOf(some).seconds, 65U);
    table.filter("mp3");
    table.remove(some);
    expect(2, 200, 120);
    EXPECT_EQ(shownNames(table), "one.mp3 ALPHA.mp3");
    EXPECT_FALSE(table.rowOfPath(musicPath("two.mp3")));
    table.filter("");
    table.sortBy(ListColumn::FileName, true);
    EXPECT_EQ(shownNames(table), "one.mp3 ALPHA.mp3") << "what was removed comes back";
    table.clear({});
    expect(0, 0, 0);
    EXPECT_EQ(table.shownCount(), 0U);
}

TEST_F(FilteredTable, FilterAndSortingStayForTheNextFolder) {
    table.sortBy(ListColumn::FileName, true);
    table.filter("alpha");
    table.clear(musicPath("deep"));
    list.appendTo(table);
    EXPECT_EQ(shownNames(table), "two.mp3 one.mp3 ALPHA.mp3");
    table.filter("deep");
    EXPECT_EQ(shownNames(table), "") << "it is the shown folder now";
}

// What is typed and taken back, with rows that come, change and go in between, shows the same as
// the last words alone.
TEST(FileTable, FilteringStepByStepIsFilteringAnew) {
    constexpr const char* keys[] = {"a", "l", "p", " ", "b", "e", "1", "ж", "ук", "A", "\xFF"};
    RandomRows random;
    const ListRows list = random.make(300);
    FileTable table;
    std::size_t appended = 0;
    std::string words;
    for (std::size_t step = 0; step < 200; ++step) {
        if (random.below(3) == 0) {
            words.resize(words.size() / 2);
            while (!words.empty() && (words.back() & 0xC0) == 0xC0) words.pop_back();
        } else {
            words += keys[random.below(std::size(keys))];
        }
        table.filter(words);
        if (step % 20 == 0) {
            table.append(std::span(list.rows).subspan(appended, 30), list.store);
            appended += 30;
        }
        if (step % 7 == 0) table.remove(std::vector<RowId>{static_cast<RowId>(step)});
        std::vector<RowId> expected;
        FileTable anew;
        anew.append(std::span(list.rows).first(appended), list.store);
        for (RowId id = 0; id <= step; id += 7) anew.remove(std::vector<RowId>{id});
        anew.filter(words);
        ASSERT_TRUE(std::ranges::equal(table.shown(), anew.shown())) << words;
    }
}

TEST(TextStore, WhatItGaveStays) {
    TextStore store;
    std::vector<std::string> texts;
    std::vector<std::string_view> kept;
    for (std::size_t i = 0; i < 3000; ++i) {
        // Some fill a block's end, some are too long for one.
        texts.emplace_back(i % 100 == 0 ? 20000 + i : i % 97, static_cast<char>('a' + i % 26));
        kept.push_back(i % 3 == 0 ? store.shared(texts.back()) : store.add(texts.back()));
    }
    const TextStore moved = std::move(store);
    for (std::size_t i = 0; i < texts.size(); ++i) ASSERT_EQ(kept[i], texts[i]);
}

TEST(TextStore, SharedTextsLieOnce) {
    TextStore store;
    std::string name = "Album";
    const std::string_view first = store.shared(name), other = store.add(name);
    EXPECT_EQ(store.shared(std::string("Album")).data(), first.data());
    EXPECT_NE(other.data(), first.data());
    name[0] = 'a';
    EXPECT_EQ(first, "Album");
    EXPECT_EQ(store.shared(name), "album");
}

}  // namespace
}  // namespace tavlo::test
