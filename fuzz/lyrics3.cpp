#include "tags/Lyrics3.h"

#include "fuzz/Reading.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkReader({data, size}, [](File& file, ID3tag& record, const ReadContext& context) {
        const auto begin = ReadLyrics3Block(file, record, context);
        promise(begin.has_value() == record.IsLyricsPresent);
        promise(!begin || *begin + 11 + 6 + 6 <= file.size());
    });
    return 0;
}
