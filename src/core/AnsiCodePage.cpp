#include "core/AnsiCodePage.h"

#include "core/Numbers.h"
#include "platform/CodePage.h"
#include "platform/Environment.h"

namespace tavlo {

int chooseAnsiCodePage(const std::optional<std::string>& environment, int setting, int system) {
    const int wanted = parseInteger(environment.value_or("")).value_or(0);
    if (wanted > 0) return wanted;
    return setting > 0 ? setting : system;
}

int ansiCodePage(const Settings& settings) {
    return chooseAnsiCodePage(environmentVariable("TAVLO_ANSI_CODE_PAGE"),
                              settings.number(Setting::AnsiCodePage), systemCodePage());
}

}  // namespace tavlo
