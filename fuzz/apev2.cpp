#include "tags/APEv2.h"

#include "fuzz/Reading.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkReader({data, size}, [](File& file, ID3tag& record, const ReadContext& context) {
        const auto tag = ReadAPETag(file, record, context);
        promise(tag.has_value() == record.IsAPE2Present);
        promise(!tag || (tag->begin + 32 <= tag->end && tag->end <= file.size()));
        promise(record.AlbumArt.Size <= file.size());
    });
    return 0;
}
