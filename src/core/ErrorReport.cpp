#include "core/ErrorReport.h"

namespace tavlo {

void ErrorReport::report(Text text, std::string_view argument) {
    ++count_;
    note(text, argument);
}

void ErrorReport::note(Text text, std::string_view argument) {
    sink_.write(texts_.get(text, argument) + '\n');
}

}  // namespace tavlo
