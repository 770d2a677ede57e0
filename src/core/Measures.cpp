#include "core/Measures.h"

#include <array>

#include "core/Numbers.h"

namespace tavlo {

std::string sizeText(const Texts& texts, std::uint64_t bytes) {
    constexpr std::array units{Text::SizeBytes, Text::SizeKilobytes, Text::SizeMegabytes,
                               Text::SizeGigabytes};
    constexpr std::uint64_t tenUnits = 10240;
    std::size_t unit = 0;
    for (; bytes >= tenUnits && unit + 1 < units.size(); ++unit) bytes /= 1024;
    return texts.get(units[unit], std::to_string(bytes));
}

std::string durationText(std::uint64_t seconds) {
    const auto part = static_cast<std::int64_t>(seconds);
    return std::to_string(part / 3600) + ":" + paddedNumber(part / 60 % 60, 2) + ":" +
           paddedNumber(part % 60, 2);
}

}  // namespace tavlo
