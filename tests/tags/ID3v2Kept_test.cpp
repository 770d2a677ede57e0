#include "tags/ID3v2Kept.h"

#include <gtest/gtest.h>

#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

struct Case {
    std::string_view name;
    int from, to;
    std::string frames, expected;
};

std::string convertFrames(std::string_view frames, int from, int to, const CodePage& ansi) {
    std::string out;
    while (const auto header = parseFrameHeader(bytesOf(frames), from)) {
        frames.remove_prefix(frameHeaderSize(from));
        out += convertFrame(*header, frames.substr(0, header->bodySize), from, to, ansi);
        frames.remove_prefix(header->bodySize);
    }
    return out;
}

void expectConverted(std::span<const Case> cases) {
    const CodePage ansi(1252);
    for (const Case& c : cases) {
        EXPECT_EQ(convertFrames(c.frames, c.from, c.to, ansi), c.expected)
            << c.name << ' ' << c.from << " to " << c.to;
    }
}

std::string marked(std::u16string_view text) {
    return "\xFF\xFE" + utf16le(text);
}

const std::string data = "\x01\xFE\0kept"s;

TEST(ID3v2Kept, SizesAndStatusFlagsTakeTheOtherForm) {
    for (const std::size_t size : {0U, 1U, 127U, 128U, 200U, 16384U, 300000U}) {
        const std::string body(size, 'b');
        const Case cases[] = {
            {"size", 2, 3, frame(2, "CNT", body), frame(3, "PCNT", body)},
            {"size", 2, 4, frame(2, "CNT", body), frame(4, "PCNT", body)},
            {"size", 3, 4, frame(3, "PCNT", body), frame(4, "PCNT", body)},
            {"size", 4, 3, frame(4, "PCNT", body), frame(3, "PCNT", body)},
        };
        expectConverted(cases);
    }
    constexpr std::pair<std::uint16_t, std::uint16_t> flags[] = {
        {0x8000, 0x4000}, {0x4000, 0x2000}, {0x2000, 0x1000}, {0xE000, 0x7000}};
    for (const auto& [three, four] : flags) {
        const std::string old = frame(3, "MCDI", data, three), next = frame(3, "XABC", data);
        const std::string converted = frame(4, "MCDI", data, four);
        const Case cases[] = {
            {"flags", 3, 4, old + next, converted + frame(4, "XABC", data)},
            {"flags", 4, 3, converted + frame(4, "XABC", data), old + next},
        };
        expectConverted(cases);
    }
}

TEST(ID3v2Kept, PrefixesStandInTheOrderOfTheVersion) {
    const std::string packed = zlibPacked(std::string(1000, 'z'));
    const std::string size3 = bigEndian(1000, 4), size4 = syncsafe(1000);
    struct Row {
        std::string_view name;
        std::uint16_t flags3, flags4;
        std::string body3, body4;
    };
    const Row rows[] = {
        {"group", 0x20, 0x40, "G" + data, "G" + data},
        {"compressed", 0x80, 0x09, size3 + packed, size4 + packed},
        {"encrypted", 0x40, 0x04, "M" + data, "M" + data},
        {"group, compressed", 0xA0, 0x49, size3 + "G" + packed, "G" + size4 + packed},
        {"group, encrypted", 0x60, 0x44, "MG" + data, "GM" + data},
        {"all", 0xE0E0, 0x704D, size3 + "MG" + packed, "GM" + size4 + packed},
    };
    for (const Row& row : rows) {
        const std::string three = frame(3, "MCDI", row.body3, row.flags3);
        const std::string four = frame(4, "MCDI", row.body4, row.flags4);
        const Case cases[] = {{row.name, 3, 4, three, four}, {row.name, 4, 3, four, three}};
        expectConverted(cases);
    }
}

TEST(ID3v2Kept, WhatOnlyVersion4HasIsUndone) {
    const std::string raw = "\xFF\xE0\xFF\0\xFF"s, size = syncsafe(5);
    const std::string packed = zlibPacked(raw);
    const Case cases[] = {
        {"unsynchronised", 4, 3, frame(4, "MCDI", unsynchronised(raw), 0x02),
         frame(3, "MCDI", raw)},
        {"unsynchronised with a length", 4, 3, frame(4, "MCDI", size + unsynchronised(raw), 0x4003),
         frame(3, "MCDI", raw, 0x8000)},
        {"length", 4, 3, frame(4, "MCDI", size + raw, 0x01), frame(3, "MCDI", raw)},
        {"group and length", 4, 3, frame(4, "MCDI", "G" + size + raw, 0x41),
         frame(3, "MCDI", "G" + raw, 0x20)},
        {"unsynchronised and encrypted", 4, 3, frame(4, "MCDI", "M" + unsynchronised(raw), 0x06),
         frame(3, "MCDI", "M" + raw, 0x40)},
        {"unsynchronised and compressed", 4, 3,
         frame(4, "MCDI", size + unsynchronised(packed), 0x0B),
         frame(3, "MCDI", bigEndian(5, 4) + packed, 0x80)},
    };
    expectConverted(cases);
}

TEST(ID3v2Kept, TextEncodingsOfVersion4BecomeUtf16) {
    const std::string snow = "Снег", wide = marked(u"Снег"), end = "\0\0"s;
    const Case cases[] = {
        {"UTF-8", 4, 3, textFrame(4, "TPE2", snow, 3), textFrame(3, "TPE2", wide, 1)},
        {"UTF-16BE", 4, 3, textFrame(4, "TPE2", utf16be(u"Снег"), 2),
         textFrame(3, "TPE2", wide, 1)},
        {"UTF-8 and flags", 4, 3, frame(4, "TPE2", "\3" + snow, 0x7000),
         frame(3, "TPE2", "\1" + wide, 0xE000)},
        {"two values", 4, 3, textFrame(4, "TPE2", "One\0Two"s, 3),
         textFrame(3, "TPE2", marked(u"One") + end + marked(u"Two"), 1)},
        {"TXXX", 4, 3, textFrame(4, "TXXX", snow + "\0value"s, 3),
         textFrame(3, "TXXX", wide + end + marked(u"value"), 1)},
        {"USLT", 4, 3, frame(4, "USLT", "\3rus\0"s + snow),
         frame(3, "USLT", "\1rus\xFF\xFE\0\0"s + wide)},
        {"COMM", 4, 3, frame(4, "COMM", "\3rusa\0"s + snow),
         frame(3, "COMM", "\1rus" + marked(u"a") + end + wide)},
        {"WXXX", 4, 3, frame(4, "WXXX", "\3" + snow + "\0http://x/"s),
         frame(3, "WXXX", "\1" + wide + "\0\0http://x/"s)},
        {"APIC", 4, 3, frame(4, "APIC", "\3image/png\0\4"s + snow + '\0' + data),
         frame(3, "APIC", "\1image/png\0\4"s + wide + end + data)},
        {"GEOB", 4, 3, frame(4, "GEOB", "\3a/b\0"s + snow + "\0d\0"s + data),
         frame(3, "GEOB", "\1a/b\0"s + wide + end + marked(u"d") + end + data)},
        {"SYLT", 4, 3, frame(4, "SYLT", "\3eng\2\1d\0"s + snow + "\0\0\0\1\x90"s),
         frame(3, "SYLT", "\1eng\2\1"s + marked(u"d") + end + wide + end + "\0\0\1\x90"s)},
        {"in a group", 4, 3, frame(4, "TPE2", "g\3" + snow, 0x40),
         frame(3, "TPE2", "g\1" + wide, 0x20)},
        {"8 bits stay", 4, 3, textFrame(4, "TPE2", "Caf\xE9"), textFrame(3, "TPE2", "Caf\xE9")},
        {"UTF-16 stays", 4, 3, textFrame(4, "TPE2", "\xFE\xFF" + utf16be(u"Снег"), 1),
         textFrame(3, "TPE2", "\xFE\xFF" + utf16be(u"Снег"), 1)},
        {"no text", 4, 3, frame(4, "PRIV", "\3\0data"s), frame(3, "PRIV", "\3\0data"s)},
    };
    expectConverted(cases);
}

TEST(ID3v2Kept, FramesInsideOfChaptersAreConvertedToo) {
    const std::string times(16, '\1'), title = "\3" + std::string(200, 'x');
    const std::string ascii(200, 'x');
    const auto nested = [&](int version, const std::string& first) {
        return frame(version, "TIT2", first) + frame(version, "WOAF", "http://x/");
    };
    const std::string wide = "\1" + marked(std::u16string(200, u'x'));
    const Case cases[] = {
        {"chapter", 4, 3, frame(4, "CHAP", "c1\0"s + times + nested(4, title)),
         frame(3, "CHAP", "c1\0"s + times + nested(3, wide))},
        {"contents", 3, 4, frame(3, "CTOC", "toc\0\3\2c1\0c2\0"s + nested(3, '\0' + ascii)),
         frame(4, "CTOC", "toc\0\3\2c1\0c2\0"s + nested(4, '\0' + ascii))},
        {"broken", 4, 3, frame(4, "CHAP", "c1\0"s + times + "TIT2\0\0\1\0"s),
         frame(3, "CHAP", "c1\0"s + times + "TIT2\0\0\1\0"s)},
    };
    expectConverted(cases);
}

TEST(ID3v2Kept, NamesOfVersion2GetTheirSuccessors) {
    const Case cases[] = {
        {"text", 2, 3, textFrame(2, "TT3", "Sub"), textFrame(3, "TIT3", "Sub")},
        {"lyrics", 2, 4, frame(2, "ULT", "\0eng\0la"s), frame(4, "USLT", "\0eng\0la"s)},
        {"jpg", 2, 3, frame(2, "PIC", "\0JPG\4desc\0"s + data),
         frame(3, "APIC", "\0image/jpeg\0\4desc\0"s + data)},
        {"png", 2, 4, frame(2, "PIC", "\1PNG\4"s + marked(u"d") + "\0\0"s + data),
         frame(4, "APIC", "\1image/png\0\4"s + marked(u"d") + "\0\0"s + data)},
    };
    expectConverted(cases);
    const CodePage ansi(1252);
    for (const std::string_view id : {"CRM", "XYZ"}) {
        for (const int version : {3, 4}) {
            const std::string old = frame(2, id, data);
            const std::string kept = convertFrames(old, 2, version, ansi);
            ASSERT_GT(kept.size(), 10 + old.size() + 1) << id;
            const std::string body = kept.substr(10);
            EXPECT_EQ(kept, frame(version, "PRIV", body)) << id;
            EXPECT_EQ(body.substr(body.find('\0') + 1), old) << id;
        }
    }
}

TEST(ID3v2Kept, ThereAndBackIsTheSame) {
    const std::string frames[] = {
        frame(3, "TPE2", "\1" + marked(u"Снег"), 0x4000),
        frame(3, "RVAD", "\3\x10\xFF\xFF\x01\x01"s),
        frame(3, "PRIV", "owner\0"s + std::string(200, '\xFF'), 0x2000),
        frame(3, "APIC", bigEndian(70000, 4) + "MG" + std::string(20000, 'z'), 0x80E0),
        frame(3, "IPLS", "\0a\0b\0"s),
    };
    const CodePage ansi(1252);
    std::string all;
    for (const std::string& one : frames) all += one;
    EXPECT_EQ(convertFrames(convertFrames(all, 3, 4, ansi), 4, 3, ansi), all);
}

}  // namespace
}  // namespace tavlo::test
