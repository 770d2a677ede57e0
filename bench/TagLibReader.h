#pragma once

#include <taglib/mpegfile.h>
#include <taglib/tag.h>

#include <string>

namespace tavlo {

/// Opens a file with TagLib and asks for what a list shows; the texts' length, 0 for no file.
inline std::size_t readWithTagLib(const std::string& path) {
    TagLib::MPEG::File file(path.c_str(), true, TagLib::MPEG::Properties::Average);
    if (!file.isValid()) return 0;
    const TagLib::Tag& tag = *file.tag();
    const std::size_t texts = tag.title().size() + tag.artist().size() + tag.album().size() +
                              tag.genre().size() + tag.comment().size();
    const TagLib::MPEG::Properties& stream = *file.audioProperties();
    return texts + tag.year() + tag.track() +
           static_cast<std::size_t>(stream.lengthInMilliseconds() + stream.bitrate());
}

}  // namespace tavlo
