#include <gtest/gtest.h>

#include "platform/SystemPictures.h"

namespace tavlo::test {
namespace {

TEST(SystemPictures, PngHoldsEveryPixel) {
    const PixelImage opaque{2, 1, {1, 2, 3, 250, 251, 252}, {}};
    const PixelImage clear{1, 2, {1, 2, 3, 250, 251, 252}, {0xFF, 0x80}};
    for (const PixelImage& image : {opaque, clear}) {
        const std::string png = encodePng(image);
        const auto found = decodePicture(bytesOfText(png));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->width, image.width);
        EXPECT_EQ(found->height, image.height);
        EXPECT_EQ(found->rgb, image.rgb);
        EXPECT_EQ(found->alpha, image.alpha);
    }
}

TEST(SystemPictures, BrokenOnesGiveNothing) {
    const std::string png = encodePng({2, 1, {1, 2, 3, 250, 251, 252}, {}});
    EXPECT_FALSE(decodePicture({}));
    EXPECT_FALSE(decodePicture(bytesOfText("no picture at all")));
    EXPECT_FALSE(decodePicture(bytesOfText(std::string_view(png).substr(0, png.size() / 4))));
    EXPECT_TRUE(encodePng({2, 2, {1, 2, 3}, {}}).empty()) << "fewer pixels than it says";
    EXPECT_TRUE(encodePng({0, 0, {}, {}}).empty());
}

}  // namespace
}  // namespace tavlo::test
