#include "collection/NameTemplate.h"
#include "collection/ReverseTemplate.h"
#include "core/ByteCursor.h"
#include "core/FileNameText.h"
#include "fuzz/Promise.h"
#include "platform/Utf8.h"

using namespace tavlo;

namespace {
void checkName(const std::string& name, PathStyle style, std::size_t extensionSize) {
    promise(cleanFileName(name, style, extensionSize) == name);
    const std::string walled = '\\' + name + '\\';
    promise(walled.find(".\\") == std::string::npos);
    promise(walled.find("\\\\") == std::string::npos || name.empty());
    const std::size_t lastLevel = name.size() - (name.rfind('\\') + 1);
    promise(style == PathStyle::Windows || lastLevel + extensionSize <= 247);
}

void checkReading(std::string_view nameTemplate, std::string_view path, PathStyle style) {
    const ReverseTemplate names(nameTemplate);
    promise(names.tokens().size() <= ReverseTemplate::mostTokens);
    ID3tag record;
    names.retrieveFromText(path, record);
    const std::string root = style == PathStyle::Posix ? "/" : "C:\\";
    names.RetrieveTags(root + std::string(path), style, record);
    promise(names.hasFields() || record.GetArtistTitleMix().empty());
    promise(isValidUtf8(record.GetArtistTitleMix()) || !isValidUtf8(nameTemplate) ||
            !isValidUtf8(path));
}
}  // namespace

// The input: a template and the fields of a record, with NUL between them, and a path.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input = textOf({data, size});
    const std::string_view nameTemplate = takePiece(input);
    ID3tag record;
    for (const auto set : {&ID3tag::SetArtist, &ID3tag::SetTitle, &ID3tag::SetMix,
                           &ID3tag::SetAlbum, &ID3tag::SetYear, &ID3tag::SetNumber}) {
        (record.*set)(takePiece(input));
    }
    const std::size_t extensionSize = size % 8;
    const auto table = size % 3 == 0 ? Transliteration::Gost : Transliteration::Phonetic;
    for (const PathStyle style : {PathStyle::Posix, PathStyle::Windows}) {
        const NameRules rules{style, table, extensionSize};
        checkName(nameByTemplate(record, nameTemplate, rules), style, extensionSize);
        checkReading(nameTemplate, input, style);
    }
    return 0;
}
