#pragma once

#include <cstdint>
#include <string_view>

namespace tavlo {

/// A set of kinds of files; each kind is one bit.
using FileTypes = std::uint16_t;

namespace FileType {
inline constexpr FileTypes None = 0;
inline constexpr FileTypes Mp3 = 0x0001;
inline constexpr FileTypes Ogg = 0x0002;
inline constexpr FileTypes Mpc = 0x0004;
inline constexpr FileTypes Wma = 0x0008;
inline constexpr FileTypes Mp4 = 0x0010;
inline constexpr FileTypes Wave = 0x0020;
inline constexpr FileTypes M3u = 0x0040;
inline constexpr FileTypes Mxc = 0x0080;
inline constexpr FileTypes Aac = 0x0100;
inline constexpr FileTypes Flac = 0x0200;
inline constexpr FileTypes Wv = 0x0400;
inline constexpr FileTypes Ape = 0x0800;
inline constexpr FileTypes Cue = 0x1000;
inline constexpr FileTypes Jpeg = 0x2000;
inline constexpr FileTypes Png = 0x4000;
inline constexpr FileTypes Bmp = 0x8000;

/// Kinds whose tags can be edited.
inline constexpr FileTypes Tagged = Mp3 | Ogg | Mpc | Wma | Mp4 | Flac | Wv | Ape;
/// Kinds that keep an APEv2 tag and no other.
inline constexpr FileTypes Ape2Only = Mpc | Wv | Ape;
/// Kinds without loss.
inline constexpr FileTypes Lossless = Flac | Wv | Ape;
/// Everything that can be listened to.
inline constexpr FileTypes Audio = Tagged | Wave | Aac;
}  // namespace FileType

/// The kind of a file by the last characters of its name alone, without case; no dot is asked
/// for, so "song.xmp3" is MP3. `FileType::None` for every other name.
FileTypes GetFileType(std::string_view path);

/// The display word of one kind ("MP3"); empty for none.
std::string_view fileTypeName(FileTypes type);

/// Whether the name is that of a kind whose tags can be edited.
bool HasEditableTags(std::string_view path);

}  // namespace tavlo
