#include "tags/SoundSearch.h"

#include <gtest/gtest.h>

#include "support/SoundBytes.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

// Bytes without any order; the same in each run.
std::string noise(std::size_t count) {
    std::string bytes(count, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

bool holds(FileTypes type, const std::string& bytes) {
    File file;
    file.openMemory(bytesOf(bytes));
    return holdsSound(file, type, {0, bytes.size()});
}

// Frames whose size no header tells, 700 bytes each, every second one padded.
std::string freeFrames(std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        std::string one = i % 2 == 0 ? "\xFF\xFB\x00\x64"s : "\xFF\xFB\x02\x64"s;
        one.resize(700 + i % 2, 'f');
        bytes += one;
    }
    return bytes;
}

TEST(SoundSearch, SoundIsFoundWhereverItBegins) {
    const std::string frames = mpegFrames(11);
    const std::string monkey = "MAC \x96\x0F\0\0"s, musepack8 = "MPCKSH\x0F\0"s;
    struct Case {
        const char* what;
        FileTypes type;
        std::string bytes;
    };
    const Case cases[] = {
        {"two frames", FileType::Mp3, mpegFrames(2)},
        {"one that is all of it", FileType::Mp3, mpegFrames(1)},
        {"the last one is cut", FileType::Mp3, mpegFrames(2).substr(0, 600)},
        {"padding in front", FileType::Mp3, std::string(70000, '\0') + frames},
        {"noise in front", FileType::Mp3, noise(3000000) + frames},
        {"over the border of a step", FileType::Mp3, std::string(65536 - 700, 'x') + frames},
        {"a broken first frame", FileType::Mp3, frames.substr(100)},
        {"noise behind", FileType::Mp3, "x" + frames + noise(100000)},
        {"near the last byte that is searched", FileType::Mp3,
         std::string((16U << 20U) - 10, 'x') + frames + "x"},
        {"free format", FileType::Mp3, freeFrames(5)},
        {"free format behind noise", FileType::Mp3, noise(200000) + freeFrames(17) + noise(9000)},
        {"two free frames to the end", FileType::Mp3, freeFrames(2)},
        {"WavPack", FileType::Wv, wavPackBytes(1)},
        {"WavPack behind noise", FileType::Wv, noise(100000) + wavPackBytes(1)},
        {"Monkey's Audio", FileType::Ape, monkey},
        {"a mark over the border of a step", FileType::Ape, std::string(65534, 'x') + monkey},
        {"Musepack 8", FileType::Mpc, musepack8},
        {"Musepack 7", FileType::Mpc, "MP+\x17"},
        {"a stream in a WAVE file", FileType::Mp3,
         "RIFF\1\2\3\4WAVEfmt \x1E\0\0\0\x55\0"s + std::string(40, 'w') + frames},
        {"old WavPack", FileType::Wv, waveBytes(1).substr(0, 44) + "wvpk\1\2\3\4\3\0"s},
    };
    for (const Case& c : cases) EXPECT_TRUE(holds(c.type, c.bytes)) << c.what;
}

TEST(SoundSearch, OtherFilesHoldNone) {
    const std::string frames = mpegFrames(11);
    // 24-bit samples around -5, and what looks like frames of a free bit rate with nothing between.
    std::string prose, quiet = "x", freeHeaders;
    for (int i = 0; i < 30000; ++i)
        quiet += std::string(1, static_cast<char>(-1 - i % 9)) + "\xFF\xFF";
    std::string words = "x";
    for (int i = 0; i < 5000; ++i) words += "\xFF\xF4\x14\xE8";
    const std::string freeHeader = "\xFF\xFB\x00\x64hhhhhhhhhhhh"s;
    for (int i = 0; i < 5000; ++i) freeHeaders += freeHeader;
    while (prose.size() < 100000) prose += "The MAC address, wvpk and MP+ of an MPCK file. ";
    struct Case {
        const char* what;
        FileTypes type;
        std::string bytes;
    };
    const Case cases[] = {
        {"nothing", FileType::Mp3, ""},
        {"text", FileType::Mp3, prose},
        {"noise", FileType::Mp3, noise(5000000)},
        {"bytes of a sync", FileType::Mp3, std::string(100000, '\xFF')},
        {"headers without frames", FileType::Mp3, mpegFrames(20, usualHeader, 100) + "x"},
        {"frames of other streams", FileType::Mp3,
         "x" + mpegFrames(1) + mpegFrames(1, "\xFF\xF3\x84\xC0", 192) + mpegFrames(1) + "x"},
        {"beyond what is searched", FileType::Mp3, std::string(16U << 20U, 'x') + mpegFrames(9)},
        {"WAVE", FileType::Mp3, waveBytes(60)},
        {"WAVE of what looks like frames", FileType::Mp3, waveBytes(60) + frames},
        {"a program with tables", FileType::Mp3,
         "\x7F"
         "ELF\x02\x01\x01"s +
             noise(100) + frames + noise(9)},
        {"small negative numbers", FileType::Mp3, quiet},
        {"a table of headers", FileType::Mp3, "x" + freeHeaders},
        {"a word again and again", FileType::Mp3, words},
        {"text", FileType::Wv, prose},
        {"text", FileType::Ape, prose},
        {"text", FileType::Mpc, prose},
        {"another's stream", FileType::Wv, mpegFrames(20)},
        {"another's stream", FileType::Mp3, wavPackBytes(9)},
        {"a type that is not written", FileType::Flac, "fLaC"},
    };
    for (const Case& c : cases) EXPECT_FALSE(holds(c.type, c.bytes)) << c.what << ' ' << c.type;
}

TEST(SoundSearch, OtherFilesAreNamed) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "an empty file"},
        {"#!/bin/sh\n", "a script"},
        {"[section]\nkey=\xC3\xA9\n", "text"},
        {"fLaC\0\0\0\x22"s, "FLAC"},
        {waveBytes(1), "RIFF/WAVE"},
        {"RIFF\0\0\0\0AVI "s, "RIFF"},
        {mp4Bytes(1), "MP4"},
        {"\x30\x26\xB2\x75\x8E\x66\xCF\x11", "ASF"},
        {"\xFF\xD8\xFF\xE0\0\x10JFIF"s, "JPEG"},
        {"%PDF-1.4", "PDF"},
        {wavPackBytes(1), "WavPack"},
        {mpegFrames(3), "MP3"},
        {"MAC \x96\x0F"s, "Monkey's Audio"},
        {"\x01\x02\x03\x04", ""},
    };
    const Texts texts;
    for (const auto& [bytes, name] : cases) {
        File file;
        file.openMemory(bytesOf(bytes));
        EXPECT_EQ(looksLike(file, {0, bytes.size()}, texts), name);
    }
}

}  // namespace
}  // namespace tavlo::test
