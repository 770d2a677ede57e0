#include "core/LanguageFile.h"

#include "core/PathText.h"
#include "platform/File.h"
#include "platform/FileSystem.h"

namespace tavlo {
namespace {

constexpr std::uint64_t largestFile = 4 << 20;  // bytes
constexpr int lastCounter = 9999;

std::string templateName(int counter) {
    return counter == 0 ? "tavlo.lng" : "tavlo (" + std::to_string(counter) + ").lng";
}

}  // namespace

std::optional<std::string> readLanguageFile(const std::string& file) {
    return readFile(file, largestFile);
}

std::optional<std::string> writeLanguageTemplate(const Texts& texts, const std::string& folder) {
    for (int counter = 0; counter <= lastCounter; ++counter) {
        std::string path = joinPath(folder, templateName(counter), nativePathStyle());
        switch (writeNewFile(path, texts.languageFileTemplate())) {
            case Created::Done:
                return path;
            case Created::Exists:
                break;
            case Created::Failed:
                return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace tavlo
