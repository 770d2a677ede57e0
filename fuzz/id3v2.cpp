#include "tags/ID3v2.h"

#include "fuzz/Reading.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkReader({data, size}, [](File& file, ID3tag& record, const ReadContext& context) {
        promise(ReadID3v2Tag(file, record, context).has_value() == record.IsID3v2Present);
        promise(record.AlbumArt.Size <= 16U << 20U);
    });
    return 0;
}
