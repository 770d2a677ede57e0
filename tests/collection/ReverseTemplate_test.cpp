#include "collection/ReverseTemplate.h"

#include <gtest/gtest.h>

#include "collection/TagColumns.h"

namespace tavlo {
namespace {

// The fields that are set, each behind the front of its name.
std::string fieldsOf(const ID3tag& record) {
    std::string out;
    for (const TagColumn& column : tagColumns()) {
        const std::string text = column.get(record);
        if (!text.empty()) out += column.name.substr(0, 2), out += ':' + text + ' ';
    }
    return out;
}

TEST(ReverseTemplate, PathsGiveFields) {
    using enum PathStyle;
    struct Row {
        std::string_view nameTemplate, path, fields;
        PathStyle style = Posix;
    };
    // clang-format off
    constexpr Row rows[] = {
        {"%N - %A - %T", "/m/07 - Band - Song.mp3", "Ar:Band Ti:Song Tr:07 "},
        {"%A\\%L\\%N %T", "/Music/Band/Disk/01 Song.mp3", "Ar:Band Ti:Song Al:Disk Tr:01 "},
        {"%Y\\%C\\%G - %T", "/2001/Vol.1/Rock - Song.mp3", "Ti:Song Al:Vol.1 Ye:2001 Ge:Rock "},
        {"%A - %T", "/m/a\\b - c.mp3", "Ar:a\\b Ti:c "}, {"%A\\", "/Band/a.mp3", "Ar:Band "},
        // Drives are no folders.
        {"%A\\%L\\%T", "C:\\Disk\\Song.mp3", "Ti:Song Al:Disk ", Windows},
        {"%A\\%L\\%T", "\\\\server\\share\\Disk\\Song.mp3", "Ti:Song Al:Disk ", Windows},
        {"%A - %T (%M)", "/Band - Song (Live).mp3", "Ar:Band Ti:Song Mi:Live "},
        {"%A - %T[%M]", "/a - b.mp3", "Ar:a Ti:b "}, {"%T - %M", "/a - b.mp3", "Ti:a Mi:b "},
        // An extension has at most four characters.
        {"%T", "/a v1.25.mpeg", "Ti:a v1.25 "}, {"%T", "/a v1.25.мпег", "Ti:a v1.25 "},
        {"%T", "/a v1.25beta", "Ti:a v1.25beta "}, {" %A-%T ", "/A_B - a .mp3", "Ar:A B Ti:a "},
        // Texts are found without case behind a placeholder, but not compared elsewhere; one that
        // is missing ends its level, and only that one.
        {"%N%% %T", "/7% a.mp3", "Ti:a Tr:7 "}, {"%%T%% - %T", "/%T% - a.mp3", "Ti:a "},
        {"xx - %T", "/жю - a.mp3", "Ti:a "}, {"%A И C %T", "/B и c a.mp3", "Ar:B Ti:a "},
        {"%0 - %q - %T", "/a - b - c.mp3", "Ti:c "}, {"%A%T - %L", "/a - b.mp3", "Ti:a Al:b "},
        {"%A - %Z %W", "/a - b.mp3", "Ar:a Ti:b "}, {"%R%A - %Z", "/a - b.mp3", "Ar:a Ti:b "},
        {"%L\\%N %A = %T", "/Disk/07 Band - Song.mp3", "Al:Disk Tr:07 "},
    };
    // clang-format on
    for (const Row& row : rows) {
        ID3tag record;
        ReverseTemplate(row.nameTemplate).RetrieveTags(row.path, row.style, record);
        EXPECT_EQ(fieldsOf(record), row.fields) << row.nameTemplate << " | " << row.path;
    }
}

TEST(ReverseTemplate, FieldsWithoutAPlaceStay) {
    ReverseTemplate names("%A");
    names.CompileReverseTemplate("%N-%Z\\%L-%Y");
    for (const std::string_view line : {"7-x\\-1999", "7-x/-1999"}) {
        ID3tag record;
        record.SetBasicFields({"a", "b", "1", "c", "d", {}, {}, {}, {}, "5"});
        names.retrieveFromText(line, record);
        EXPECT_EQ(fieldsOf(record), "Ar:a Ti:x Ye:1999 Tr:7 ");
    }
    std::string longTemplate;
    for (int i = 0; i < 30; ++i) longTemplate += "%A - ";
    EXPECT_EQ(ReverseTemplate(longTemplate).tokens().size(), 50U);
    EXPECT_TRUE(ReverseTemplate("a\\%C").hasFields());
    EXPECT_FALSE(ReverseTemplate("%0 %%A %R%W\\").hasFields());
}

}  // namespace
}  // namespace tavlo
