#include "desk/PictureHead.h"

#include <gtest/gtest.h>

#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

std::string segment(char marker, const std::string& body) {
    return "\xFF"s + marker + bigEndian(body.size() + 2, 2) + body;
}

const std::string jpegFrame = "\x08"s + bigEndian(300, 2) + bigEndian(4000, 2) + "\x03"s;
// A table, a comment that holds a frame's marker, and fill bytes in front of the frame.
const std::string jpeg = "\xFF\xD8"s + segment('\xC4', "table") +
                         segment('\xFE', "\xFF\xC0\x00\x11"s) + "\xFF\xFF"s +
                         segment('\xC2', jpegFrame);
const std::string png =
    "\x89PNG\r\n\x1A\n"s + bigEndian(13, 4) + "IHDR" + bigEndian(4000, 4) + bigEndian(300, 4);
const std::string bmp = "BM" + std::string(12, '\0') + littleEndian(40, 4);

TEST(PictureHead, TellsFormatAndSize) {
    struct Case {
        std::string_view name, ending;
        std::string bytes;
    };
    const Case cases[] = {
        {"JPEG", "jpg", jpeg},
        {"PNG", "png", png},
        {"GIF", "gif", "GIF89a" + littleEndian(4000, 2) + littleEndian(300, 2)},
        {"BMP", "bmp", bmp + littleEndian(4000, 4) + littleEndian(300, 4)},
        {"BMP", "bmp", bmp + littleEndian(4000, 4) + littleEndian(0xFFFFFFFF - 299, 4)},
        {"BMP", "bmp",
         "BM" + std::string(12, '\0') + littleEndian(12, 4) + littleEndian(4000, 2) +
             littleEndian(300, 2)},
    };
    for (const Case& c : cases) {
        const auto head = readPictureHead(bytesOf(c.bytes));
        ASSERT_TRUE(head) << c.name;
        EXPECT_EQ(head->name, c.name);
        EXPECT_EQ(head->ending, c.ending);
        EXPECT_EQ(head->width, 4000U) << c.name;
        EXPECT_EQ(head->height, 300U) << c.name;
    }
}

TEST(PictureHead, CutOnesTellNothing) {
    // Behind the frame's size a JPEG may end.
    for (const std::string& whole : {jpeg.substr(0, jpeg.size() - 1), png}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_FALSE(readPictureHead(bytesOf(whole.substr(0, size)))) << size;
        }
    }
    EXPECT_FALSE(readPictureHead(bytesOf("\xFF\xD8\xFF\xFE\x00\x01"s))) << "a segment below 2";
    EXPECT_FALSE(readPictureHead(bytesOf("RIFF....WEBP")));
}

}  // namespace
}  // namespace tavlo::test
