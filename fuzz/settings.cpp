#include <algorithm>

#include "core/ByteCursor.h"
#include "fuzz/Promise.h"
#include "platform/RegistryText.h"

using namespace tavlo;

namespace {
const RegistryKey key{0x80000001, "Software\\Tavlo"};

void checkWrite(RegistryText settings, const std::string& name, const RegistryValue& value) {
    settings.write(key, name, value);
    promise(settings.read(key, name) == value);
    const RegistryText again(settings.text());
    promise(again.read(key, name) == value);
    promise(again.valueNames(key) == settings.valueNames(key));
    promise(settings.deleteValue(key, name) && !settings.read(key, name));
    settings.deleteKey(key);
    promise(RegistryText(settings.text()).valueNames(key).empty());
}
}  // namespace

// The input: a value's name, NUL, its text, NUL, and the settings file that it is written into.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input = textOf({data, size});
    const std::string name(takePiece(input));
    const std::string text(takePiece(input));
    const RegistryText settings(input);
    const std::string stored = settings.text();
    promise(RegistryText(stored).text() == stored);
    for (const std::string& sub : settings.subkeys({key.hive, "Software"})) {
        promise(sub.find('\\') == std::string::npos);
    }
    checkWrite(settings, name, text);
    checkWrite(settings, name, static_cast<std::uint32_t>(size * 0x01010101U));
    return 0;
}
