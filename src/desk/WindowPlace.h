#pragma once

#include <optional>
#include <span>

namespace tavlo {

/// Where a window stands, in pixels of the whole desktop; a screen's work area likewise.
struct WindowPlace {
    int left = 0, top = 0, width = 0, height = 0;
    bool operator==(const WindowPlace&) const = default;
};

/// The wanted place as it is while the window's title can be taken hold of there, else moved into
/// the nearest work area; never larger than all areas together, or than the one it is moved into.
/// Nothing, so that the system chooses, where left or top is `noPlace` or there is no work area.
std::optional<WindowPlace> visiblePlace(const WindowPlace& wanted,
                                        std::span<const WindowPlace> workAreas);

}  // namespace tavlo
