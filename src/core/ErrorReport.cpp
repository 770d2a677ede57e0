#include "core/ErrorReport.h"

#include "platform/PlainText.h"

namespace tavlo {

void ErrorReport::report(Text text, std::string_view argument) {
    ++count_;
    note(text, argument);
}

void ErrorReport::note(Text text, std::string_view argument) {
    sink_.write(texts_.get(text, withoutControls(std::string(argument))) + '\n');
}

}  // namespace tavlo
