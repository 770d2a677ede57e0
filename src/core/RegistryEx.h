#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "platform/Registry.h"

namespace tavlo {

/// A stored value with its type; a byte is kept in 0..255, a boolean is stored as -1 or 0.
using SettingValue = std::variant<std::string, bool, int, std::uint8_t>;

/// Values in sections below "Software\Company\AppName\Version" of one hive, or, as `Root`, in
/// sections that are whole keys of the hive.
class RegistryEx {
 public:
    explicit RegistryEx(Registry& registry) : registry_(registry) {}

    const std::string& Company() const { return company_; }
    void Company(std::string value) { company_ = std::move(value); }
    const std::string& AppName() const { return appName_; }
    void AppName(std::string value) { appName_ = std::move(value); }
    const std::string& Version() const { return version_; }
    void Version(std::string value) { version_ = std::move(value); }
    bool Root() const { return root_; }
    void Root(bool value) { root_ = value; }
    std::uint32_t RegistryClass() const { return hive_; }
    void RegistryClass(std::uint32_t hive) { hive_ = hive; }

    /// Deletes the value `key`; "*" deletes every value of the section; an empty key the section
    /// with all below it.
    bool DeleteSetting(std::string_view section, const std::string& key = {});

    /// The stored value in the type of `fallback`, which comes back when the value is missing or
    /// cannot be read as that type.
    SettingValue GetSetting(std::string_view section, const std::string& key,
                            const SettingValue& fallback = std::string()) const;

    bool SaveSetting(std::string_view section, const std::string& key, const SettingValue& value);

    /// For saving many values in one go.
    Registry::Batch batch() { return Registry::Batch(registry_); }

 private:
    RegistryKey keyOf(std::string_view section) const;

    Registry& registry_;
    std::string company_ = "My Company";
    std::string appName_ = "My Application";
    std::string version_ = "1.0";
    bool root_ = false;
    std::uint32_t hive_ = 0x80000001;  // HKEY_CURRENT_USER
};

}  // namespace tavlo
