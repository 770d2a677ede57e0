#include "platform/FileTicks.h"

#include <string_view>

namespace tavlo {

std::string timeText(int year, const std::array<int, 5>& parts) {
    constexpr std::string_view marks = "-- ::";
    std::string text = std::to_string(year);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += marks[i];
        text += static_cast<char>('0' + parts[i] / 10);
        text += static_cast<char>('0' + parts[i] % 10);
    }
    return text;
}

}  // namespace tavlo
