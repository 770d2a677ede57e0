#pragma once

#include <string>
#include <vector>

#include "core/RegistryEx.h"

namespace tavlo {

/// What the system's shell can hold of this program.
enum class ShellEntry {
    FolderVerb,       ///< opens a folder in it
    PlaylistVerb,     ///< copies the files of a playlist
    StartWithSystem,  ///< starts it when the user logs on
};
inline constexpr std::size_t shellEntryCount = 3;

/// Where the shell keeps its entries.
struct ShellPlaces {
    RegistryKey userClasses{0x80000001, R"(Software\Classes)"};  ///< this user's types of files
    RegistryKey allClasses{0x80000000, ""};                      ///< everybody's, only read
    /// programs that this user has chosen for types, only read
    RegistryKey choices{0x80000001,
                        R"(Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts)"};
    RegistryKey run{0x80000001, R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)"};
};

/// Puts the entries of this program into the shell, for this user alone, and takes them out.
class ShellIntegration {
 public:
    /// `program` is the full path of the program's file.
    ShellIntegration(Registry& registry, std::string program, ShellPlaces places = {})
        : registry_(registry), program_(std::move(program)), places_(std::move(places)) {}

    /// Whether the entry is there and starts this very program.
    bool isOn(ShellEntry entry) const;

    /// Writes the entry, or removes what `isOn` asks for. False when it could not be done.
    bool set(ShellEntry entry, bool on);

 private:
    std::string textOf(const RegistryKey& place, const std::string& below,
                       const std::string& name = {}) const;
    bool write(const RegistryKey& place, const std::string& below, const std::string& text);
    bool removeKey(const RegistryKey& place, const std::string& below);

    std::vector<std::string> playlistTypes() const;
    std::vector<std::string> verbsOf(ShellEntry entry) const;
    std::string command(ShellEntry entry) const;
    bool isVerbOn(const std::string& verb, ShellEntry entry) const;
    bool writeVerb(ShellEntry entry);
    bool removeVerbs(ShellEntry entry);
    bool makeOwnType();
    bool removeOwnType();
    bool setStart(bool on);

    Registry& registry_;
    std::string program_;
    ShellPlaces places_;
};

}  // namespace tavlo
