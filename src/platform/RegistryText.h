#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace tavlo {

/// The text form of a registry: `[HKEY_CURRENT_USER\key]` lines, below each `"name"=number` and
/// `"name"="text"` lines. Lines it does not understand stay where they are.
class RegistryText {
 public:
    RegistryText() = default;
    explicit RegistryText(std::string_view text);

    std::string text() const;

    std::optional<RegistryValue> read(const RegistryKey& key, const std::string& name) const;
    void write(const RegistryKey& key, const std::string& name, const RegistryValue& value);
    bool deleteValue(const RegistryKey& key, const std::string& name);
    bool deleteKey(const RegistryKey& key);
    std::vector<std::string> valueNames(const RegistryKey& key) const;
    std::vector<std::string> subkeys(const RegistryKey& key) const;

 private:
    struct Line {
        std::string name;
        std::optional<RegistryValue> value;  // none: a line kept as it stands
        std::string raw;
    };
    struct Section {
        std::optional<std::string> path;  // hive's name and key; none: a heading kept as it stands
        std::string raw;
        std::vector<Line> lines;
    };

    std::optional<std::size_t> sectionOf(const RegistryKey& key) const;
    static std::optional<std::size_t> lineOf(const Section& section, const std::string& name);
    Section& sectionFor(const RegistryKey& key);

    std::vector<Section> sections_{Section{}};  // the first stands above all headings
};

}  // namespace tavlo
