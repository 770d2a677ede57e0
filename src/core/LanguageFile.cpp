#include "core/LanguageFile.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace tavlo {
namespace {

constexpr std::uintmax_t largestFile = 4 << 20;  // bytes
constexpr int lastCounter = 9999;

using std::filesystem::path;

path pathOf(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}

std::string textOf(const path& file) {
    const std::u8string text = file.u8string();
    return {text.begin(), text.end()};
}

std::string templateName(int counter) {
    return counter == 0 ? "tavlo.lng" : "tavlo (" + std::to_string(counter) + ").lng";
}

bool isFree(const path& file) {
    std::error_code error;
    const auto status = std::filesystem::symlink_status(file, error);
    return status.type() == std::filesystem::file_type::not_found;
}

bool writeNew(const path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    return stream.good();
}

}  // namespace

std::optional<std::string> readLanguageFile(const std::string& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(pathOf(file), error);
    if (error || size > largestFile) return std::nullopt;
    std::string text(static_cast<std::size_t>(size), '\0');
    std::ifstream stream(pathOf(file), std::ios::binary);
    if (!stream.read(text.data(), static_cast<std::streamsize>(size))) return std::nullopt;
    return text;
}

std::optional<std::string> writeLanguageTemplate(const Texts& texts, const std::string& folder) {
    for (int counter = 0; counter <= lastCounter; ++counter) {
        const path file = pathOf(folder) / templateName(counter);
        if (!isFree(file)) continue;
        if (!writeNew(file, texts.languageFileTemplate())) return std::nullopt;
        return textOf(file);
    }
    return std::nullopt;
}

}  // namespace tavlo
