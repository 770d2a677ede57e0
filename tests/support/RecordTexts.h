#pragma once

#include <string>
#include <vector>

#include "tags/ID3tag.h"

namespace tavlo::test {

/// Every text of a record but raw frames and items.
inline std::vector<const std::string*> textsOf(const ID3tag& r) {
    const cID3v2ext& x = r.ID3v2Ext;
    // clang-format off
    return {&r.Path, &r.Title, &r.Artist, &r.Album, &r.Year, &r.Comment, &r.Encoder,
            &x.TrackTitle, &x.Artist, &x.AlbumTitle, &x.Year, &x.Comments, &x.Composer,
            &x.OriginalArtist, &x.CopyRight, &x.EncodedBy, &x.URL, &x.TrackNumber, &x.Genre, &x.Mix,
            &x.EncoderInfo, &x.RecordingTime, &r.LyricsExt.TrackTitle, &r.LyricsExt.Artist,
            &r.AlbumArt.MIME, &r.AlbumArt.Description};
    // clang-format on
}

}  // namespace tavlo::test
