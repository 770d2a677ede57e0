#pragma once

#include <functional>
#include <string>

namespace tavlo {

enum class MediaEncode {
    Done,
    Unavailable,  ///< the system's encoder for Windows Media is not installed
    Failed
};

/// Whether the system's encoder for Windows Media is installed.
bool hasWindowsMedia();

/// Makes a WMA file of a WAV file as a profile (a .prx file) says, and notes the tool in it. All
/// paths are full. About every 100 ms it asks whether to go on; when not, it has failed and may
/// leave a part of the result.
MediaEncode encodeWindowsMedia(const std::string& wav, const std::string& wma,
                               const std::string& profile, const std::string& toolName,
                               const std::string& toolVersion,
                               const std::function<bool()>& keepsWaiting);

}  // namespace tavlo
