#include "tags/Lyrics3.h"

#include "fuzz/Reading.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkReader({data, size}, [](File& file, ID3tag& record, const ReadContext& context) {
        const auto tag = ReadLyrics3Block(file, record, context);
        promise(tag.has_value() == record.IsLyricsPresent);
        promise(!tag || (tag->begin + 11 + 6 + 6 <= tag->end && tag->end <= file.size()));
    });
    return 0;
}
