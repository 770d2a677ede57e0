#include "desk/WindowPlace.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/SettingsTable.h"

namespace tavlo::test {
namespace {

constexpr int most = std::numeric_limits<int>::max();
const std::vector<WindowPlace> two{{0, 0, 1920, 1040}, {1920, 200, 1024, 768}};

struct Case {
    const char* name;
    WindowPlace wanted, expected;
};

const Case cases[] = {
    {"inside", {10, 20, 800, 600}, {10, 20, 800, 600}},
    {"across both screens", {1700, 300, 800, 600}, {1700, 300, 800, 600}},
    {"half out, its title in reach", {-400, 900, 800, 600}, {-400, 900, 800, 600}},
    {"only a corner left", {-790, 20, 800, 600}, {0, 20, 800, 600}},
    {"title above the screen", {100, -10, 800, 600}, {100, 0, 800, 600}},
    {"title under the task bar", {100, 1030, 800, 600}, {100, 440, 800, 600}},
    {"on a screen that is gone", {-1800, 100, 800, 600}, {0, 100, 800, 600}},
    {"nearer to the second screen", {4000, 100, 800, 600}, {2144, 200, 800, 600}},
    {"in the corner that no screen has", {2200, 50, 800, 100}, {2144, 200, 800, 100}},
    {"too large for where it comes", {5000, 0, 3000, 2000}, {1920, 200, 1024, 768}},
    {"larger than everything", {30, 40, 9000, 9000}, {0, 0, 1920, 1040}},
    {"absurd numbers", {most, most, most, most}, {1920, 200, 1024, 768}},
};

TEST(WindowPlace, TitleIsAlwaysInReach) {
    for (const Case& c : cases) {
        const auto place = visiblePlace(c.wanted, two);
        ASSERT_TRUE(place) << c.name;
        EXPECT_EQ(*place, c.expected) << c.name << ": " << place->left << ' ' << place->top << ' '
                                      << place->width << ' ' << place->height;
    }
}

TEST(WindowPlace, SystemChoosesWhereNothingIsKnown) {
    EXPECT_FALSE(visiblePlace({noPlace, 10, 800, 600}, two));
    EXPECT_FALSE(visiblePlace({10, noPlace, 800, 600}, two));
    EXPECT_FALSE(visiblePlace({10, 10, 800, 600}, {}));
}

}  // namespace
}  // namespace tavlo::test
