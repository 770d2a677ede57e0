#pragma once

#include <string>

#include "core/StartUp.h"
#include "support/MemorySink.h"
#include "support/TestProgress.h"
#include "support/TestRegistry.h"

namespace tavlo::test {

/// What a job needs, and what came of it.
struct JobRun {
    explicit JobRun(const std::string& startFolder, int page = 1252) : codePage(page) {
        options.mode = RunMode::Change;  // a window would open the folder of its settings
        options.startFolder = startFolder;
    }

    JobOptions options;
    const int codePage;
    TestRegistry test;
    RegistryEx store{test.registry()};
    Settings settings{store};
    const Texts texts;
    MemorySink output, messages;
    int code = -1;

    /// Runs it anew; what it says begins anew as well.
    int run(int (*job)(Services&)) {
        output.text.clear();
        messages.text.clear();
        ErrorReport errors(texts, messages);
        TestProgress progress;
        Services services{options, settings, texts,           errors,
                          output,  progress, progress.cancel, codePage};
        return code = job(services);
    }
    [[nodiscard]] bool says(const std::string& text) const {
        return output.text.find(text) != std::string::npos;
    }
    [[nodiscard]] bool warns(const std::string& text) const {
        return messages.text.find(text) != std::string::npos;
    }
};

}  // namespace tavlo::test
