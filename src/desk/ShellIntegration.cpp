#include "desk/ShellIntegration.h"

#include <algorithm>

namespace tavlo {

namespace {
constexpr const char* folderVerb = "Folder\\shell\\Browse with Tavlo";
constexpr const char* playlistVerb = "\\shell\\Tavlo Copy playlist";
constexpr const char* commandKey = "\\command";
constexpr const char* playlistEnding = ".m3u";
constexpr const char* ownPlaylistType = "Tavlo.Playlist";
constexpr const char* startValue = "Tavlo Audio Desk";

RegistryEx storeOf(Registry& registry, const RegistryKey& place) {
    RegistryEx store(registry);
    store.Root(true);
    store.RegistryClass(place.hive);
    return store;
}

std::string sectionOf(const RegistryKey& place, const std::string& below) {
    if (place.path.empty() || below.empty()) return place.path + below;
    return place.path + '\\' + below;
}
}  // namespace

std::string ShellIntegration::textOf(const RegistryKey& place, const std::string& below,
                                     const std::string& name) const {
    return std::get<std::string>(
        storeOf(registry_, place).GetSetting(sectionOf(place, below), name, std::string()));
}

bool ShellIntegration::write(const RegistryKey& place, const std::string& below,
                             const std::string& text) {
    return storeOf(registry_, place).SaveSetting(sectionOf(place, below), {}, text);
}

bool ShellIntegration::removeKey(const RegistryKey& place, const std::string& below) {
    return storeOf(registry_, place).DeleteSetting(sectionOf(place, below));
}

// The type that counts comes first: what the user has chosen, then what this user's types say, then
// everybody's.
std::vector<std::string> ShellIntegration::playlistTypes() const {
    std::vector<std::string> types;
    for (std::string type :
         {textOf(places_.choices, playlistEnding + std::string("\\UserChoice"), "ProgId"),
          textOf(places_.userClasses, playlistEnding), textOf(places_.allClasses, playlistEnding),
          std::string(ownPlaylistType)})
        if (!type.empty() && std::ranges::find(types, type) == types.end())
            types.push_back(std::move(type));
    return types;
}

std::vector<std::string> ShellIntegration::verbsOf(ShellEntry entry) const {
    if (entry == ShellEntry::FolderVerb) return {folderVerb};
    std::vector<std::string> verbs = playlistTypes();
    for (std::string& type : verbs) type += playlistVerb;
    return verbs;
}

std::string ShellIntegration::command(ShellEntry entry) const {
    const std::string start = '"' + program_ + '"';
    return start + (entry == ShellEntry::PlaylistVerb ? " /copy \"%1\"" : " \"%1\"");
}

bool ShellIntegration::isVerbOn(const std::string& verb, ShellEntry entry) const {
    return textOf(places_.userClasses, verb + commandKey) == command(entry);
}

bool ShellIntegration::isOn(ShellEntry entry) const {
    if (entry == ShellEntry::StartWithSystem)
        return textOf(places_.run, {}, startValue) == program_;
    return isVerbOn(verbsOf(entry).front(), entry);
}

bool ShellIntegration::set(ShellEntry entry, bool on) {
    Registry::Batch oneWrite(registry_);
    const bool done = entry == ShellEntry::StartWithSystem ? setStart(on)
                      : on                                 ? writeVerb(entry)
                                                           : removeVerbs(entry);
    return oneWrite.commit() && done;
}

bool ShellIntegration::writeVerb(ShellEntry entry) {
    const std::string verb = verbsOf(entry).front();
    if (verb.starts_with(ownPlaylistType) && !makeOwnType()) return false;
    return write(places_.userClasses, verb + commandKey, command(entry));
}

// The type may have changed since the verb was written, so it may be at each of them.
bool ShellIntegration::removeVerbs(ShellEntry entry) {
    bool done = true;
    for (const std::string& verb : verbsOf(entry)) {
        if (!isVerbOn(verb, entry)) continue;
        const bool isOwnType = verb.starts_with(ownPlaylistType);
        done = (isOwnType ? removeOwnType() : removeKey(places_.userClasses, verb)) && done;
    }
    return done;
}

bool ShellIntegration::makeOwnType() {
    return write(places_.userClasses, playlistEnding, ownPlaylistType);
}

bool ShellIntegration::removeOwnType() {
    const bool done = removeKey(places_.userClasses, ownPlaylistType);
    if (textOf(places_.userClasses, playlistEnding) != ownPlaylistType) return done;
    const RegistryKey ending{places_.userClasses.hive,
                             sectionOf(places_.userClasses, playlistEnding)};
    return registry_.deleteValue(ending, {}) && done;
}

bool ShellIntegration::setStart(bool on) {
    if (!on && !isOn(ShellEntry::StartWithSystem)) return true;
    RegistryEx store = storeOf(registry_, places_.run);
    return on ? store.SaveSetting(places_.run.path, startValue, program_)
              : store.DeleteSetting(places_.run.path, startValue);
}

}  // namespace tavlo
