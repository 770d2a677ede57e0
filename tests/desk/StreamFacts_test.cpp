#include "desk/StreamFacts.h"

#include <gtest/gtest.h>

#include <map>

#include "platform/FileTicks.h"
#include "support/ReadBytes.h"

namespace tavlo::test {
namespace {

std::map<Text, std::string> factsOf(const ID3tag& record) {
    std::map<Text, std::string> facts;
    for (const FactRow& row : streamFacts(record, Texts())) facts[row.caption] = row.value;
    return facts;
}

TEST(StreamFacts, TellWhatIsKnown) {
    ID3tag record =
        readBytes(XingFrame{"Xing", 0x0F, 20, 4000000, "LAME3.100"}.frame() + cdFrames(20));
    record.Frames = 9000;
    record.Seconds = 235;
    record.StreamFound = false;
    record.Length = 5554112;
    auto facts = factsOf(record);
    EXPECT_EQ(facts[Text::ColumnLength], "3:55");
    EXPECT_EQ(facts[Text::ColumnSampleRate], "44100 Hz");
    EXPECT_EQ(facts[Text::ColumnChannels], "joint stereo");
    EXPECT_EQ(facts[Text::FactMpeg], "MPEG-1, layer III");
    EXPECT_EQ(facts[Text::FactFrames], "9\u00A0000");
    EXPECT_EQ(facts[Text::ColumnSize], "5423 KB (5\u00A0554\u00A0112 bytes)");
    EXPECT_NE(facts[Text::ColumnBitrate].find("(variable)"), std::string::npos);
    EXPECT_FALSE(facts.contains(Text::FactBits));
    EXPECT_TRUE(facts.contains(Text::FactSound)) << "the file has less than its header says";
    record.StreamFound = true;
    record.Seconds = 3725;
    record.TimeIsGuessed = true;
    facts = factsOf(record);
    EXPECT_FALSE(facts.contains(Text::FactSound));
    EXPECT_EQ(facts[Text::ColumnLength], "about 1:02:05");
}

TEST(StreamFacts, FileWithoutSoundSaysSo) {
    auto facts = factsOf(readBytes("no sound"));
    EXPECT_EQ(facts[Text::FactSound], "not found or not whole");
    for (const Text absent : {Text::ColumnLength, Text::ColumnBitrate, Text::ColumnSampleRate,
                              Text::ColumnChannels, Text::FactMpeg, Text::FactFrames}) {
        EXPECT_FALSE(facts.contains(absent)) << static_cast<int>(absent);
    }
}

TEST(StreamFacts, TimesHaveTheirParts) {
    EXPECT_EQ(timeText(2024, {5, 3, 14, 5, 9}), "2024-05-03 14:05:09");
    EXPECT_EQ(localTimeText(0).size(), std::string("1970-01-01 00:00:00").size());
}

}  // namespace
}  // namespace tavlo::test
