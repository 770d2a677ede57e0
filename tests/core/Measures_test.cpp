#include "core/Measures.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavlo {
namespace {

TEST(Measures, SizesHaveTwoDigitsAtLeast) {
    const struct {
        std::uint64_t bytes;
        Text unit;
        const char* number;
    } cases[] = {
        {0, Text::SizeBytes, "0"},
        {10239, Text::SizeBytes, "10239"},
        {10240, Text::SizeKilobytes, "10"},
        {10 * 1024 * 1024 - 1, Text::SizeKilobytes, "10239"},
        {10 * 1024 * 1024, Text::SizeMegabytes, "10"},
        {10ULL << 30U, Text::SizeGigabytes, "10"},
        {50ULL << 40U, Text::SizeGigabytes, "51200"},
        {std::numeric_limits<std::uint64_t>::max(), Text::SizeGigabytes, "17179869183"},
    };
    for (const Language language : {Language::English, Language::Russian}) {
        const Texts texts(language);
        for (const auto& c : cases) {
            EXPECT_EQ(sizeText(texts, c.bytes), texts.get(c.unit, c.number)) << c.bytes;
        }
    }
}

TEST(Measures, DurationsHaveHours) {
    const std::pair<std::uint64_t, const char*> cases[] = {{0, "0:00:00"},
                                                           {59, "0:00:59"},
                                                           {3600, "1:00:00"},
                                                           {45296, "12:34:56"},
                                                           {360000 + 61, "100:01:01"}};
    for (const auto& [seconds, text] : cases) EXPECT_EQ(durationText(seconds), text);
}

}  // namespace
}  // namespace tavlo
