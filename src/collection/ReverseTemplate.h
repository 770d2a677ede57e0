#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/PathText.h"
#include "platform/CodePage.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// A template of names read backwards: the text that stands at a placeholder becomes the field.
/// %N %A %T %M %Z %Y %G %L and %C as in a template of names, %0 skips, "\" is a folder's border.
class ReverseTemplate {
 public:
    static constexpr std::size_t mostTokens = 50;

    struct Token {
        std::string text;  ///< "%" and a letter, "%\" for a border, else the text between
        bool isPlaceholder = false;
    };

    ReverseTemplate() = default;
    explicit ReverseTemplate(std::string_view nameTemplate) {
        CompileReverseTemplate(nameTemplate);
    }

    /// Cuts the template into tokens; what follows the fiftieth is left out.
    void CompileReverseTemplate(std::string_view nameTemplate);
    [[nodiscard]] const std::vector<Token>& tokens() const { return tokens_; }
    /// Whether it can set any field.
    [[nodiscard]] bool hasFields() const;

    /// A path with the levels that the template reads as UTF-8 text. Nothing where one of them is
    /// no text, neither as it is nor in the code page.
    [[nodiscard]] std::optional<std::string> decodedPath(std::string_view path, PathStyle style,
                                                         const CodePage& ansi) const;

    /// Reads a file's full path; levels above the template's first one are left alone. Fields that
    /// the path has no place for stay; false where it has none for any.
    bool RetrieveTags(std::string_view path, PathStyle style, ID3tag& record) const;
    /// The same of a line of text, in which "\" or "/" stands between folders.
    bool retrieveFromText(std::string_view text, ID3tag& record) const;

 private:
    bool readPath(std::string_view path, PathStyle style, ID3tag& record) const;
    bool readLevel(std::string_view text, std::size_t first, std::size_t last,
                   ID3tag& record) const;

    std::vector<Token> tokens_;
};

/// Sets the field of a placeholder; "_" counts as a blank, and an empty text empties the field.
/// False where the placeholder has none.
bool SetFieldFromToken(ID3tag& record, std::string_view token, std::string_view text);

}  // namespace tavlo
