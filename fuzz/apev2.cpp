#include "tags/APEv2.h"

#include "fuzz/Reading.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkReader({data, size}, [](File& file, ID3tag& record, const ReadContext& context) {
        const auto begin = ReadAPETag(file, record, context);
        promise(begin.has_value() == record.IsAPE2Present);
        promise(!begin || *begin + 32 <= file.size());
        promise(record.AlbumArt.Size <= file.size());
    });
    return 0;
}
