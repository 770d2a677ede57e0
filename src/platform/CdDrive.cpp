#include "platform/CdDrive.h"

namespace tavlo {

namespace {
constexpr unsigned notReady = 2, unitAttention = 6;  // keys
constexpr unsigned noMedium = 0x3A;
}  // namespace

// A drive that is still becoming ready (02/04/01) has a disc, but cannot read it yet: that is a
// failure like others, and another way to the drive may have the time to wait.
CdAnswer answerOfSense(std::span<const std::uint8_t> sense) {
    const unsigned key = sense[2] & 0x0FU;
    if (key == unitAttention) return CdAnswer::Attention;
    return key == notReady && sense[12] == noMedium ? CdAnswer::NoDisc : CdAnswer::Failed;
}

}  // namespace tavlo
