#include "convert/ConversionPlan.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "collection/RenamePlan.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/Utf8.h"
#include "tags/AudioFile.h"
#include "tags/MpegStream.h"

namespace tavlo {

namespace {
std::string comparable(std::string_view path) {
    return nativePathStyle() == PathStyle::Windows ? lowerCase(path) : std::string(path);
}

class Planner {
 public:
    Planner(const ConversionSettings& settings, const CodePage& ansi)
        : settings_(settings), ansi_(ansi) {}

    void reserve(const std::vector<Conversion>& sources) {
        for (const Conversion& row : sources) sources_.insert(comparable(row.source));
    }

    void plan(Conversion& row) {
        const ID3tag record = ReadAudioFile(row.source, {ansi_, ReadDepth::List});
        row.type = GetFileType(row.source);
        row.isLossless = record.Lossless;
        row.bitrate = record.Bitrate;
        row.seconds = record.Seconds;
        row.isTimeGuessed = record.TimeIsGuessed;
        // The byte counts of MP3 files are too often wrong; their sound is counted when decoded.
        row.isCut = !record.StreamFound && record.Seconds > 0 && row.type != FileType::Mp3;
        row.size = record.Length;
        row.modified = record.Modified;
        if (row.folder.empty()) row.folder = folderOf(row.source, nativePathStyle());
        if (!record.OK) return;
        row.step = stepOf(row);
        settleName(row, !record.ReadOnly);
        const bool isKept = row.step == ConversionStep::Skip || row.isOwnSource;
        if (!isKept) given_.insert(comparable(row.target));
    }

 private:
    [[nodiscard]] ConversionStep stepOf(const Conversion& row) const {
        const bool decodes = settings_.target.format == FileType::Wave;
        if (row.type == FileType::Wave) {
            return decodes ? ConversionStep::Skip : ConversionStep::Encode;
        }
        if (decodes) return ConversionStep::Decode;
        const bool stays =
            !settings_.bitrateRise &&
            wouldNotShrink(row.type, row.bitrate, settings_.target, settings_.encoders);
        if (!stays) return ConversionStep::ReEncode;
        return samePath(unchangedTarget(row), row.source) ? ConversionStep::Skip
                                                          : ConversionStep::Copy;
    }

    // The source's name with the result's extension, cut where it would be too long.
    [[nodiscard]] std::string wantedPath(const Conversion& row) const {
        constexpr std::size_t longestName = 255;
        constexpr std::size_t roomForNumber = 6;
        if (row.step == ConversionStep::Copy) return unchangedTarget(row);
        const std::string_view extension = settings_.target.format == FileType::Wave
                                               ? ".wav"
                                               : outputExtension(settings_.target.format);
        const std::string_view base = baseNameOf(row.source, nativePathStyle());
        const std::string_view cut = utf8Head(base, longestName - extension.size() - roomForNumber);
        return joinPath(row.folder, std::string(cut).append(extension), nativePathStyle());
    }

    // Only a file that loses nothing but sound gives way to its own result.
    static bool mayGiveWay(const Conversion& row, bool isWritable) {
        return isWritable && (row.type & typesWithTags) != 0 &&
               row.step == ConversionStep::ReEncode && withoutLinks(row.source) == row.source;
    }

    void settleName(Conversion& row, bool isWritable) {
        if (row.step == ConversionStep::Skip) {
            row.target = row.source;
            return;
        }
        const std::string wanted = wantedPath(row);
        row.isOwnSource = samePath(wanted, row.source) && mayGiveWay(row, isWritable);
        if (row.isOwnSource) {
            row.target = row.source;
            return;
        }
        row.target = freePath(wanted, nativePathStyle(), [&](std::string_view path) {
            if (given_.contains(comparable(path)) || samePath(path, row.source)) return false;
            if (!isEarlierResult(row, std::string(path))) return isFree(path);
            row.step = ConversionStep::Done;
            return true;
        });
        if (row.target.empty()) row.step = ConversionStep::Fail;
    }

    [[nodiscard]] bool isFree(std::string_view path) const {
        return !sources_.contains(comparable(path)) && !isTaken(std::string(path));
    }

    // A file of the result's name with the source's sound.
    [[nodiscard]] bool isEarlierResult(Conversion& row, const std::string& path) const {
        if (!fileInfo(path)) return false;
        countTime(row);
        const ID3tag record = ReadAudioFile(path, {ansi_, ReadDepth::List});
        return record.OK && record.StreamFound && record.Seconds > 0 &&
               sameTime(record.Seconds, row.seconds);
    }

    const ConversionSettings& settings_;
    const CodePage& ansi_;
    std::set<std::string> sources_, given_;
};
}  // namespace

std::vector<Conversion> planConversions(std::vector<Conversion> sources,
                                        const ConversionSettings& settings, const CodePage& ansi) {
    Planner planner(settings, ansi);
    planner.reserve(sources);
    for (Conversion& row : sources) planner.plan(row);
    return sources;
}

void countTime(Conversion& row) {
    File file;
    if (!row.isTimeGuessed || !file.open(row.source, Access::Read)) return;
    row.seconds = countMpegSeconds(file).value_or(0);
    row.isTimeGuessed = false;
}

bool takeFreeName(Conversion& row) {
    row.target = freePath(row.target, nativePathStyle(),
                          [](std::string_view path) { return !isTaken(std::string(path)); });
    return !row.target.empty();
}

std::string unchangedTarget(const Conversion& row) {
    return joinPath(row.folder, fileNameOf(row.source, nativePathStyle()), nativePathStyle());
}

std::string correctionFile(const Conversion& row) {
    return row.type == FileType::Wv ? row.source + "c" : std::string();
}

bool wouldNotShrink(FileTypes type, int bitrate, const ConversionTarget& target,
                    const EncoderSettings& settings) {
    constexpr int step = 32;  // kbit/s
    const int aim = nominalBitrate(target.format, target.mode, settings);
    return type == target.format && bitrate > 0 && aim >= bitrate / step * step && aim > 0;
}

bool savesTooLittle(int oldBitrate, int newBitrate) {
    return std::int64_t{4} * newBitrate > std::int64_t{3} * oldBitrate;
}

bool sameTime(std::int32_t seconds, std::int32_t others) {
    const std::int64_t apart = std::abs(std::int64_t{seconds} - others);
    return apart <= 1 || apart * 100 <= std::max(seconds, others);
}

bool samePath(std::string_view left, std::string_view right) {
    const PathStyle style = nativePathStyle();
    if (left == right) return true;
    if (lowerCase(fileNameOf(left, style)) != lowerCase(fileNameOf(right, style))) return false;
    const std::string leftFolder(folderOf(left, style));
    const std::string rightFolder(folderOf(right, style));
    if (comparable(leftFolder) == comparable(rightFolder)) return true;
    const auto id = folderId(leftFolder);
    return id && id == folderId(rightFolder);
}

}  // namespace tavlo
