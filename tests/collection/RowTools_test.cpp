#include "collection/RowTools.h"

#include <gtest/gtest.h>

#include <functional>

namespace tavlo {
namespace {

TEST(RowTools, OneColumnOfAllRowsChanges) {
    using Change = std::function<void(std::span<ID3tag>, const TagColumn&)>;
    const Change words = [](auto... in) { changeCase(in..., LetterCase::EveryWord); };
    const Change first = [](auto... in) { changeCase(in..., LetterCase::FirstOnly); };
    const Change back = [](auto... in) { transliterate(in..., Transliteration::Gost, true); };
    const auto swap = [](auto... texts) {
        return [=](auto... in) { replaceText(in..., texts...); };
    };
    // clang-format off
    const std::tuple<std::string_view, Change, std::string_view> rows[] = {
        {"don't STOP (the) mix", words, "Don't Stop (The) Mix"}, {"ЁЖ в \xFF", words, "Ёж В \xFF"},
        {"a-ha/élan_b+c 2nd", words, "A-Ha/Élan_B+C 2nd"}, {"ёЖИК (В) я", first, "Ёжик (в) я"},
        {"Shhi", back, "Щи"}, {"a_b__c", swap("_", " "), "a b  c"},
        {"aaaAa", swap("aa", "ba"), "baaAa"}, {"abc", swap("", "x"), "abc"}};
    // clang-format on
    for (const auto& [title, change, wanted] : rows) {
        std::array<ID3tag, 2> all;
        all[1].SetBasicFields({"aR", {}, {}, title, {}, {}, {}, {}, {}, {}});
        change(all, tagColumns()[1]);
        EXPECT_EQ(all[0].GetTitleMix() + all[1].GetArtistTitleMix(), "aR - " + std::string(wanted));
    }
}

TEST(RowTools, RowsGetNumbers) {
    std::array<ID3tag, 2> all;
    numberRows(all, 9);
    EXPECT_EQ(all[0].GetNumber() + all[1].GetNumber(), "0910");
    constexpr std::pair<std::string_view, std::string_view> rows[] = {
        {"Track07.mp3", "07"},   {"cd AUDIOTRACK12.x.wav", "12"}, {"Track7 Track08.mp3", "08"},
        {"07 - Song.mp3", "07"}, {"07.Song.mp3", "07"},           {"007_Song.mp3", "07"},
        {"123-Song.mp3", "123"}, {"12 Track03.mp3", "03"},        {"Track7.mp3", ""},
        {"7 Song.mp3", ""},      {"0007 Song.mp3", ""},           {"07 Song", ""}};
    for (const auto& [name, number] : rows) EXPECT_EQ(numberFromFileName(name), number) << name;
}

}  // namespace
}  // namespace tavlo
