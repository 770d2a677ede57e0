#pragma once

#include <array>
#include <limits>
#include <string_view>

namespace tavlo {

/// Groups of settings that are saved together.
enum class SettingsGroup {
    General,
    Language,
    Cd,
    TagFromName,
    Rename,
    VersionCheck,
    UpdatePrompt,
    Toolbar,
    Portable,
    Encoders,
};

/// How a setting is kept: a boolean as -1 or 0, a text boolean as "True" or "False", a byte in
/// 0..255.
enum class SettingKind { Boolean, TextBoolean, Integer, Byte, Text };

/// Every setting, in the order of `settingsTable`.
enum class Setting {
    AlphaEnabled,
    AlphaLevel,
    ShowExecWindows,
    BeginnerMode,
    BitrateRise,
    ProxyEnabled,
    ProxyServer,
    ProxyPort,
    TransliteByGOST,
    DeleteAfterCompress,
    DeleteAfterReCompress,
    TemporaryWavProcessing,
    PopupMonitor,
    PlayerEn,
    PlayerPath,
    PlayerPlayback,
    PlayerEnqueue,
    AutoTagsUpdate,
    DeleteToRecycleBin,
    RenameTemplateDef,
    PlaylistTemplate,
    LastVersionCheck,
    LastUpdatePrompt,
    LangFile,
    LangFileEn,
    CurrentFolder,
    StartupFolder,
    StartupFolderEn,
    FilePropertiesOnDblClick,
    MainAutoSize,
    ShowAlbumArt,
    MainTagEditor,
    MainTargetFolder,
    TargetFolderEn,
    TargetFolderPath,
    Trim,
    ReduceLevel,
    Normalize,
    NormalizeLevel,
    NormalizeAbove,
    NormalizeBelow,
    NormalizeSeparately,
    TAGSRenTemplate,
    TAGSRevTemplate,
    TAGSRenFormat,
    TAGSSubfolders,
    TAGSRenType,
    TAGSRenMask,
    TAGSAllFirstCaps,
    TAGSAllTags,
    TAGSShowFiles,
    CDSourceFolder,
    CDTargetFolder,
    CDBitrate,
    Eac,
    EacPath,
    CDMXCFolders,
    CDAllAlbums,
    CDCDDrive,
    CDServer,
    CDCDTEXT,
    CDMCase,
    PORTABLEMP3Mode,
    PORTABLEWMAMode,
    Priority,
    EnableID3v1Tags,
    EnableID3v2Tags,
    EnableID3v2Unicode,
    EnableID3v24,
    EnableAPE2Tags,
    WMAEncoding,
    OggEncoding,
    NeroEncoding,
    EnableMPC,
    EnableMPCSV8,
    EnableMPCm,
    EnableLAME,
    EnableWMA,
    EnableOGG,
    EnableMP4faac,
    EnableMP4nero,
    EnableFLAC,
    EnableALAC,
    EnableWavPack,
    EnableWavPackHybrid,
    EnableMonkeyAudio,
    FAACModeDef,
    MonkeyModeDef,
    LamePreset1Name,
    LamePreset1Code,
    LamePreset2Name,
    LamePreset2Code,
    LamePreset3Name,
    LamePreset3Code,
    OggPreset1Name,
    OggPreset1Code,
    OggPreset2Name,
    OggPreset2Code,
    OggPreset3Name,
    OggPreset3Code,
    MpcPreset1Name,
    MpcPreset1Code,
    MpcPreset2Name,
    MpcPreset2Code,
    MpcPreset3Name,
    MpcPreset3Code,
    WMAPreset1Name,
    WMAPreset2Name,
    WMAPreset3Name,
    WMAPreset1Enabled,
    WMAPreset2Enabled,
    WMAPreset3Enabled,
    MainTB,
    AnsiCodePage,
    PreserveFileTimes,
};

struct SettingRow {
    Setting setting;
    std::string_view key;
    SettingKind kind;
    int number;             // default of every kind but Text
    std::string_view text;  // default of Text
    SettingsGroup group;
    int lowest = std::numeric_limits<int>::min();
    int highest = std::numeric_limits<int>::max();

    constexpr std::string_view section() const {
        return group == SettingsGroup::Toolbar ? "Windows" : "Settings";
    }
};

constexpr SettingRow flagRow(Setting setting, std::string_view key, bool value,
                             SettingsGroup group = SettingsGroup::General) {
    return {setting, key, SettingKind::Boolean, value ? 1 : 0, {}, group};
}

constexpr SettingRow wordRow(Setting setting, std::string_view key, bool value,
                             SettingsGroup group) {
    return {setting, key, SettingKind::TextBoolean, value ? 1 : 0, {}, group};
}

constexpr SettingRow numberRow(Setting setting, std::string_view key, int value,
                               SettingsGroup group = SettingsGroup::General) {
    return {setting, key, SettingKind::Integer, value, {}, group};
}

constexpr SettingRow textRow(Setting setting, std::string_view key, std::string_view value = {},
                             SettingsGroup group = SettingsGroup::General) {
    return {setting, key, SettingKind::Text, 0, value, group};
}

inline constexpr std::array settingsTable{
    flagRow(Setting::AlphaEnabled, "AlphaEnabled", false),
    SettingRow{Setting::AlphaLevel,
               "AlphaLevel",
               SettingKind::Byte,
               240,
               {},
               SettingsGroup::General,
               128,
               255},
    flagRow(Setting::ShowExecWindows, "ShowExecWindows", false),
    flagRow(Setting::BeginnerMode, "BeginnerMode", false),
    flagRow(Setting::BitrateRise, "BitrateRise", false),
    flagRow(Setting::ProxyEnabled, "Proxy.Enabled", false),
    textRow(Setting::ProxyServer, "Proxy.Server"),
    numberRow(Setting::ProxyPort, "Proxy.Port", 8080),
    flagRow(Setting::TransliteByGOST, "TransliteByGOST", true),
    flagRow(Setting::DeleteAfterCompress, "DeleteAfterCompress", false),
    flagRow(Setting::DeleteAfterReCompress, "DeleteAfterReCompress", false),
    flagRow(Setting::TemporaryWavProcessing, "TemporaryWavProcessing", true),
    flagRow(Setting::PopupMonitor, "PopupMonitor", true),
    flagRow(Setting::PlayerEn, "PlayerEn", false),
    textRow(Setting::PlayerPath, "PlayerPath"),
    textRow(Setting::PlayerPlayback, "PlayerPlayback", "%1"),
    textRow(Setting::PlayerEnqueue, "PlayerEnqueue", "/ADD %1"),
    flagRow(Setting::AutoTagsUpdate, "AutoTagsUpdate", false),
    flagRow(Setting::DeleteToRecycleBin, "DeleteToRecycleBin", true),
    textRow(Setting::RenameTemplateDef, "RenameTemplateDef", "%N %A - %T (%M)",
            SettingsGroup::Rename),
    textRow(Setting::PlaylistTemplate, "PlaylistTemplate", "[%Y] %A - %L"),
    textRow(Setting::LastVersionCheck, "LastVersionCheck", "", SettingsGroup::VersionCheck),
    textRow(Setting::LastUpdatePrompt, "LastUpdatePrompt", "", SettingsGroup::UpdatePrompt),
    textRow(Setting::LangFile, "LangFile", "", SettingsGroup::Language),
    flagRow(Setting::LangFileEn, "LangFileEn", false, SettingsGroup::Language),
    textRow(Setting::CurrentFolder, "CurrentFolder", "C:\\"),
    textRow(Setting::StartupFolder, "StartupFolder"),
    flagRow(Setting::StartupFolderEn, "StartupFolderEn", false),
    flagRow(Setting::FilePropertiesOnDblClick, "FilePropertiesOnDblClick", false),
    flagRow(Setting::MainAutoSize, "MainAutoSize", true),
    flagRow(Setting::ShowAlbumArt, "ShowAlbumArt", true),
    flagRow(Setting::MainTagEditor, "MainTagEditor", true),
    flagRow(Setting::MainTargetFolder, "MainTargetFolder", true),
    flagRow(Setting::TargetFolderEn, "TargetFolderEn", false),
    textRow(Setting::TargetFolderPath, "TargetFolderPath"),
    flagRow(Setting::Trim, "Trim", true),
    flagRow(Setting::ReduceLevel, "ReduceLevel", true),
    flagRow(Setting::Normalize, "Normalize", false),
    numberRow(Setting::NormalizeLevel, "NormalizeLevel", 94),
    numberRow(Setting::NormalizeAbove, "NormalizeAbove", 97),
    numberRow(Setting::NormalizeBelow, "NormalizeBelow", 85),
    flagRow(Setting::NormalizeSeparately, "NormalizeSeparately", false),
    textRow(Setting::TAGSRenTemplate, "TAGS_RenTemplate", "%A - %T (%M)",
            SettingsGroup::TagFromName),
    textRow(Setting::TAGSRevTemplate, "TAGS_RevTemplate", "%T (%M)", SettingsGroup::TagFromName),
    numberRow(Setting::TAGSRenFormat, "TAGS_RenFormat", 8, SettingsGroup::TagFromName),
    flagRow(Setting::TAGSSubfolders, "TAGS_Subfolders", false, SettingsGroup::TagFromName),
    numberRow(Setting::TAGSRenType, "TAGS_RenType", 2, SettingsGroup::TagFromName),
    textRow(Setting::TAGSRenMask, "TAGS_RenMask", "*.*", SettingsGroup::TagFromName),
    wordRow(Setting::TAGSAllFirstCaps, "TAGS_AllFirstCaps", true, SettingsGroup::TagFromName),
    wordRow(Setting::TAGSAllTags, "TAGS_AllTags", true, SettingsGroup::TagFromName),
    wordRow(Setting::TAGSShowFiles, "TAGS_ShowFiles", true, SettingsGroup::TagFromName),
    textRow(Setting::CDSourceFolder, "CD_SourceFolder", "", SettingsGroup::Cd),
    textRow(Setting::CDTargetFolder, "CD_TargetFolder", "", SettingsGroup::Cd),
    numberRow(Setting::CDBitrate, "CD_Bitrate", 320, SettingsGroup::Cd),
    flagRow(Setting::Eac, "EAC", false, SettingsGroup::Cd),
    textRow(Setting::EacPath, "EACPath", "", SettingsGroup::Cd),
    flagRow(Setting::CDMXCFolders, "CD_MXCFolders", false, SettingsGroup::Cd),
    flagRow(Setting::CDAllAlbums, "CD_AllAlbums", false, SettingsGroup::Cd),
    textRow(Setting::CDCDDrive, "CD_CDDrive", "", SettingsGroup::Cd),
    textRow(Setting::CDServer, "CD_Server", "gnudb.org", SettingsGroup::Cd),
    flagRow(Setting::CDCDTEXT, "CD_CDTEXT", true, SettingsGroup::Cd),
    flagRow(Setting::CDMCase, "CD_MCase", true, SettingsGroup::Cd),
    numberRow(Setting::PORTABLEMP3Mode, "PORTABLE_MP3Mode", 128, SettingsGroup::Portable),
    numberRow(Setting::PORTABLEWMAMode, "PORTABLE_WMAMode", 6, SettingsGroup::Portable),
    textRow(Setting::Priority, "Priority", "Normal"),
    flagRow(Setting::EnableID3v1Tags, "EnableID3v1Tags", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableID3v2Tags, "EnableID3v2Tags", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableID3v2Unicode, "EnableID3v2Unicode", false, SettingsGroup::Encoders),
    flagRow(Setting::EnableID3v24, "EnableID3v2.4", false, SettingsGroup::Encoders),
    flagRow(Setting::EnableAPE2Tags, "EnableAPE2Tags", false, SettingsGroup::Encoders),
    flagRow(Setting::WMAEncoding, "WMAEncoding", true, SettingsGroup::Encoders),
    flagRow(Setting::OggEncoding, "OggEncoding", true, SettingsGroup::Encoders),
    flagRow(Setting::NeroEncoding, "NeroEncoding", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableMPC, "EnableMPC", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableMPCSV8, "EnableMPCSV8", false, SettingsGroup::Encoders),
    flagRow(Setting::EnableMPCm, "EnableMPCm", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableLAME, "EnableLAME", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableWMA, "EnableWMA", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableOGG, "EnableOGG", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableMP4faac, "EnableMP4faac_", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableMP4nero, "EnableMP4nero_", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableFLAC, "EnableFLAC", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableALAC, "EnableALAC", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableWavPack, "EnableWavPack", true, SettingsGroup::Encoders),
    flagRow(Setting::EnableWavPackHybrid, "EnableWavPackHybrid", false, SettingsGroup::Encoders),
    flagRow(Setting::EnableMonkeyAudio, "EnableMonkeyAudio", true, SettingsGroup::Encoders),
    numberRow(Setting::FAACModeDef, "FAACModeDef", 5, SettingsGroup::Encoders),
    numberRow(Setting::MonkeyModeDef, "MonkeyModeDef", 2, SettingsGroup::Encoders),
    textRow(Setting::LamePreset1Name, "LamePreset1_Name", "CBR 160kbps", SettingsGroup::Encoders),
    textRow(Setting::LamePreset1Code, "LamePreset1_Code", "-m j -h -b 160 --lowpass 18.0",
            SettingsGroup::Encoders),
    textRow(Setting::LamePreset2Name, "LamePreset2_Name", "CBR 192kbps", SettingsGroup::Encoders),
    textRow(Setting::LamePreset2Code, "LamePreset2_Code", "-m j -h -b 192 --lowpass 19.0",
            SettingsGroup::Encoders),
    textRow(Setting::LamePreset3Name, "LamePreset3_Name", "CBR 256kbps", SettingsGroup::Encoders),
    textRow(Setting::LamePreset3Code, "LamePreset3_Code", "-m s -h -b 256 --lowpass 20.0",
            SettingsGroup::Encoders),
    textRow(Setting::OggPreset1Name, "OggPreset1_Name", "", SettingsGroup::Encoders),
    textRow(Setting::OggPreset1Code, "OggPreset1_Code", "", SettingsGroup::Encoders),
    textRow(Setting::OggPreset2Name, "OggPreset2_Name", "", SettingsGroup::Encoders),
    textRow(Setting::OggPreset2Code, "OggPreset2_Code", "", SettingsGroup::Encoders),
    textRow(Setting::OggPreset3Name, "OggPreset3_Name", "", SettingsGroup::Encoders),
    textRow(Setting::OggPreset3Code, "OggPreset3_Code", "", SettingsGroup::Encoders),
    textRow(Setting::MpcPreset1Name, "MpcPreset1_Name", "", SettingsGroup::Encoders),
    textRow(Setting::MpcPreset1Code, "MpcPreset1_Code", "", SettingsGroup::Encoders),
    textRow(Setting::MpcPreset2Name, "MpcPreset2_Name", "", SettingsGroup::Encoders),
    textRow(Setting::MpcPreset2Code, "MpcPreset2_Code", "", SettingsGroup::Encoders),
    textRow(Setting::MpcPreset3Name, "MpcPreset3_Name", "", SettingsGroup::Encoders),
    textRow(Setting::MpcPreset3Code, "MpcPreset3_Code", "", SettingsGroup::Encoders),
    textRow(Setting::WMAPreset1Name, "WMAPreset1_Name", "", SettingsGroup::Encoders),
    textRow(Setting::WMAPreset2Name, "WMAPreset2_Name", "", SettingsGroup::Encoders),
    textRow(Setting::WMAPreset3Name, "WMAPreset3_Name", "", SettingsGroup::Encoders),
    flagRow(Setting::WMAPreset1Enabled, "WMAPreset1_Enabled", false, SettingsGroup::Encoders),
    flagRow(Setting::WMAPreset2Enabled, "WMAPreset2_Enabled", false, SettingsGroup::Encoders),
    flagRow(Setting::WMAPreset3Enabled, "WMAPreset3_Enabled", false, SettingsGroup::Encoders),
    textRow(Setting::MainTB, "MainTB", "", SettingsGroup::Toolbar),
    SettingRow{Setting::AnsiCodePage,
               "AnsiCodePage",
               SettingKind::Integer,
               0,
               {},
               SettingsGroup::General,
               0,
               65535},
    flagRow(Setting::PreserveFileTimes, "PreserveFileTimes", false),
};

/// The table is indexed by Setting, so a row out of its place must not compile.
constexpr bool settingsTableIsInOrder() {
    for (std::size_t i = 0; i < settingsTable.size(); ++i)
        if (static_cast<std::size_t>(settingsTable[i].setting) != i) return false;
    return true;
}
static_assert(settingsTableIsInOrder());

constexpr const SettingRow& settingRow(Setting setting) {
    return settingsTable[static_cast<std::size_t>(setting)];
}

}  // namespace tavlo
