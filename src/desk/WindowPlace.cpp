#include "desk/WindowPlace.h"

#include <algorithm>
#include <cstdint>

#include "core/SettingsTable.h"

namespace tavlo {

namespace {
// Stored numbers may be anything, so that sums are made in 64 bits.
struct Box {
    std::int64_t left, top, right, bottom;
};

Box boxOf(const WindowPlace& place) {
    return {place.left, place.top, std::int64_t{place.left} + place.width,
            std::int64_t{place.top} + place.height};
}

WindowPlace placeOf(const Box& box) {
    return {static_cast<int>(box.left), static_cast<int>(box.top),
            static_cast<int>(box.right - box.left), static_cast<int>(box.bottom - box.top)};
}

// What can be taken hold of: the strip with the title, and enough of it.
bool showsTitle(const Box& window, const Box& area) {
    constexpr std::int64_t titleHeight = 24;
    constexpr std::int64_t leastWidth = 80;
    const std::int64_t seen = std::min(window.right, area.right) - std::max(window.left, area.left);
    const std::int64_t wanted = std::min(leastWidth, window.right - window.left);
    return seen >= wanted && window.top >= area.top && window.top + titleHeight <= area.bottom;
}

std::int64_t gap(std::int64_t from, std::int64_t to, std::int64_t areaFrom, std::int64_t areaTo) {
    return std::max<std::int64_t>({0, areaFrom - to, from - areaTo});
}

std::int64_t distance(const Box& window, const Box& area) {
    return gap(window.left, window.right, area.left, area.right) +
           gap(window.top, window.bottom, area.top, area.bottom);
}

Box movedInto(const Box& window, const Box& area) {
    const std::int64_t width = std::min(window.right - window.left, area.right - area.left);
    const std::int64_t height = std::min(window.bottom - window.top, area.bottom - area.top);
    const std::int64_t left = std::clamp(window.left, area.left, area.right - width);
    const std::int64_t top = std::clamp(window.top, area.top, area.bottom - height);
    return {left, top, left + width, top + height};
}

Box around(std::span<const WindowPlace> workAreas) {
    Box all = boxOf(workAreas.front());
    for (const WindowPlace& area : workAreas) {
        const Box box = boxOf(area);
        all = {std::min(all.left, box.left), std::min(all.top, box.top),
               std::max(all.right, box.right), std::max(all.bottom, box.bottom)};
    }
    return all;
}
}  // namespace

std::optional<WindowPlace> visiblePlace(const WindowPlace& wanted,
                                        std::span<const WindowPlace> workAreas) {
    if (workAreas.empty() || wanted.left == noPlace || wanted.top == noPlace) return std::nullopt;
    WindowPlace sized = wanted;
    sized.width = std::max(sized.width, 1);
    sized.height = std::max(sized.height, 1);
    const Box window = boxOf(sized);
    const bool isHeld =
        std::any_of(workAreas.begin(), workAreas.end(),
                    [&](const WindowPlace& area) { return showsTitle(window, boxOf(area)); });
    const Box all = around(workAreas);
    // What is larger than all screens comes from larger ones: it would hang off for good.
    const bool isSmaller = window.right - window.left <= all.right - all.left &&
                           window.bottom - window.top <= all.bottom - all.top;
    if (isHeld && isSmaller) return placeOf(window);
    const auto nearest = std::min_element(
        workAreas.begin(), workAreas.end(), [&](const WindowPlace& a, const WindowPlace& b) {
            return distance(window, boxOf(a)) < distance(window, boxOf(b));
        });
    return placeOf(movedInto(window, boxOf(*nearest)));
}

}  // namespace tavlo
