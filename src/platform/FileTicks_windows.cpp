#include <windows.h>

#include "platform/FileTicks.h"

namespace tavlo {

std::string localTimeText(std::int64_t ticks) {
    const auto whole = static_cast<std::uint64_t>(ticks);
    const FILETIME file{static_cast<DWORD>(whole), static_cast<DWORD>(whole >> 32U)};
    SYSTEMTIME universal, local;
    if (!::FileTimeToSystemTime(&file, &universal) ||
        !::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local)) {
        return {};
    }
    return timeText(local.wYear,
                    {local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond});
}

}  // namespace tavlo
