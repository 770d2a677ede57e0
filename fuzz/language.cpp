#include "core/ByteCursor.h"
#include "core/Texts.h"
#include "fuzz/Promise.h"

using namespace tavlo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Texts texts(size % 2 == 0 ? Language::English : Language::Russian);
    texts.addReplacements(textOf({data, size}));
    const std::string shown = texts.get(Text::FolderNotFound, "%1%1");
    promise(texts.get(Text::FolderNotFound).find("%1") == std::string::npos ||
            shown.find("%1%1") != std::string::npos);

    // A template of all texts brings them back.
    const std::string file = texts.languageFileTemplate();
    Texts again;
    again.addReplacements(file);
    promise(again.languageFileTemplate() == file);
    return 0;
}
