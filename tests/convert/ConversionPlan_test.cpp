#include "convert/ConversionPlan.h"

#include <gtest/gtest.h>

#include "support/SoundBytes.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(ConversionPlan, OnlyWhatWouldShrinkIsReEncoded) {
    EncoderSettings settings;
    settings.lame[0].code = "--preset radio";
    struct Row {
        FileTypes type;
        int bitrate;
        ConversionTarget target;
        bool stays;
    };
    const Row rows[] = {
        {FileType::Mp3, 192, {FileType::Mp3, 192}, true},
        {FileType::Mp3, 192, {FileType::Mp3, 200}, true},
        {FileType::Mp3, 192, {FileType::Mp3, 191}, false},
        {FileType::Mp3, 190, {FileType::Mp3, 160}, true},  // counts as 160
        {FileType::Mp3, 190, {FileType::Mp3, 159}, false},
        {FileType::Mp3, 0, {FileType::Mp3, 320}, false},          // not known
        {FileType::Mp3, 128, {FileType::Mp3, LameUser1}, false},  // aims at nothing known
        {FileType::Mp3, 128, {FileType::Ogg, 10}, false},
        {FileType::Flac, 900, {FileType::Flac, -1}, true},
        {FileType::Mp4, 128, {FileType::Mp4, Alac}, true},
        {FileType::Mp4, 900, {FileType::Mp4, 5}, false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(wouldNotShrink(row.type, row.bitrate, row.target, settings), row.stays)
            << row.type << " " << row.bitrate << " " << row.target.mode;
    }
    for (const auto& [bitrate, tooLittle] : {std::pair(75, false), {76, true}, {100, true}}) {
        EXPECT_EQ(savesTooLittle(100, bitrate), tooLittle) << bitrate;
    }
    EXPECT_FALSE(savesTooLittle(2'000'000'000, 1'500'000'000));
}

TEST(ConversionPlan, PlayingTimesAgreeWithinASecondOrAHundredth) {
    const std::tuple<int, int, bool> rows[] = {
        {0, 1, true},      {0, 2, false},     {100, 101, true},   {100, 102, false},
        {1000, 990, true}, {990, 1000, true}, {1000, 989, false}, {INT32_MAX, 0, false}};
    for (const auto& [a, b, same] : rows) EXPECT_EQ(sameTime(a, b), same) << a << " " << b;
}

struct Planned {
    std::string source, folder, target;
    ConversionStep step;
};

// Names with "/" between levels; "" as a folder is the source's own.
class NamePlan : public testing::Test {
 protected:
    void expect(const std::vector<Planned>& wanted) {
        std::vector<Conversion> rows;
        for (const Planned& one : wanted) {
            Conversion row;
            row.source = folder_.path(one.source);
            if (!one.folder.empty()) row.folder = folder_.path(one.folder);
            rows.push_back(row);
        }
        rows = planConversions(rows, settings_, CodePage(1252));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::string& target = wanted[i].target;
            EXPECT_EQ(rows[i].target, target.empty() ? target : folder_.path(target))
                << wanted[i].source;
            EXPECT_EQ(rows[i].step, wanted[i].step) << wanted[i].source;
        }
    }

    TempFolder folder_;
    ConversionSettings settings_;
};

TEST_F(NamePlan, NoResultTakesAnothersName) {
    using enum ConversionStep;
    settings_.target = {FileType::Mp3, 64};
    for (const std::string name : {"one.wav", "a/one.wav", "b/one.wav", "c/one.wav", "two.wav",
                                   "three.wav", "four.wav", "five.wav"}) {
        folder_.write(name, waveBytes(3));
    }
    folder_.write("one.mp3", mp3Bytes(9));      // a source of the same run
    folder_.write("out/two.mp3", mp3Bytes(3));  // an earlier result
    folder_.write("out/one (1).mp3", mp3Bytes(3));
    folder_.write("out/three.mp3", mp3Bytes(9));                     // somebody else's
    folder_.write("out/five.mp3", vbrBytes(3, 64).substr(0, 5000));  // half an earlier one
    folder_.makeFolder("out/four.mp3");
    expect({{"one.wav", "", "one (1).mp3", Encode},
            {"one.mp3", "", "one.mp3", ReEncode},
            {"a/one.wav", "out", "out/one.mp3", Encode},
            {"b/one.wav", "out", "out/one (1).mp3", Done},
            {"c/one.wav", "out", "out/one (2).mp3", Encode},
            {"two.wav", "out", "out/two.mp3", Done},
            {"three.wav", "out", "out/three (1).mp3", Encode},
            {"four.wav", "out", "out/four (1).mp3", Encode},
            {"five.wav", "out", "out/five (1).mp3", Encode}});
}

TEST_F(NamePlan, OnlyAFileThatLosesNothingGivesWay) {
    using enum ConversionStep;
    settings_.target = {FileType::Mp3, 64};
    folder_.write("UP.MP3", mp3Bytes(3));
    expect({{"UP.MP3", "", "UP.MP3", ReEncode}});
    settings_.target = {FileType::Ogg, 0};
    folder_.write("a.ogg", "whose tags cannot be read");
    expect({{"a.ogg", "", "a (1).ogg", ReEncode}, {"none.ogg", "", "", Fail}});
}

TEST_F(NamePlan, WhatStaysKeepsItsName) {
    using enum ConversionStep;
    settings_.target = {FileType::Mp3, 320};
    folder_.write("One.MP3", mp3Bytes(3));
    expect({{"One.MP3", "", "One.MP3", Skip}, {"One.MP3", "out", "out/One.MP3", Copy}});
    settings_.bitrateRise = true;
    expect({{"One.MP3", "out", "out/One.mp3", ReEncode}});
    settings_.target = {FileType::Wave, 0};
    folder_.write("out/One.wav", waveBytes(60));
    expect({{"One.MP3", "out", "out/One (1).wav", Decode}});
}

}  // namespace
}  // namespace tavlo::test
