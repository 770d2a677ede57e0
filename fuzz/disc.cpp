// The answers of a CD drive: the first byte chooses the table of contents or the CD-TEXT.

#include "cd/CdText.h"
#include "cd/DiscToc.h"
#include "fuzz/Promise.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const Bytes answer = Bytes(data, size).subspan(1);
    if (data[0] % 2 == 0) {
        const auto toc = parseToc(answer);
        if (!toc) return 0;
        promise(!toc->tracks.empty() && toc->tracks.size() <= 99);
        promise(toc->text().empty() == toc->discId().empty());
        for (const DiscTrack& track : toc->tracks) {
            promise(track.number >= 1 && track.number <= 99 && track.length > 0);
        }
    } else {
        const CdText text = parseCdText(answer);
        for (const std::string& title : text.titles) promise(title.size() <= 3 * size);
    }
    return 0;
}
