#include "tags/ID3v1.h"

#include "fuzz/Reading.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkReader({data, size}, [](File& file, ID3tag& record, const ReadContext& context) {
        const auto block = ReadID3v1Tag(file, record, context);
        promise(block.has_value() == record.IsID3v1Present);
        promise(!block || (block->begin + 124 <= block->end && block->end <= file.size()));
    });
    return 0;
}
