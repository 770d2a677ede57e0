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

/// Edits every field.
inline void setEveryField(ID3tag& record) {
    record.SetBasicFields({"Artist Ж", "Album", "2007", "A title of more than thirty characters",
                           "Mix", "Rock", "Composer", "Copyright", "http://a/", "3/12"});
    record.SetComment("Comment");
    cID3v2ext& ext = record.ID3v2Ext;
    ext.OriginalArtist = "Original";
    ext.EncodedBy = "Encoder";
    ext.EncoderInfo = "LAME";
    record.DiskNumber = 1;
    record.DisksCount = 2;
    record.BPM = 120;
    record.IsPartOfCompilation = true;
    record.AlbumArt = {4, "image/png", "front.png", 3, {0x89, 'P', 'N', 'G'}};
    record.AlbumArtType = FileType::Png;
}

/// Those of the editable fields that every tag but ID3v1 can hold.
inline std::string commonFields(const ID3tag& r) {
    const cID3v2ext& x = r.ID3v2Ext;
    const cAlbumArt& art = r.AlbumArt;
    std::string all;
    for (const std::string& field :
         {std::string(r.GetArtist()), r.GetTitleMix(), std::string(r.GetMix()),
          std::string(r.GetAlbum()), std::string(r.GetYear()), r.GetNumber(),
          std::string(r.GetComment()), std::string(r.GetGenre()), x.Composer, x.CopyRight,
          x.EncodedBy, art.MIME, std::string(art.Data.begin(), art.Data.end())}) {
        all += field + '|';
    }
    return all;
}

/// Every editable field, for comparing two records.
inline std::string editableFields(const ID3tag& r) {
    const cID3v2ext& x = r.ID3v2Ext;
    std::string all = commonFields(r) + x.OriginalArtist + '|' + x.URL + '|' + x.EncoderInfo + '|' +
                      r.AlbumArt.Description + '|';
    for (const int number : {r.TracksCount, r.DiskNumber, r.DisksCount, r.BPM,
                             int{r.IsPartOfCompilation}, int{r.AlbumArt.PictureType}}) {
        all += std::to_string(number) + '|';
    }
    return all;
}

}  // namespace tavlo::test
