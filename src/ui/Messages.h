#pragma once

#include <wx/window.h>

#include <string>
#include <vector>

#include "core/Texts.h"

namespace tavlo {

/// What went wrong, all of it in one list that can be copied.
void showFailures(wxWindow* parent, const Texts& texts, const std::vector<std::string>& lines);

/// A text of many lines in letters of one width.
void showPage(wxWindow* parent, const Texts& texts, Text title, const std::string& page);

/// The captions of a question's answers.
struct Answers {
    Text yes, no;
    bool isHarmless = true;  ///< else Enter calls it off
};

/// Asks; wxID_YES, wxID_NO or wxID_CANCEL.
int ask(wxWindow* parent, const Texts& texts, const std::string& question, const Answers& answers);

/// Asks for a plain yes; the answer is not to be given by accident.
bool confirm(wxWindow* parent, const Texts& texts, const std::string& question, Text yes);

}  // namespace tavlo
