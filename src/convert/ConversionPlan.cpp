#include "convert/ConversionPlan.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "collection/RenamePlan.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "tags/AudioFile.h"

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
        row.size = record.Length;
        if (row.folder.empty()) row.folder = folderOf(row.source, nativePathStyle());
        row.step = stepOf(row);
        settleName(row);
        given_.insert(comparable(row.target));
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
        const std::string wanted = inFolder(row, fileNameOf(row.source, nativePathStyle()));
        return samePath(wanted, row.source) ? ConversionStep::Skip : ConversionStep::Copy;
    }

    static std::string inFolder(const Conversion& row, std::string_view name) {
        return joinPath(row.folder, name, nativePathStyle());
    }

    void settleName(Conversion& row) {
        if (row.step == ConversionStep::Skip) {
            row.target = row.source;
            return;
        }
        const bool copies = row.step == ConversionStep::Copy;
        const std::string_view extension = settings_.target.format == FileType::Wave
                                               ? ".wav"
                                               : outputExtension(settings_.target.format);
        const std::string wanted = inFolder(
            row, copies ? std::string(fileNameOf(row.source, nativePathStyle()))
                        : std::string(baseNameOf(row.source, nativePathStyle())).append(extension));
        row.isOwnSource = samePath(wanted, row.source);
        if (!row.isOwnSource && isEarlierResult(row, wanted)) row.step = ConversionStep::Done;
        const bool isSettled = row.isOwnSource || row.step == ConversionStep::Done;
        row.target = isSettled ? wanted : freePath(wanted, nativePathStyle(), [&](auto path) {
            return isFree(path);
        });
    }

    [[nodiscard]] bool isFree(std::string_view path) const {
        const std::string name = comparable(path);
        return !given_.contains(name) && !sources_.contains(name) && !fileInfo(std::string(path));
    }

    // A file of the result's name and with the source's sound.
    [[nodiscard]] bool isEarlierResult(const Conversion& row, const std::string& path) const {
        const std::string name = comparable(path);
        if (given_.contains(name) || sources_.contains(name) || !fileInfo(path)) return false;
        const ID3tag record = ReadAudioFile(path, {ansi_, ReadDepth::List});
        return record.OK && record.Seconds > 0 && sameTime(record.Seconds, row.seconds);
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
    return comparable(left) == comparable(right);
}

}  // namespace tavlo
