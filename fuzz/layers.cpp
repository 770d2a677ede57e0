#include "desk/PictureHead.h"
#include "desk/TagLayers.h"
#include "desk/TagParts.h"
#include "fuzz/Promise.h"
#include "platform/Utf8.h"

using namespace tavlo;

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
    std::size_t pictureBytes = 0;
    for (const TagPicture& picture : parts.pictures) {
        promise(isValidUtf8(describePicture(picture.art)));
        pictureBytes += picture.art.Data.size();
    }
    // An unsynchronised tag may be read twice: as a whole and frame by frame.
    promise(pictureBytes <= 2 * size);
    if (const auto head = readPictureHead(bytes)) promise(!head->ending.empty());
    return 0;
}
