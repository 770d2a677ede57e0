#include "tags/StreamHeaders.h"

#include <gtest/gtest.h>

#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "tags/AudioFile.h"

namespace tavlo {
namespace {
using namespace test;

std::string le(std::uint64_t value, std::size_t width = 4) {
    return littleEndian(value, width);
}
std::string be(std::uint64_t value, std::size_t width = 4) {
    return bigEndian(value, width);
}
std::string zeroes(std::size_t count) {
    return std::string(count, '\0');
}

// --- Files of each format, without what no reader looks at ---------------------------------------

std::string page(int flags, std::uint64_t granule, const std::string& data,
                 std::uint32_t serial = 7) {
    std::string sizes(data.size() / 255, '\xFF');
    sizes += static_cast<char>(data.size() % 255);
    return "OggS\0"s + le(static_cast<unsigned>(flags), 1) + le(granule, 8) + le(serial) +
           zeroes(8) + le(sizes.size(), 1) + sizes + data;
}

std::string ogg(const std::string& sound) {
    return page(2, 0, "\x80theora", 9) +
           page(2, 0,
                "\1vorbis"s + le(0) + "\2"s + le(8000) + le(0) + le(64000) + le(0) + "\xB8\1"s) +
           page(0, 0, "\3vorbis"s + le(5) + "Maker" + zeroes(600)) + page(0, 0, "\5vorbis") + sound;
}
const std::string oggSound =
    page(4, 20000, zeroes(7000)) + page(0, ~std::uint64_t{0}, "") + page(0, 90000, "", 9);

std::string flac(std::uint64_t total, const std::string& sound, std::uint32_t comments = 40) {
    return "fLaC"s + be(34) + be(4096, 2) + be(4096, 2) + zeroes(6) +
           be(std::uint64_t{8000} << 44U | std::uint64_t{1} << 41U | std::uint64_t{15} << 36U |
                  total,
              8) +
           zeroes(16) + be(0x84000000U + comments) + zeroes(40) + sound;
}
// Frames 0, 1 and 2 of 4096 samples, with the checksums of their heads.
const std::string flacSound =
    "\xFF\xF8\xC4\x18\0S"s + zeroes(4000) + "\xFF\xF8\xC4\x18\1T"s + zeroes(4000);
const std::string thirdFrame = "\xFF\xF8\xC4\x18\2]"s + zeroes(3988);

std::string version7(std::uint32_t frames, std::uint32_t last) {
    return "MP+\x17"s + le(frames) + le(0x10000) + zeroes(8) + le(1U << 31U | last << 20U) +
           zeroes(12000);
}

std::string version8(std::uint64_t toTable, std::size_t packets) {
    std::string sound;
    for (std::size_t i = 0; i < packets; ++i) sound += "AP\xCE\x04"s + zeroes(9984);
    const std::string number{static_cast<char>(0x80U | toTable >> 14U),
                             static_cast<char>(0x80U | (toTable >> 7U & 0x7FU)),
                             static_cast<char>(toTable & 0x7FU)};
    return "MPCKSH\x0E"s + le(0) + "\x08\x8D\x80\0\0"s + "\x20\x13"s + "SO\6"s + number + sound +
           "ST\4\0SE\3"s;
}

std::string block(std::uint32_t total, std::uint32_t index, std::uint32_t samples,
                  std::uint32_t flags, const std::string& data) {
    return "wvpk" + le(24 + data.size()) + le(0x410, 2) + le(0, 2) + le(total) + le(index) +
           le(samples) + le(flags) + le(0) + data;
}
constexpr std::uint32_t firstOne = 0x800, lastOne = 0x1000, custom = 15U << 23U;
std::string wavPack(std::uint32_t total, std::uint32_t flags) {
    const std::string rate = "\x27\2"s + le(8000);
    const std::string first = rate + zeroes(5000);
    return block(total, 0, 0, 0, "") + block(total, 0, 9000, flags | firstOne, first) +
           block(0, 0, 9000, flags | lastOne | 4, rate) +
           block(total, 9000, 9000, flags | firstOne | lastOne, first) + block(0, 18000, 0, 0, "");
}

std::string newMonkey(std::uint32_t bytes) {
    return "MAC " + le(3990, 2) + le(0, 2) + le(52) + le(24) + le(8) + le(44) + le(bytes) +
           zeroes(24) + le(0) + le(9000) + le(2000) + le(3) + le(24, 2) + le(2, 2) + le(8000) +
           zeroes(8 + 44 + 15000);
}
std::string oldMonkey(std::uint32_t lastFrame) {
    return "MAC " + le(3950, 2) + le(2000, 2) + le(16 + 32, 2) + le(1, 2) + le(294912 / 2) +
           le(44) + le(0) + le(2) + le(1000) + le(2) + le(0) + le(lastFrame) + zeroes(6000);
}

std::string atom(std::string_view type, const std::string& body) {
    return be(8 + body.size()) + std::string(type) + body;
}
std::string mp4(std::string_view coding, const std::string& description, std::uint32_t soundSize,
                std::uint32_t duration = 20000) {
    const auto track = [&](std::string_view kind) {
        const std::string entry =
            zeroes(16) + be(2, 2) + be(16, 2) + zeroes(4) + be(0) + description;
        const std::string table = atom("stsd", zeroes(8) + atom(coding, entry));
        return atom("trak", atom("mdia", atom("mdhd", zeroes(12) + be(8000) + be(duration)) +
                                             atom("hdlr", zeroes(8) + std::string(kind)) +
                                             atom("minf", atom("stbl", table))));
    };
    const std::string movie = zeroes(12) + be(1000) + be(3000);
    return atom("ftyp", "M4A ") + be(1) + "mdat" + be(16 + soundSize, 8) + zeroes(10000) +
           atom("moov", atom("mvhd", movie) + track("vide") + track("soun"));
}
const std::string alac =
    atom("alac", zeroes(9) + "\x18"s + zeroes(3) + "\6"s + zeroes(10) + be(8000));
// AAC at 8000 Hz mono that is played at 16000 Hz.
const std::string esds =
    atom("esds", zeroes(4) + "\3\x19\0\0\0\4\x11"s + zeroes(13) + "\5\5\x15\x88\x56\xE5\xC0"s);

// 1024 samples at 8000 Hz mono in 640 bytes.
std::string adts(std::size_t frames) {
    std::string bytes;
    for (std::size_t i = 0; i < frames; ++i) bytes += "\xFF\xF1\x6C\x40\x50\x1F\xFC"s + zeroes(633);
    return bytes;
}

std::string object(std::string_view id, const std::string& tail, const std::string& body,
                   std::uint64_t more = 0) {
    return std::string(id) + tail + le(24 + body.size() + more, 8) + body;
}
std::string asf(std::uint32_t flags, std::uint64_t promised, std::uint32_t coding = 0x161) {
    const std::string tail = "\x11\x8E\xE4\0\xC0\x0C\x20\x53\x65"s,
                      top = "\xA6\xD9\0\xAA\0\x62\xCE\x6C"s;
    const std::string file =
        object("\xA1\xDC\xAB\x8C\x47\xA9\xCF", tail,
               zeroes(40) + le(45000000, 8) + zeroes(8) + le(2000, 8) + le(flags) + zeroes(12));
    const std::string stream =
        object("\x91\x07\xDC\xB7\xB7\xA9\xCF", "\x11\x8E\xE6\0\xC0\x0C\x20\x53\x65"s,
               "\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\0\x80\x5F\x5C\x44\x2B"s + zeroes(38) +
                   le(coding, 2) + le(2, 2) + le(8000) + le(4000) + zeroes(2) + le(16, 2));
    return object("\x30\x26\xB2\x75\x8E\x66\xCF\x11", top, zeroes(6) + stream + file) +
           object("\x36\x26\xB2\x75\x8E\x66\xCF\x11", top, zeroes(26 + 10000), promised);
}

// --- What is read of them ------------------------------------------------------------------------

// "seconds bit rate, sampling rate/channels/bits encoder", "cut" where sound is missing; nothing
// for a file that is none.
std::string read(FileTypes type, std::string_view bytes) {
    File file;
    file.openMemory(bytesOf(bytes));
    ID3tag record;
    record.FileType = type;
    if (!readStream(file, record, bytes.size())) {
        EXPECT_EQ(record.SampleRate + record.Seconds + record.Bitrate, 0);
        return {};
    }
    return std::to_string(record.Seconds) + " s " + std::to_string(record.Bitrate) + " k " +
           std::to_string(record.SampleRate) + "/" + std::to_string(record.Channels) + "/" +
           std::to_string(record.BitsPerSample) + (record.Lossless ? " lossless" : "") +
           record.Encoder + (record.StreamFound ? "" : " cut");
}

struct Case {
    FileTypes type;
    std::string bytes;
    std::string_view facts;
};

const std::vector<Case>& wholeFiles() {
    using namespace FileType;
    static const std::vector<Case> cases{
        {Ogg, ogg(oggSound), "2 s 23 k 8000/2/0Maker"},
        {Flac, flac(12288, flacSound + thirdFrame), "1 s 63 k 8000/2/16 lossless"},
        {Mpc, version7(50, 576), "1 s 81 k 48000/2/0"},
        {Mpc, version8(29970, 3), "4 s 54 k 48000/2/0"},
        {Wv, wavPack(18000, custom | 1), "2 s 36 k 8000/3/16 lossless"},
        {Ape, newMonkey(15000), "2 s 48 k 8000/2/24 lossless"},
        {Ape, oldMonkey(5000), "2 s 24 k 147456/1/16 lossless"},
        {Mp4, mp4("alac", alac, 10000), "2 s 32 k 8000/6/24 lossless"},
        {Mp4, mp4("mp4a", esds, 10000), "2 s 32 k 16000/1/0"},
        {Aac, adts(12), "1 s 40 k 8000/1/0"},
        {Wma, asf(2, 0), "2 s 32 k 8000/2/0"},
    };
    return cases;
}

TEST(StreamHeaders, HeadersOfEachFormatAreRead) {
    for (const Case& c : wholeFiles()) EXPECT_EQ(read(c.type, c.bytes), c.facts) << c.type;
}

TEST(StreamHeaders, WhatIsThereCountsNotWhatWasPromised) {
    using namespace FileType;
    const std::string tagged = tag(4, zeroes(3000));
    const Case cases[] = {
        {Flac, tagged + flac(12288, flacSound + thirdFrame), "1 s 63 k 8000/2/16 lossless"},
        {Aac, tagged + adts(400), "51 s 40 k 8000/1/0"},
        {Ogg, ogg(oggSound).substr(0, ogg(oggSound).size() - 5000), "0 s 64 k 8000/2/0Maker cut"},
        {Ogg, ogg(page(0, 20000, zeroes(7000))), "2 s 23 k 8000/2/0Maker cut"},
        {Flac, flac(12288, flacSound), "1 s 63 k 8000/2/16 lossless cut"},
        {Flac, flac(999999, flacSound), "1 s 63 k 8000/2/16 lossless cut"},
        {Flac, flac(0, flacSound), "1 s 63 k 8000/2/16 lossless"},
        {Flac, flac(12288, ""), ""},
        {Flac, flac(0, flacSound, 99999), ""},
        {Mpc, version7(9000, 576), ""},
        {Mpc, version8(0, 1), "1 s 52 k 48000/2/0 cut"},
        {Wv, wavPack(0xFFFFFFFF, custom | 9), "2 s 36 k 8000/3/16"},
        {Wv, wavPack(900000, custom | 1), "2 s 36 k 8000/3/16 lossless cut"},
        {Wv, block(8000, 0, 8000, firstOne, ""), ""},
        {Ape, newMonkey(15001), ""},
        {Ape, oldMonkey(9000), ""},
        {Mp4, mp4("alac", alac, 99999), ""},
        {Mp4, mp4("mp4a", esds, 10000, 0), "3 s 27 k 16000/1/0"},
        {Mp4, mp4("mp4a", "", 10000), "2 s 32 k 8000/2/0"},
        {Mp4, atom("ftyp", "M4A ") + atom("mdat", zeroes(100)), ""},
        {Wma, asf(2, 1), ""},
        {Wma, asf(1, 1), "0 s 32 k 8000/2/0"},
        {Wma, asf(2, 0, 0x163), "2 s 32 k 8000/2/16 lossless"},
        {Mp3, adts(12), ""},
    };
    for (const Case& c : cases) EXPECT_EQ(read(c.type, c.bytes), c.facts) << &c - cases;
}

TEST(StreamHeaders, StandInTheRecordBesideTheTags) {
    const TempFolder folder;
    const CodePage ansi(1252);
    const std::string sound = version7(50, 576);
    const std::string behind = ApeTag{{apeItem("Artist", std::string(5000, 'a'))}}.bytes();
    const std::string path = folder.write("a.mpc", sound + behind);
    const ID3tag record = ReadAudioFile(path, {ansi});
    EXPECT_EQ(std::tuple(record.Seconds, record.Bitrate, record.StreamFound),
              std::tuple(1, 81, true));
    EXPECT_EQ(record.GetArtist().size(), 5000U);
    EXPECT_FALSE(ReadAudioFile(path, {ansi, ReadDepth::Tags}).StreamFound);
    for (const auto& [name, bytes, found] :
         {std::tuple("a.mp3", mpegFrames(9), true), std::tuple("a.aac", adts(9), true),
          std::tuple("b.mp3", adts(9), false), std::tuple("b.aac", mpegFrames(9), false)}) {
        const ID3tag other = ReadAudioFile(folder.write(name, bytes), {ansi});
        EXPECT_TRUE(other.OK) << name;
        EXPECT_EQ(other.StreamFound, found) << name;
    }
}

// Cut anywhere a file plays no longer; whatever byte of its headers is changed, reading ends.
TEST(StreamHeaders, CutAndDamagedFilesAreRead) {
    for (const Case& c : wholeFiles()) {
        const int seconds = std::stoi(std::string(c.facts));
        for (std::size_t n = 0; n < c.bytes.size(); n += n < 1000 ? 1 : 331) {
            const std::string facts = read(c.type, std::string_view(c.bytes).substr(0, n));
            EXPECT_LE(facts.empty() ? 0 : std::stoi(facts), seconds) << c.type << " " << n;
            std::string damaged = c.bytes;
            damaged[n] = static_cast<char>(~damaged[n]);
            read(c.type, damaged);
        }
        EXPECT_EQ(read(c.type, c.bytes.substr(0, 20)), "") << c.type;
        if (c.type == FileType::Aac) continue;  // goes on with the next frame
        EXPECT_EQ(read(c.type, "x" + c.bytes.substr(1)), "") << c.type;
    }
}

}  // namespace
}  // namespace tavlo
