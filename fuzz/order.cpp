#include "core/ByteCursor.h"
#include "core/TextCase.h"
#include "fuzz/Promise.h"

using namespace tavlo;

// The input: three names with NUL between them. A sort needs an order without contradictions.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input = textOf({data, size});
    const std::string_view a = takePiece(input);
    const std::string_view b = takePiece(input);
    const std::string_view c = input;
    const auto order = compareNatural(a, b);
    promise(compareNatural(a, a) == 0);
    promise((order == 0) == (a == b));
    promise((order < 0) == (compareNatural(b, a) > 0));
    promise(!(order < 0 && compareNatural(b, c) < 0) || compareNatural(a, c) < 0);
    promise(!equalsNoCase(a, b) || (equalsNoCase(b, a) && hashNoCase(a) == hashNoCase(b)));
    promise(!(equalsNoCase(a, b) && equalsNoCase(b, c)) || equalsNoCase(a, c));
    return 0;
}
