#include <ctime>

#include "platform/FileTicks.h"

namespace tavlo {

std::string localTimeText(std::int64_t ticks) {
    constexpr std::int64_t second = 1'000'000'000;
    const auto seconds = static_cast<std::time_t>(ticks / second);
    std::tm local{};
    if (::localtime_r(&seconds, &local) == nullptr) return {};
    return timeText(local.tm_year + 1900,
                    {local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec});
}

}  // namespace tavlo
