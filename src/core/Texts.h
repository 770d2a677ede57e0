#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>

namespace tavlo {

/// Numbers of the messages and captions; a language file replaces them by these numbers.
enum class Text : int {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name cannot stand in parentheses
#define TAVLO_TEXT(number, name, english, russian) name = number,
#include "core/texts/all.inc"
#undef TAVLO_TEXT
};

enum class Language { English, Russian };

struct TextRow {
    Text number;
    std::string_view english;
    std::string_view russian;
};

/// In ascending order of numbers.
inline constexpr auto textTable = std::to_array<TextRow>({
#define TAVLO_TEXT(number, name, english, russian) {Text::name, english, russian},
#include "core/texts/all.inc"
#undef TAVLO_TEXT
});

/// Every text that a person sees, in one language, with replacements from a language file.
class Texts {
 public:
    explicit Texts(Language language = Language::English) : language_(language) {}

    /// Takes the lines `1006=text` of a language file; a line that is none of these is ignored, as
    /// is a number that the table does not have.
    void addReplacements(std::string_view languageFile);

    std::string get(Text text) const;

    /// With every "%1" replaced by the argument.
    std::string get(Text text, std::string_view argument) const;

    /// A language file of all texts as they are now, in the order of their numbers.
    std::string languageFileTemplate() const;

 private:
    Language language_;
    std::map<Text, std::string> replacements_;
};

/// The built-in table for a two-letter language: Russian for "ru", else English.
Language languageFor(std::string_view systemLanguage);

}  // namespace tavlo
