// Prints what TagLib says of each MP3 file named on standard input, one JSON object a line.
#include <taglib/apeitem.h>
#include <taglib/apetag.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/xingheader.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

std::string quoted(const TagLib::String& text) {
    std::string out = "\"";
    for (const wchar_t unit : text) {
        char escaped[16];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(unit) & 0xFFFFU);
        out += escaped;
    }
    return out + '"';
}

// Of several pictures the front cover.
unsigned pictureSize(const TagLib::ID3v2::Tag* tag) {
    using Picture = TagLib::ID3v2::AttachedPictureFrame;
    unsigned size = 0;
    bool isCover = false;
    if (tag == nullptr) return 0;
    for (const auto* frame : tag->frameListMap()["APIC"]) {
        const auto* picture = dynamic_cast<const Picture*>(frame);
        if (picture == nullptr || isCover ||
            (size != 0 && picture->type() != Picture::FrontCover)) {
            continue;
        }
        isCover = picture->type() == Picture::FrontCover;
        size = picture->picture().size();
    }
    return size;
}

// Behind the item's file name.
unsigned pictureSize(const TagLib::APE::Tag* tag) {
    if (tag == nullptr) return 0;
    const TagLib::ByteVector data = tag->itemListMap()["COVER ART (FRONT)"].binaryData();
    const int name = data.find(TagLib::ByteVector(1, '\0'));
    return name < 0 ? 0 : data.size() - static_cast<unsigned>(name) - 1;
}

void print(const std::string& path) {
    TagLib::MPEG::File file(path.c_str(), true, TagLib::MPEG::Properties::Average);
    if (!file.isValid()) {
        std::cout << "null\n";
        return;
    }
    const TagLib::Tag& tag = *file.tag();
    const TagLib::MPEG::Properties& stream = *file.audioProperties();
    const TagLib::PropertyMap map = file.properties();
    const auto text = [&](const char* key, const TagLib::String& value) {
        std::cout << '"' << key << "\":" << quoted(value) << ',';
    };
    const auto number = [&](const char* key, long value) {
        std::cout << '"' << key << "\":" << value << ',';
    };
    std::cout << '{';
    text("artist", tag.artist());
    text("title", tag.title());
    text("album", tag.album());
    text("genre", tag.genre());
    text("comment", tag.comment());
    text("composer", map["COMPOSER"].toString("; "));
    text("copyright", map["COPYRIGHT"].toString("; "));
    number("year", tag.year());
    number("track", tag.track());
    number("milliseconds", stream.lengthInMilliseconds());
    number("bitrate", stream.bitrate());
    number("sample rate", stream.sampleRate());
    number("channel mode", stream.channelMode());
    number("version", stream.version());
    number("layer", stream.layer());

    number("v1", file.hasID3v1Tag());
    number("v2", file.hasID3v2Tag());
    number("ape", file.hasAPETag());
    const unsigned picture = pictureSize(file.ID3v2Tag());
    number("picture", picture != 0 ? picture : pictureSize(file.APETag()));
    std::cout << "\"peer\":\"TagLib\"}\n";
}

}  // namespace

int main() {
    for (std::string path; std::getline(std::cin, path);) print(path);
}
