#include "core/ErrorReport.h"

#include "platform/PlainText.h"

namespace tavlo {

void ErrorReport::report(Text text, std::string_view argument) {
    reportLine(texts_.get(text, argument));
}

void ErrorReport::note(Text text, std::string_view argument) {
    noteLine(texts_.get(text, argument));
}

void ErrorReport::reportLine(std::string_view line) {
    ++count_;
    noteLine(line);
}

void ErrorReport::noteLine(std::string_view line) {
    sink_.write(withoutControls(std::string(line)) + '\n');
}

}  // namespace tavlo
