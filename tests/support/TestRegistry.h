#pragma once

#include <random>
#include <string>

#include "platform/Environment.h"
#include "platform/Registry.h"
#include "support/TempFolder.h"

namespace tavlo::test {

/// A key of its own for one test, taken away afterwards; where the store is a file, that file is in
/// a temporary folder.
class TestRegistry {
 public:
    TestRegistry() { registry().deleteKey(root()); }
    ~TestRegistry() { registry().deleteKey(root()); }
    TestRegistry(const TestRegistry&) = delete;
    TestRegistry& operator=(const TestRegistry&) = delete;

    /// Another instance on the same store.
    std::string file() const { return folder.path("settings.txt"); }
    Registry& registry() { return registry_; }
    /// Another one in every process: several run at once.
    static std::string company() {
        static const std::string word = "TavloTest" + std::to_string(std::random_device{}());
        return word;
    }
    static RegistryKey root() { return {0x80000001, "Software\\" + company()}; }
    static RegistryKey key(const std::string& below) {
        return {0x80000001, "Software\\" + company() + "\\" + below};
    }
    static bool usesFile() { return !programCommandLine(0, nullptr).text.has_value(); }

    TempFolder folder;

 private:
    Registry registry_{file()};
};

}  // namespace tavlo::test
