#include "desk/OptionPages.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/TextCase.h"
#include "desk/ToolUses.h"

namespace tavlo {

namespace {
constexpr OptionRow heading(Text caption) {
    return {OptionKind::Heading, caption};
}
constexpr OptionRow flag(Setting setting, Text caption) {
    return {OptionKind::Flag, caption, setting};
}
constexpr OptionRow text(OptionKind kind, Setting setting, Text caption) {
    return {kind, caption, setting};
}
constexpr OptionRow number(Setting setting, Text caption, int lowest, int highest) {
    OptionRow row{OptionKind::Number, caption, setting};
    row.lowest = lowest;
    row.highest = highest;
    return row;
}
constexpr OptionRow choice(Setting setting, Text caption, std::span<const OptionChoice> choices) {
    OptionRow row{OptionKind::Choice, caption, setting};
    row.choices = choices;
    return row;
}
constexpr OptionRow shell(ShellEntry entry, Text caption) {
    OptionRow row{OptionKind::Shell, caption};
    row.entry = entry;
    return row.onWindows();
}

constexpr auto priorities = std::to_array<OptionChoice>({
    {"Idle", Text::OptPriorityIdle},
    {"Normal", Text::OptPriorityNormal},
    {"High", Text::OptPriorityHigh},
});
constexpr auto languages = std::to_array<OptionChoice>({
    {"", Text::OptLanguageSystem},
    {"en", Text::OptLanguageEnglish},
    {"ru", Text::OptLanguageRussian},
});
constexpr auto codePages = std::to_array<OptionChoice>({
    {"0", Text::OptCodePageSystem},
    {"1250", Text::OptCodePage1250},
    {"1251", Text::OptCodePage1251},
    {"1252", Text::OptCodePage1252},
    {"1253", Text::OptCodePage1253},
    {"1254", Text::OptCodePage1254},
    {"1255", Text::OptCodePage1255},
    {"1256", Text::OptCodePage1256},
    {"1257", Text::OptCodePage1257},
    {"1258", Text::OptCodePage1258},
    {"932", Text::OptCodePage932},
    {"936", Text::OptCodePage936},
    {"949", Text::OptCodePage949},
    {"950", Text::OptCodePage950},
});
constexpr auto monkeyLevels = std::to_array<OptionChoice>({
    {"1", Text::OptMonkeyFast},
    {"2", Text::OptMonkeyNormal},
    {"3", Text::OptMonkeyHigh},
    {"4", Text::OptMonkeyExtra},
});

constexpr std::array generalRows{
    flag(Setting::StartupFolderEn, Text::OptStartupFolderEn),
    text(OptionKind::Folder, Setting::StartupFolder, Text::OptStartupFolder)
        .when(Setting::StartupFolderEn)
        .needed(),
    flag(Setting::TargetFolderEn, Text::OptTargetFolderEn),
    text(OptionKind::Folder, Setting::TargetFolderPath, Text::OptTargetFolder)
        .when(Setting::TargetFolderEn)
        .needed(),
    flag(Setting::FilePropertiesOnDblClick, Text::OptDoubleClick).with(Text::OptDoubleClickTip),
    flag(Setting::AutoTagsUpdate, Text::OptAutoTagsUpdate).with(Text::OptAutoTagsUpdateTip),
    flag(Setting::DeleteToRecycleBin, Text::OptRecycleBin),
    choice(Setting::Priority, Text::OptPriority, priorities).with(Text::OptPriorityTip),
};

constexpr std::array windowRows{
    heading(Text::OptShown),
    flag(Setting::MainTree, Text::OptTree),
    flag(Setting::MainTagEditor, Text::OptTagEditor),
    flag(Setting::ShowAlbumArt, Text::OptAlbumArt),
    flag(Setting::MainTargetFolder, Text::OptTargetBar),
    flag(Setting::MainSubfolders, Text::OptSubfolders),
    heading(Text::OptLook),
    flag(Setting::MainAutoSize, Text::OptAutoSize),
    flag(Setting::AlphaEnabled, Text::OptAlpha),
    number(Setting::AlphaLevel, Text::OptAlphaLevel, 128, 255).when(Setting::AlphaEnabled),
};

constexpr std::array languageRows{
    choice(Setting::InterfaceLanguage, Text::OptLanguage, languages),
    flag(Setting::LangFileEn, Text::OptLangFileEn),
    text(OptionKind::File, Setting::LangFile, Text::OptLangFile)
        .with(Text::OptLangFileTip)
        .when(Setting::LangFileEn)
        .needed(),
};

constexpr std::array tagRows{
    heading(Text::OptMp3Tags),
    flag(Setting::EnableID3v1Tags, Text::OptId3v1),
    flag(Setting::EnableID3v2Tags, Text::OptId3v2),
    flag(Setting::EnableID3v24, Text::OptId3v24)
        .with(Text::OptId3v24Tip)
        .when(Setting::EnableID3v2Tags),
    flag(Setting::EnableID3v2Unicode, Text::OptId3v2Unicode)
        .with(Text::OptId3v2UnicodeTip)
        .when(Setting::EnableID3v2Tags),
    flag(Setting::EnableAPE2Tags, Text::OptApe2),
    heading(Text::OptAllFormats),
    flag(Setting::PreserveFileTimes, Text::OptFileTimes),
    choice(Setting::AnsiCodePage, Text::OptCodePage, codePages).with(Text::OptCodePageTip),
};

constexpr std::array nameRows{
    text(OptionKind::Line, Setting::RenameTemplateDef, Text::OptRenameTemplate)
        .with(Text::OptTemplateTip)
        .needed(),
    text(OptionKind::Line, Setting::TAGSRenTemplate, Text::OptRename2Template)
        .with(Text::OptTemplateTip)
        .needed(),
    flag(Setting::TransliteByGOST, Text::OptGost).with(Text::OptGostTip),
};

constexpr std::array conversionRows{
    flag(Setting::BeginnerMode, Text::OptBeginner).with(Text::OptBeginnerTip),
    flag(Setting::BitrateRise, Text::OptBitrateRise).when(Setting::BeginnerMode, false),
    flag(Setting::TemporaryWavProcessing, Text::OptTemporaryWav).when(Setting::BeginnerMode, false),
    flag(Setting::PopupMonitor, Text::OptPopupMonitor).when(Setting::BeginnerMode, false),
    flag(Setting::ShowExecWindows, Text::OptShowExec)
        .when(Setting::BeginnerMode, false)
        .onWindows(),
    flag(Setting::DeleteAfterCompress, Text::OptDeleteWav).with(Text::OptDeleteTip),
    flag(Setting::DeleteAfterReCompress, Text::OptDeleteCompressed).with(Text::OptDeleteTip),
};

constexpr int mostPercent = 100;
constexpr std::array processingRows{
    flag(Setting::Trim, Text::OptTrim),
    flag(Setting::ReduceLevel, Text::OptReduce).with(Text::OptReduceTip),
    flag(Setting::Normalize, Text::OptNormalize),
    number(Setting::NormalizeLevel, Text::OptNormalizeLevel, 1, mostPercent)
        .when(Setting::Normalize),
    number(Setting::NormalizeAbove, Text::OptNormalizeAbove, 0, mostPercent)
        .when(Setting::Normalize),
    number(Setting::NormalizeBelow, Text::OptNormalizeBelow, 0, mostPercent)
        .when(Setting::Normalize),
    flag(Setting::NormalizeSeparately, Text::OptNormalizeSeparately).when(Setting::Normalize),
};

// FAAC's own qualities end here.
constexpr int bestFaac = 500;
constexpr std::array encoderRows{
    heading(Text::OptOffered),
    flag(Setting::EnableLAME, Text::OptLame),
    flag(Setting::EnableLAME393, Text::OptLame393)
        .with(Text::OptLame393Tip)
        .when(Setting::EnableLAME),
    flag(Setting::EnableOGG, Text::OptOgg),
    flag(Setting::EnableMPC, Text::OptMpc),
    flag(Setting::EnableMPCSV8, Text::OptMpcSv8).with(Text::OptMpcSv8Tip).when(Setting::EnableMPC),
    flag(Setting::EnableMP4faac, Text::OptFaac),
    number(Setting::FAACModeDef, Text::OptFaacMode, 1, bestFaac)
        .with(Text::OptFaacModeTip)
        .when(Setting::EnableMP4faac),
    flag(Setting::EnableMP4nero, Text::OptNero),
    flag(Setting::EnableALAC, Text::OptAlac),
    flag(Setting::EnableFLAC, Text::OptFlac),
    number(Setting::FLACModeDef, Text::OptFlacLevel, 0, 8)
        .with(Text::OptFlacLevelTip)
        .when(Setting::EnableFLAC),
    flag(Setting::EnableWavPack, Text::OptWavPack),
    flag(Setting::EnableMonkeyAudio, Text::OptMonkey),
    choice(Setting::MonkeyModeDef, Text::OptMonkeyLevel, monkeyLevels)
        .when(Setting::EnableMonkeyAudio),
    flag(Setting::WMAEncoding, Text::OptWma).onWindows(),
    heading(Text::OptDecoders),
    flag(Setting::SeparateMP3Decoder, Text::OptLameDecoder).with(Text::OptLameDecoderTip),
};

using PresetRows = std::array<OptionRow, 9>;
constexpr std::size_t rowsOfPreset = 3;

// The names and codes of an encoder's presets stand one behind the other in the settings.
constexpr PresetRows presetRows(Setting first, std::array<std::string_view, 6> names) {
    constexpr std::array headings{Text::OptPreset1, Text::OptPreset2, Text::OptPreset3};
    auto rows = [&]<std::size_t... place>(std::index_sequence<place...>) {
        return PresetRows{heading(headings[place / rowsOfPreset])...};
    }
    (std::make_index_sequence<PresetRows().size()>());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool isName = i % 2 == 0;
        const auto setting = static_cast<Setting>(static_cast<std::size_t>(first) + i);
        OptionRow& row = rows[i / 2 * rowsOfPreset + i % 2 + 1];
        row = text(OptionKind::Line, setting, isName ? Text::OptPresetName : Text::OptPresetCode)
                  .with(isName ? Text::OptPresetNameTip : Text::OptPresetCodeTip);
        row.name = names[i];
    }
    return rows;
}
constexpr PresetRows lameRows =
    presetRows(Setting::LamePreset1Name, {"txtPresetName1", "txtPresetCode1", "txtPresetName2",
                                          "txtPresetCode2", "txtPresetName3", "txtPresetCode3"});
constexpr PresetRows oggRows =
    presetRows(Setting::OggPreset1Name, {"txtPresetName4", "txtPresetCode4", "txtPresetName5",
                                         "txtPresetCode5", "txtPresetName6", "txtPresetCode6"});
constexpr PresetRows mpcRows =
    presetRows(Setting::MpcPreset1Name, {"txtPresetName7", "txtPresetCode7", "txtPresetName8",
                                         "txtPresetCode8", "txtPresetName9", "txtPresetCode9"});
constexpr PresetRows faacRows = presetRows(
    Setting::FAACPreset1Name, {"txtFAACPresetName", "txtFAACPresetCode", "txtFAACPresetName2",
                               "txtFAACPresetCode2", "txtFAACPresetName3", "txtFAACPresetCode3"});
constexpr PresetRows neroRows = presetRows(
    Setting::NeroPreset1Name, {"txtNEROPresetName", "txtNEROPresetCode", "txtNEROPresetName2",
                               "txtNEROPresetCode2", "txtNEROPresetName3", "txtNEROPresetCode3"});

constexpr OptionRow wmaFlag(Setting setting) {
    return flag(setting, Text::OptPresetEnabled).with(Text::OptPresetProfileTip).onWindows();
}
constexpr OptionRow wmaName(Setting setting, Setting enabled) {
    return text(OptionKind::Line, setting, Text::OptPresetName)
        .with(Text::OptPresetNameTip)
        .when(enabled)
        .onWindows();
}
constexpr std::array wmaRows{
    heading(Text::OptPreset1).onWindows(),
    wmaFlag(Setting::WMAPreset1Enabled),
    wmaName(Setting::WMAPreset1Name, Setting::WMAPreset1Enabled),
    heading(Text::OptPreset2).onWindows(),
    wmaFlag(Setting::WMAPreset2Enabled),
    wmaName(Setting::WMAPreset2Name, Setting::WMAPreset2Enabled),
    heading(Text::OptPreset3).onWindows(),
    wmaFlag(Setting::WMAPreset3Enabled),
    wmaName(Setting::WMAPreset3Name, Setting::WMAPreset3Enabled),
};

constexpr std::array playerRows{
    flag(Setting::PlayerEn, Text::OptPlayerEn).with(Text::OptPlayerEnTip),
    text(OptionKind::Program, Setting::PlayerPath, Text::OptPlayerPath)
        .when(Setting::PlayerEn)
        .needed(),
    text(OptionKind::Line, Setting::PlayerPlayback, Text::OptPlayerPlayback)
        .with(Text::OptPlayerTip)
        .when(Setting::PlayerEn),
    text(OptionKind::Line, Setting::PlayerEnqueue, Text::OptPlayerEnqueue)
        .with(Text::OptPlayerTip)
        .when(Setting::PlayerEn),
};

constexpr std::array systemRows{
    heading(Text::OptShell).onWindows(),
    shell(ShellEntry::FolderVerb, Text::OptFolderVerb),
    shell(ShellEntry::PlaylistVerb, Text::OptPlaylistVerb).with(Text::OptPlaylistVerbTip),
    shell(ShellEntry::StartWithSystem, Text::OptStartWithSystem),
    heading(Text::OptMissingTools),
    OptionRow{OptionKind::Tools, Text::OptMissingTools}.with(Text::OptMissingToolsTip),
};

constexpr std::array pages{
    OptionPage{Text::OptPageGeneral, generalRows},
    OptionPage{Text::OptPageWindow, windowRows},
    OptionPage{Text::OptPageLanguage, languageRows},
    OptionPage{Text::OptPageTags, tagRows},
    OptionPage{Text::OptPageNames, nameRows},
    OptionPage{Text::OptPagePlayer, playerRows},
    OptionPage{Text::OptPageConversion, conversionRows},
    OptionPage{Text::OptPageProcessing, processingRows},
    OptionPage{Text::OptPageEncoders, encoderRows},
    OptionPage{Text::OptPageLame, lameRows},
    OptionPage{Text::OptPageOgg, oggRows},
    OptionPage{Text::OptPageMpc, mpcRows},
    OptionPage{Text::OptPageFaac, faacRows},
    OptionPage{Text::OptPageNero, neroRows},
    OptionPage{Text::OptPageWma, wmaRows},
    OptionPage{Text::OptPageSystem, systemRows},
};

constexpr auto settingsWithoutRow = std::to_array<Setting>({
    // What windows remember of themselves: places, columns, what was typed last.
    Setting::CurrentFolder,
    Setting::MainTB,
    Setting::MainL,
    Setting::MainT,
    Setting::MainW,
    Setting::MainH,
    Setting::MainWS,
    Setting::OptL,
    Setting::OptT,
    Setting::FInfoL,
    Setting::FInfoT,
    Setting::MainColW,
    Setting::MainColP,
    Setting::MainColV,
    Setting::MainSort,
    Setting::TAGSRevTemplate,
    Setting::TAGSRenFormat,
    Setting::TAGSSubfolders,
    Setting::TAGSRenType,
    Setting::TAGSRenMask,
    Setting::TAGSAllFirstCaps,
    Setting::TAGSAllTags,
    Setting::TAGSShowFiles,
    // Features that there are not yet: looking for new versions, the net, lists named by templates,
    // ripping CDs, portable players, hybrid WavPack.
    Setting::LastVersionCheck,
    Setting::LastUpdatePrompt,
    Setting::ProxyEnabled,
    Setting::ProxyServer,
    Setting::ProxyPort,
    Setting::PlaylistTemplate,
    Setting::CDSourceFolder,
    Setting::CDTargetFolder,
    Setting::CDBitrate,
    Setting::Eac,
    Setting::EacPath,
    Setting::CDMXCFolders,
    Setting::CDAllAlbums,
    Setting::CDCDDrive,
    Setting::CDServer,
    Setting::CDCDTEXT,
    Setting::CDMCase,
    Setting::PORTABLEMP3Mode,
    Setting::PORTABLEWMAMode,
    Setting::EnableWavPackHybrid,
    Setting::EnableMPCm,
    // Say the same as a setting that has a row.
    Setting::EnableWMA,
    Setting::OggEncoding,
    Setting::NeroEncoding,
});

constexpr bool fitsSetting(const OptionRow& row) {
    const SettingRow& setting = settingRow(row.setting);
    switch (setting.kind) {
        case SettingKind::Boolean:
        case SettingKind::TextBoolean:
            return row.kind == OptionKind::Flag;
        case SettingKind::Integer:
        case SettingKind::Byte:
            return row.kind == OptionKind::Choice ||
                   (row.kind == OptionKind::Number && row.lowest >= setting.lowest &&
                    row.highest <= setting.highest && row.lowest <= setting.number &&
                    setting.number <= row.highest);
        case SettingKind::Text:
            break;
    }
    return row.kind != OptionKind::Flag && row.kind != OptionKind::Number;
}

// A new setting gets a row, or a place among those without one.
constexpr bool everySettingHasItsPlace() {
    std::array<int, settingsTable.size()> places{};
    for (const Setting setting : settingsWithoutRow) ++places[static_cast<std::size_t>(setting)];
    for (const OptionPage& page : pages)
        for (const OptionRow& row : page.rows) {
            if (!row.hasSetting()) continue;
            if (!fitsSetting(row)) return false;
            ++places[static_cast<std::size_t>(row.setting)];
        }
    return std::ranges::all_of(places, [](int count) { return count == 1; });
}
static_assert(everySettingHasItsPlace());

std::string_view prefixOf(OptionKind kind) {
    switch (kind) {
        case OptionKind::Heading:
            return "lbl";
        case OptionKind::Flag:
        case OptionKind::Shell:
            return "chk";
        case OptionKind::Choice:
            return "cmb";
        case OptionKind::Tools:
            return "lst";
        default:
            return "txt";
    }
}

std::vector<std::string> lowerWords(std::string_view words) {
    std::vector<std::string> result;
    for (const char c : lowerCase(words) + ' ') {
        if (result.empty()) result.emplace_back();
        if (c != ' ') result.back() += c;
        if (c == ' ' && !result.back().empty()) result.emplace_back();
    }
    result.pop_back();
    return result;
}

std::string textsOf(const Texts& texts, const OptionRow& row) {
    std::string all = texts.get(row.caption);
    if (row.tip) all += '\n' + texts.get(*row.tip);
    for (const OptionChoice& choice : row.choices) all += '\n' + texts.get(choice.caption);
    if (row.kind != OptionKind::Tools) return all;
    for (const ToolUse& use : toolUses())
        all += '\n' + std::string(use.tool) + '\n' + texts.get(use.enables);
    return all;
}

// Finds rows of one page; a heading waits until one of its rows is found.
class PageSearch {
 public:
    PageSearch(const Texts& texts, const std::vector<std::string>& words, PathStyle system)
        : texts_(texts), words_(words), system_(system) {}

    OptionMatch of(const OptionPage& page) {
        OptionMatch match{&page, {}};
        const OptionRow* heading = nullptr;
        for (const OptionRow& row : page.rows) {
            if (!row.isHere(system_)) continue;
            if (row.kind == OptionKind::Heading) {
                heading = &row;
                headingText_ = texts_.get(row.caption);
            } else if (hasWords(page, row)) {
                if (heading != nullptr) match.rows.push_back(std::exchange(heading, nullptr));
                match.rows.push_back(&row);
            }
        }
        return match;
    }

 private:
    bool hasWords(const OptionPage& page, const OptionRow& row) const {
        const std::string text =
            lowerCase(texts_.get(page.title) + '\n' + headingText_ + '\n' + textsOf(texts_, row));
        return std::ranges::all_of(words_,
                                   [&](const std::string& word) { return has(text, word); });
    }

    // A long word is found in two as well: "bitrate" where it says "bit rate".
    static bool has(const std::string& text, const std::string& word) {
        constexpr std::size_t longWord = 6;
        if (text.find(word) != std::string::npos) return true;
        std::string joined = text;
        std::erase(joined, ' ');
        return word.size() >= longWord && joined.find(word) != std::string::npos;
    }

    const Texts& texts_;
    const std::vector<std::string>& words_;
    PathStyle system_;
    std::string headingText_;
};
}  // namespace

std::span<const OptionPage> optionPages() {
    return pages;
}

std::string controlName(const OptionRow& row) {
    if (!row.name.empty()) return std::string(row.name);
    const std::string prefix(prefixOf(row.kind));
    if (row.kind == OptionKind::Shell)
        return prefix + "Shell" + std::to_string(static_cast<int>(row.entry) + 1);
    if (!row.hasSetting()) return prefix + "Text" + std::to_string(static_cast<int>(row.caption));
    return prefix + std::string(settingRow(row.setting).key);
}

std::string rangeText(const OptionRow& row) {
    return std::to_string(row.lowest) + "\u2013" + std::to_string(row.highest);
}

std::vector<OptionMatch> findOptions(const Texts& texts, std::string_view words, PathStyle system) {
    const std::vector<std::string> wanted = lowerWords(words);
    std::vector<OptionMatch> found;
    for (const OptionPage& page : pages) {
        OptionMatch match = PageSearch(texts, wanted, system).of(page);
        if (!match.rows.empty()) found.push_back(std::move(match));
    }
    // A page that is called so comes first.
    std::stable_partition(found.begin(), found.end(), [&](const OptionMatch& match) {
        const std::string title = lowerCase(texts.get(match.page->title));
        return std::ranges::any_of(
            wanted, [&](const std::string& word) { return title.find(word) != std::string::npos; });
    });
    return found;
}

}  // namespace tavlo
