#pragma once

#include <string>
#include <vector>

namespace tavlo {

/// Captions with "&" before the letter that reaches each from the keyboard, no letter twice: the
/// first of a word where one is free, else any. A caption that has a "&" already keeps it, and its
/// letter is taken; one without a free letter gets none. "&&" is a "&" that is shown.
std::vector<std::string> withMnemonics(std::vector<std::string> captions);

/// A text as it is shown, with no letter marked: every "&" doubled.
std::string withoutMnemonic(std::string text);

}  // namespace tavlo
