#include "desk/ColumnLayout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/TestRegistry.h"

namespace tavlo::test {
namespace {

using Columns = std::vector<ListColumn>;

const Columns shownAtFirst = ColumnLayout().shown();

bool areEqual(const ColumnLayout& a, const ColumnLayout& b) {
    return a.order() == b.order() && a.shown() == b.shown() && a.sortColumn == b.sortColumn &&
           a.descending == b.descending && std::ranges::all_of(a.order(), [&](ListColumn column) {
               return a.width(column) == b.width(column);
           });
}

class StoredLayout : public testing::Test {
 protected:
    ColumnLayout loaded(Setting setting, const std::string& text) {
        Settings settings(store);
        settings.set(setting, text);
        ColumnLayout layout;
        layout.load(settings);
        return layout;
    }

    TestRegistry test;
    RegistryEx store{test.registry()};
};

// A list of so many numbers.
std::string numbers(std::size_t count, const std::string& each) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += (text.empty() ? "" : ",") + each;
    return text;
}

TEST_F(StoredLayout, WhatCannotBeReadLeavesTheDefaults) {
    constexpr std::size_t all = listColumnCount;
    const struct {
        Setting setting;
        std::string text;
    } cases[] = {
        {Setting::MainColW, ""},
        {Setting::MainColW, "100"},
        {Setting::MainColW, numbers(all - 1, "77")},
        {Setting::MainColW, numbers(all + 1, "77")},
        {Setting::MainColW, numbers(all, "77") + ","},
        {Setting::MainColW, numbers(all - 1, "77") + ","},
        {Setting::MainColW, numbers(all - 1, "77") + ",x"},
        {Setting::MainColW, numbers(all - 1, "77") + ",99999999999"},
        {Setting::MainColP, numbers(all, "0")},
        {Setting::MainColP, "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17"},
        {Setting::MainColP, "-1,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16"},
        {Setting::MainColP, "1,0,2,3,4,5,6,7,8,9,10,11,12,13,14,15"},
        {Setting::MainColV, numbers(all, "0")},
        {Setting::MainColV, numbers(all - 1, "1")},
        {Setting::MainSort, ""},
        {Setting::MainSort, "0"},
        {Setting::MainSort, "18"},
        {Setting::MainSort, "--3"},
        {Setting::MainSort, "Artist"},
    };
    for (const auto& c : cases) {
        ColumnLayout layout = loaded(c.setting, c.text);
        layout.descending = false;
        EXPECT_TRUE(areEqual(layout, ColumnLayout())) << c.text;
    }
}

TEST_F(StoredLayout, SavedLayoutComesBack) {
    ColumnLayout layout;
    layout.move(ListColumn::FileName, true);
    layout.move(ListColumn::Genre, false);
    layout.show(ListColumn::Artist, false);
    layout.show(ListColumn::Size, true);
    layout.setWidth(ListColumn::Title, 321);
    layout.setWidth(ListColumn::Year, 0);
    layout.setWidth(ListColumn::Album, 1'000'000);
    layout.sortColumn = ListColumn::Folder;
    for (const bool descending : {true, false}) {
        layout.descending = descending;
        Settings settings(store);
        ASSERT_TRUE(layout.save(settings));
        Settings later(store);
        later.load();
        ColumnLayout back;
        back.load(later);
        EXPECT_TRUE(areEqual(back, layout));
        EXPECT_EQ(back.width(ListColumn::Title), 321);
        EXPECT_GT(back.width(ListColumn::Year), 0) << "a column of no width cannot be found again";
    }
    layout.sortColumn.reset();
    Settings settings(store);
    ASSERT_TRUE(layout.save(settings));
    layout.sortColumn = ListColumn::Artist;
    layout.load(settings);
    EXPECT_FALSE(layout.sortColumn);
}

TEST(ColumnLayout, OneColumnStays) {
    ColumnLayout layout;
    for (const ListColumnRow& row : listColumns) layout.show(row.column, false);
    ASSERT_EQ(layout.shown().size(), 1U);
    const ListColumn last = layout.shown().front();
    layout.show(ListColumn::Tags, true);
    layout.show(last, false);
    EXPECT_EQ(layout.shown(), Columns{ListColumn::Tags});
}

TEST(ColumnLayout, ColumnsMoveAmongTheShownOnes) {
    ColumnLayout layout;
    layout.move(ListColumn::FileName, false);
    layout.move(ListColumn::Time, false);
    layout.move(ListColumn::Mix, true);
    Columns expected = shownAtFirst;
    const auto time = std::ranges::find(expected, ListColumn::Time);
    std::iter_swap(time, time - 1);
    EXPECT_EQ(layout.shown(), expected) << "neither at an end nor when it is hidden";
    layout.move(expected.back(), true);
    EXPECT_EQ(layout.shown(), expected);

    // Each way round through the whole list, past what is hidden.
    for (std::size_t i = 0; i < listColumnCount; ++i) layout.move(ListColumn::FileName, true);
    EXPECT_EQ(layout.shown().back(), ListColumn::FileName);
    Columns all(layout.order().begin(), layout.order().end());
    std::ranges::sort(all);
    for (std::size_t i = 0; i < all.size(); ++i) EXPECT_EQ(static_cast<std::size_t>(all[i]), i);
}

TEST(ColumnLayout, ArrangedColumnsLeaveTheHiddenOnesWhereTheyAre) {
    ColumnLayout layout;
    Columns wanted(shownAtFirst.rbegin(), shownAtFirst.rend());
    layout.arrange(wanted);
    EXPECT_EQ(layout.shown(), wanted);
    for (const ListColumnRow& row : listColumns) {
        if (row.isShown) continue;
        EXPECT_EQ(layout.order()[static_cast<std::size_t>(row.column)], row.column);
    }
    layout.show(ListColumn::Mix, true);
    EXPECT_EQ(layout.shown().size(), wanted.size() + 1);
}

}  // namespace
}  // namespace tavlo::test
