#include "desk/StreamFacts.h"

#include <array>

#include "core/Numbers.h"
#include "platform/FileTicks.h"

namespace tavlo {

namespace {
// "5 554 112": digits of a large number are hard to count.
std::string groupedNumber(std::uint64_t number) {
    constexpr std::size_t group = 3;
    constexpr std::string_view narrowSpace = "\u00A0";
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > group; at -= group)
        text.insert(at - group, narrowSpace);
    return text;
}

// 3,725 s is "1:02:05", 245 s is "4:05".
std::string playingTime(const ID3tag& record) {
    constexpr int hour = 3600;
    if (record.Seconds < hour) return record.Time();
    return std::to_string(record.Seconds / hour) + ":" + paddedNumber(record.Seconds / 60 % 60, 2) +
           ":" + paddedNumber(record.Seconds % 60, 2);
}

std::string timeText(const ID3tag& record, const Texts& texts) {
    if (record.Seconds == 0) return {};
    const std::string time = playingTime(record);
    return record.TimeIsGuessed ? texts.get(Text::FactAbout, time) : time;
}

std::string bitrateText(const ID3tag& record, const Texts& texts) {
    if (record.Bitrate == 0) return {};
    return texts.get(record.VBR ? Text::FactKilobitsVbr : Text::FactKilobits,
                     std::to_string(record.Bitrate));
}

std::string sampleRateText(const ID3tag& record, const Texts& texts) {
    return record.SampleRate == 0 ? std::string()
                                  : texts.get(Text::FactHertz, std::to_string(record.SampleRate));
}

// The mode is what MPEG headers tell.
std::string channelsText(const ID3tag& record, const Texts& texts) {
    constexpr std::array modes{Text::ModeStereo, Text::ModeJointStereo, Text::ModeDualChannel,
                               Text::ModeMono};
    const auto mode = static_cast<std::size_t>(record.ChannelMode);
    if (record.Layer > 0 && mode < modes.size()) return texts.get(modes[mode]);
    return record.Channels == 0 ? std::string() : std::to_string(record.Channels);
}

std::string bitsText(const ID3tag& record, const Texts& texts) {
    if (record.BitsPerSample == 0) return {};
    const std::string bits = std::to_string(record.BitsPerSample);
    return record.Float ? texts.get(Text::FactFloat, bits) : bits;
}

std::string mpegText(const ID3tag& record, const Texts& texts) {
    constexpr int mpeg25 = 25;
    if (record.Layer == 0) return {};
    const std::string version =
        record.MpegVersion == mpeg25 ? "2.5" : std::to_string(record.MpegVersion);
    const auto layer = static_cast<std::size_t>(record.Layer);
    return "MPEG-" + version + ", " + texts.get(Text::FactLayer, std::string(layer, 'I'));
}

std::string framesText(const ID3tag& record, const Texts&) {
    return record.Frames == 0 ? std::string() : groupedNumber(record.Frames);
}

std::string soundText(const ID3tag& record, const Texts& texts) {
    if (!record.StreamFound) return texts.get(Text::FactNoSound);
    return record.Lossless ? texts.get(Text::FactLossless) : std::string();
}

struct Fact {
    Text caption;
    std::string (*text)(const ID3tag&, const Texts&);
};
constexpr std::array<Fact, 14> facts{
    {{Text::ColumnFile, [](const ID3tag& r, const Texts&) { return r.Path; }},
     {Text::ColumnType,
      [](const ID3tag& r, const Texts&) { return std::string(fileTypeName(r.FileType)); }},
     {Text::ColumnSize, [](const ID3tag& r, const Texts& t) { return wholeSizeText(r.Length, t); }},
     {Text::FactModified, [](const ID3tag& r, const Texts&) { return localTimeText(r.Modified); }},
     {Text::FactAccess,
      [](const ID3tag& r, const Texts& t) {
          return r.ReadOnly ? t.get(Text::FactReadOnly) : std::string();
      }},
     {Text::FactSound, soundText},
     {Text::ColumnLength, timeText},
     {Text::ColumnBitrate, bitrateText},
     {Text::ColumnSampleRate, sampleRateText},
     {Text::ColumnChannels, channelsText},
     {Text::FactBits, bitsText},
     {Text::FactMpeg, mpegText},
     {Text::FactFrames, framesText},
     {Text::ColumnEncoder, [](const ID3tag& r, const Texts&) { return r.Encoder; }}}};
}  // namespace

std::vector<FactRow> streamFacts(const ID3tag& record, const Texts& texts) {
    std::vector<FactRow> rows;
    for (const Fact& fact : facts) {
        std::string value = fact.text(record, texts);
        if (!value.empty()) rows.push_back({fact.caption, std::move(value)});
    }
    return rows;
}

std::string wholeSizeText(std::uint64_t bytes, const Texts& texts) {
    constexpr std::array units{Text::SizeKilobytes, Text::SizeMegabytes, Text::SizeGigabytes};
    constexpr std::uint64_t tenUnits = 10240;
    constexpr std::uint64_t unitSize = 1024;
    std::string all = texts.get(Text::SizeBytes, groupedNumber(bytes));
    if (bytes < tenUnits) return all;
    std::uint64_t number = bytes / unitSize;
    std::size_t unit = 0;
    for (; number >= tenUnits && unit + 1 < units.size(); ++unit) number /= unitSize;
    return texts.get(units[unit], std::to_string(number)) + " (" + all + ")";
}

}  // namespace tavlo
