#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "platform/Environment.h"
#include "platform/SystemOpen.h"
#include "support/ChildProgram.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

/// A desktop of which only the opener is there: it notes what it is asked to open.
class Opener {
 public:
    Opener() {
        const std::string script =
            folder.write("xdg-open",
                         "#!/bin/sh\nprintf '%s.' \"$#\" \"$1\" > \"${0%/*}/new\"\n"
                         "mv \"${0%/*}/new\" \"${0%/*}/asked\"\n");
        ::chmod(script.c_str(), 0700);
        ::setenv("PATH", (folder.path() + ":" + before_).c_str(), 1);
    }
    Opener(const Opener&) = delete;
    Opener& operator=(const Opener&) = delete;
    ~Opener() { ::setenv("PATH", before_.c_str(), 1); }

    bool wasAskedFor(const std::string& path) const {
        return comesTrue([&] { return folder.read("asked") == "1." + path + "."; });
    }

    TempFolder folder;

 private:
    std::string before_ = environmentVariable("PATH").value_or("");
};

TEST(SystemOpenOnPosix, TheDesktopOpensFilesAndTheirFolders) {
    const Opener opener;
    const std::string song = opener.folder.write("a \"b\" $c.mp3", "");
    EXPECT_TRUE(openWithSystem(song));
    EXPECT_TRUE(opener.wasAskedFor(song));
    EXPECT_TRUE(showInFolder(song));
    EXPECT_TRUE(opener.wasAskedFor(opener.folder.path()));
}

}  // namespace
}  // namespace tavlo::test
