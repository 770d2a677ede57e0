#include "desk/FileDetails.h"

#include <algorithm>

#include "core/PathText.h"
#include "desk/PictureHead.h"
#include "tags/AudioFile.h"

namespace tavlo {

FileDetails readFileInfo(const std::string& path, const CodePage& ansi) {
    FileDetails info;
    info.path = path;
    info.record = ReadAudioFile(path, {ansi, ReadDepth::List});
    File file;
    if (!file.open(path, Access::Read)) return info;
    info.layers = readLayers(file, info.record.FileType, ansi);
    if (!info.layers.empty()) info.rows = layerRows(info.layers, ansi);
    info.parts = readParts(file, info.layers, ansi);
    return info;
}

std::size_t conflictCount(const FileDetails& info) {
    return static_cast<std::size_t>(std::count_if(
        info.rows.begin(), info.rows.end(), [](const LayerRow& row) { return row.conflicts; }));
}

std::optional<std::string> whyNotWritten(const FileDetails& info, const TagSettings& settings,
                                         const Texts& texts) {
    const std::string name(fileNameOf(info.path, nativePathStyle()));
    if (!info.record.OK) return texts.get(Text::FileNotRead, name);
    const Refusal refusal = expectedRefusal(info.record, settings);
    // Others concern a part of the file's tags, or are known only when it is tried.
    const bool isFinal = refusal == Refusal::NoWriter || refusal == Refusal::Damaged ||
                         refusal == Refusal::UnknownVersion;
    return isFinal ? refusalLine(refusal, info.record, name, texts) : std::nullopt;
}

std::string pictureFileName(const std::string& path, const cAlbumArt& art) {
    const auto head = readPictureHead(art.Data);
    const std::string name(baseNameOf(path, nativePathStyle()));
    return name + "." + std::string(head ? head->ending : "bin");
}

}  // namespace tavlo
