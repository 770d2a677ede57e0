#include "platform/WindowsMedia.h"

namespace tavlo {

bool hasWindowsMedia() {
    return false;
}

MediaEncode encodeWindowsMedia(const std::string&, const std::string&, const std::string&,
                               const std::string&, const std::string&,
                               const std::function<bool()>&) {
    return MediaEncode::Unavailable;
}

}  // namespace tavlo
