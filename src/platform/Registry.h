#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavlo {

using RegistryValue = std::variant<std::string, std::uint32_t>;

/// A hive by its Windows handle number and a path below it, parts separated by "\".
struct RegistryKey {
    std::uint32_t hive = 0x80000001;  // HKEY_CURRENT_USER
    std::string path;
};

/// Typed values under keys, names compared without ASCII case: the Windows registry, or elsewhere
/// one text file. A failure answers false or nothing and leaves what was stored.
class Registry {
 public:
    /// The text file to use where there is no registry; empty stands for tavlo/settings.txt in the
    /// user's configuration folder. Windows does not look at it.
    explicit Registry(const std::string& file = {});
    ~Registry();
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    std::optional<RegistryValue> read(const RegistryKey& key, const std::string& name) const;

    /// Makes the key with everything above it when needed.
    bool write(const RegistryKey& key, const std::string& name, const RegistryValue& value);

    bool deleteValue(const RegistryKey& key, const std::string& name);

    /// Deletes the key with all keys below it; refuses a whole hive.
    bool deleteKey(const RegistryKey& key);

    std::vector<std::string> valueNames(const RegistryKey& key) const;

    /// The names of the keys directly below.
    std::vector<std::string> subkeys(const RegistryKey& key) const;

    /// While it lives, changes are gathered; `commit` or its end stores them in one go.
    class Batch {
     public:
        explicit Batch(Registry& registry) : registry_(registry) { registry_.beginBatch(); }
        ~Batch() { commit(); }
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

        /// False when what was gathered could not be stored; a second call does nothing.
        bool commit();

     private:
        Registry& registry_;
        bool open_ = true;
    };

 private:
    class Store;

    void beginBatch();
    bool endBatch();

    std::unique_ptr<Store> store_;
};

inline bool Registry::Batch::commit() {
    if (!open_) return true;
    open_ = false;
    return registry_.endBatch();
}

}  // namespace tavlo
