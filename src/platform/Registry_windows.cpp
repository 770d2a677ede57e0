#include <windows.h>

#include <algorithm>

#include "platform/Registry.h"
#include "platform/Utf16.h"

namespace tavlo {
namespace {

constexpr DWORD longestName = 16384;  // UTF-16 units, the registry's own limit and its NUL

std::wstring wideOf(const std::string& text) {
    const std::u16string units = utf16FromUtf8(text);
    return {units.begin(), units.end()};
}

std::string utf8Of(const wchar_t* text, std::size_t length) {
    return utf8FromUtf16(std::u16string(text, text + length));
}

HKEY hiveHandle(std::uint32_t hive) {
    // Predefined handles are sign-extended 32-bit numbers.
    return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(hive)));
}

class OpenKey {
 public:
    OpenKey(const RegistryKey& key, REGSAM rights, bool create = false) {
        const std::wstring path = wideOf(key.path);
        const HKEY hive = hiveHandle(key.hive);
        const LSTATUS status = create ? RegCreateKeyExW(hive, path.c_str(), 0, nullptr, 0, rights,
                                                        nullptr, &handle_, nullptr)
                                      : RegOpenKeyExW(hive, path.c_str(), 0, rights, &handle_);
        if (status != ERROR_SUCCESS) handle_ = nullptr;
    }
    ~OpenKey() {
        if (handle_ != nullptr) RegCloseKey(handle_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    explicit operator bool() const { return handle_ != nullptr; }
    HKEY get() const { return handle_; }

 private:
    HKEY handle_ = nullptr;
};

std::string textOf(const std::vector<BYTE>& data) {
    std::u16string units(data.size() / 2, u'\0');
    std::copy_n(data.begin(), units.size() * 2, reinterpret_cast<BYTE*>(units.data()));
    while (!units.empty() && units.back() == u'\0') units.pop_back();
    return utf8FromUtf16(units);
}

std::optional<RegistryValue> valueOf(DWORD type, const std::vector<BYTE>& data) {
    if (type == REG_SZ || type == REG_EXPAND_SZ) return textOf(data);
    if (type != REG_DWORD || data.size() != sizeof(std::uint32_t)) return std::nullopt;
    return data[0] | static_cast<std::uint32_t>(data[1]) << 8 |
           static_cast<std::uint32_t>(data[2]) << 16 | static_cast<std::uint32_t>(data[3]) << 24;
}

bool setValue(HKEY key, const std::wstring& name, const RegistryValue& value) {
    if (const auto* number = std::get_if<std::uint32_t>(&value)) {
        const auto* data = reinterpret_cast<const BYTE*>(number);
        return RegSetValueExW(key, name.c_str(), 0, REG_DWORD, data, sizeof *number) ==
               ERROR_SUCCESS;
    }
    const std::wstring text = wideOf(std::get<std::string>(value));
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const auto* data = reinterpret_cast<const BYTE*>(text.c_str());
    return RegSetValueExW(key, name.c_str(), 0, REG_SZ, data, size) == ERROR_SUCCESS;
}

}  // namespace

// The registry stores each change at once, so there is nothing to gather.
class Registry::Store {};

Registry::Registry(const std::string&) {}
Registry::~Registry() = default;

std::optional<RegistryValue> Registry::read(const RegistryKey& key, const std::string& name) const {
    const OpenKey open(key, KEY_QUERY_VALUE);
    if (!open) return std::nullopt;
    const std::wstring wideName = wideOf(name);
    std::vector<BYTE> data(256);
    DWORD type = REG_NONE;
    LSTATUS status = ERROR_MORE_DATA;
    while (status == ERROR_MORE_DATA) {
        auto size = static_cast<DWORD>(data.size());
        status = RegQueryValueExW(open.get(), wideName.c_str(), nullptr, &type, data.data(), &size);
        data.resize(size);
    }
    if (status != ERROR_SUCCESS) return std::nullopt;
    return valueOf(type, data);
}

bool Registry::write(const RegistryKey& key, const std::string& name, const RegistryValue& value) {
    const OpenKey open(key, KEY_SET_VALUE, true);
    return open && setValue(open.get(), wideOf(name), value);
}

bool Registry::deleteValue(const RegistryKey& key, const std::string& name) {
    const OpenKey open(key, KEY_SET_VALUE);
    return open && RegDeleteValueW(open.get(), wideOf(name).c_str()) == ERROR_SUCCESS;
}

bool Registry::deleteKey(const RegistryKey& key) {
    if (key.path.empty()) return false;
    return RegDeleteTreeW(hiveHandle(key.hive), wideOf(key.path).c_str()) == ERROR_SUCCESS;
}

std::vector<std::string> Registry::valueNames(const RegistryKey& key) const {
    std::vector<std::string> names;
    const OpenKey open(key, KEY_QUERY_VALUE);
    if (!open) return names;
    std::wstring name(longestName, L'\0');
    for (DWORD i = 0;; ++i) {
        DWORD length = longestName;
        if (RegEnumValueW(open.get(), i, name.data(), &length, nullptr, nullptr, nullptr,
                          nullptr) != ERROR_SUCCESS)
            return names;
        names.push_back(utf8Of(name.data(), length));
    }
}

std::vector<std::string> Registry::subkeys(const RegistryKey& key) const {
    std::vector<std::string> names;
    const OpenKey open(key, KEY_ENUMERATE_SUB_KEYS);
    if (!open) return names;
    std::wstring name(longestName, L'\0');
    for (DWORD i = 0;; ++i) {
        DWORD length = longestName;
        if (RegEnumKeyExW(open.get(), i, name.data(), &length, nullptr, nullptr, nullptr,
                          nullptr) != ERROR_SUCCESS)
            return names;
        names.push_back(utf8Of(name.data(), length));
    }
}

void Registry::beginBatch() {}

bool Registry::endBatch() {
    return true;
}

}  // namespace tavlo
