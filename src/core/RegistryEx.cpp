#include "core/RegistryEx.h"

#include <algorithm>
#include <optional>

#include "core/Numbers.h"
#include "platform/PlainText.h"

namespace tavlo {
namespace {

std::optional<int> numberOf(const RegistryValue& value) {
    if (const auto* number = std::get_if<std::uint32_t>(&value))
        return static_cast<std::int32_t>(*number);
    const auto& text = std::get<std::string>(value);
    if (sameAscii(text, "True")) return -1;
    if (sameAscii(text, "False")) return 0;
    return parseInteger(text);
}

std::string textOf(const RegistryValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    return std::to_string(static_cast<std::int32_t>(std::get<std::uint32_t>(value)));
}

SettingValue asTypeOf(const SettingValue& fallback, const RegistryValue& value) {
    if (std::holds_alternative<std::string>(fallback)) return textOf(value);
    const std::optional<int> number = numberOf(value);
    if (!number) return fallback;
    if (std::holds_alternative<bool>(fallback)) return *number != 0;
    if (std::holds_alternative<int>(fallback)) return *number;
    return static_cast<std::uint8_t>(std::clamp(*number, 0, 255));
}

RegistryValue stored(const SettingValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* flag = std::get_if<bool>(&value))
        return static_cast<std::uint32_t>(*flag ? -1 : 0);
    if (const auto* number = std::get_if<int>(&value)) return static_cast<std::uint32_t>(*number);
    return static_cast<std::uint32_t>(std::get<std::uint8_t>(value));
}

}  // namespace

RegistryKey RegistryEx::keyOf(std::string_view section) const {
    RegistryKey key{hive_, {}};
    if (!root_) key.path = "Software\\" + company_ + '\\' + appName_ + '\\' + version_;
    if (!root_ && !section.empty()) key.path += '\\';
    key.path += section;
    return key;
}

bool RegistryEx::DeleteSetting(std::string_view section, const std::string& key) {
    const RegistryKey place = keyOf(section);
    if (key.empty()) return registry_.deleteKey(place);
    if (key != "*") return registry_.deleteValue(place, key);
    const Registry::Batch oneWrite(registry_);
    bool done = true;
    for (const std::string& name : registry_.valueNames(place))
        done = registry_.deleteValue(place, name) && done;
    return done;
}

SettingValue RegistryEx::GetSetting(std::string_view section, const std::string& key,
                                    const SettingValue& fallback) const {
    const auto value = registry_.read(keyOf(section), key);
    return value ? asTypeOf(fallback, *value) : fallback;
}

bool RegistryEx::SaveSetting(std::string_view section, const std::string& key,
                             const SettingValue& value) {
    return registry_.write(keyOf(section), key, stored(value));
}

}  // namespace tavlo
