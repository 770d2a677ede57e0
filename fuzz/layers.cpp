#include "desk/PictureHead.h"
#include "desk/TagLayers.h"
#include "desk/TagParts.h"
#include "fuzz/Promise.h"
#include "platform/Utf8.h"

using namespace tavlo;

namespace {
// However many compressed frames a file has, no more than this is unpacked of one tag.
constexpr std::size_t mostUnpacked = 48U << 20U;
}  // namespace

// The input is a file: its tags side by side, every part of them, and its bytes as a picture.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CodePage ansi(1251);
    const Bytes bytes(data, size);
    File file;
    file.openMemory(bytes);
    const std::vector<TagLayer> layers = readLayers(file, FileType::Mp3, ansi);
    for (const LayerRow& row : layerRows(layers, ansi)) {
        promise(row.values.size() == layers.size());
        for (const std::string& value : row.values) promise(isValidUtf8(value));
    }
    const TagParts parts = readParts(file, layers, ansi);
    std::size_t pictureBytes = 0, textBytes = 0;
    for (const TagPart& part : parts.parts) {
        promise(isValidUtf8(part.text));
        textBytes += part.text.size();
    }
    for (const TagPicture& picture : parts.pictures) {
        promise(isValidUtf8(describePicture(picture.art)));
        pictureBytes += picture.art.Data.size();
    }
    // What is not compressed is at most as large as the file: an unsynchronised tag may be read
    // twice, as a whole and frame by frame; a byte of text may become four.
    promise(pictureBytes <= 2 * size + mostUnpacked);
    promise(textBytes <= 8 * size + 4096 + mostUnpacked);
    if (const auto head = readPictureHead(bytes)) promise(!head->ending.empty());
    return 0;
}
