#include "platform/CdDrive.h"

#include <gtest/gtest.h>

namespace tavlo::test {
namespace {

// As drives give it, 14 bytes: key, additional length 6, code and its qualifier.
TEST(CdDrive, SenseTellsWhatIsAmiss) {
    struct Case {
        std::uint8_t key, code, qualifier;
        CdAnswer answer;
    };
    constexpr Case cases[] = {
        {2, 0x3A, 0, CdAnswer::NoDisc},    {2, 0x3A, 2, CdAnswer::NoDisc},     // tray open
        {2, 0x04, 1, CdAnswer::Failed},                                        // becoming ready
        {6, 0x28, 0, CdAnswer::Attention}, {6, 0x29, 0, CdAnswer::Attention},  // new disc; reset
        {6, 0x3A, 0, CdAnswer::Attention}, {5, 0x24, 0, CdAnswer::Failed},
        {3, 0x3A, 0, CdAnswer::Failed},    {0, 0, 0, CdAnswer::Failed}};
    for (const Case& one : cases) {
        // Marks of other kinds share the byte of the key.
        for (const unsigned marks : {0x00U, 0x20U, 0xE0U}) {
            const auto key = static_cast<std::uint8_t>(one.key | marks);
            const std::uint8_t sense[14] = {0x70, 0, key, 0, 0, 0,        6,
                                            0,    0, 0,   0, 0, one.code, one.qualifier};
            EXPECT_EQ(answerOfSense(sense), one.answer) << int{one.key} << " " << int{one.code};
        }
    }
}

}  // namespace
}  // namespace tavlo::test
