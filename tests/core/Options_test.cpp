#include "core/Options.h"

#include <gtest/gtest.h>

#include <set>

#include "core/Help.h"
#include "core/OptionTable.h"

namespace tavlo {
namespace {

template <typename Type>
struct Field {
    const char* name;
    Type JobOptions::*place;
};

const Field<std::optional<std::string>> textFields[] = {
    {"folder", &JobOptions::folder},       {"artist", &JobOptions::artist},
    {"title", &JobOptions::title},         {"album", &JobOptions::album},
    {"year", &JobOptions::year},           {"mix", &JobOptions::mix},
    {"track", &JobOptions::trackNumber},   {"genre", &JobOptions::genre},
    {"target", &JobOptions::targetFolder}, {"template", &JobOptions::nameTemplate},
    {"log", &JobOptions::logFile},         {"playlist", &JobOptions::playlist},
    {"kinds", &JobOptions::tagKinds},      {"language", &JobOptions::languageFile},
};
const Field<bool> markFields[] = {
    {"subfolders", &JobOptions::subfolders},
    {"agent", &JobOptions::agent},
    {"json", &JobOptions::json},
    {"dryrun", &JobOptions::dryRun},
    {"u8", &JobOptions::utf8List},
    {"nolanguage", &JobOptions::noLanguageFile},
    {"compilation", &JobOptions::compilation},
    {"notags", &JobOptions::noTags},
    {"force", &JobOptions::force},
    {"paths", &JobOptions::keepPaths},
    {"outside", &JobOptions::outside},
    {"noformat", &JobOptions::noFormat},
    {"nobackup", &JobOptions::noBackup},
    {"raw", &JobOptions::raw},
    {"wavetrim", &JobOptions::waveTrim},
    {"separately", &JobOptions::normalizeSeparately},
    {"z", &JobOptions::z},
    {"zx", &JobOptions::zx},
};
const Field<std::optional<bool>> switchFields[] = {
    {"exec", &JobOptions::showExec},
    {"reduce", &JobOptions::reduceLevel},
    {"normalize", &JobOptions::normalize},
    {"trim", &JobOptions::trim},
};
const Field<std::optional<int>> numberFields[] = {
    {"format", &JobOptions::outputFormat},  {"level", &JobOptions::normalizeLevel},
    {"above", &JobOptions::normalizeAbove}, {"below", &JobOptions::normalizeBelow},
    {"before", &JobOptions::before},        {"after", &JobOptions::after},
    {"start", &JobOptions::startOffset},    {"end", &JobOptions::endOffset},
    {"jobs", &JobOptions::jobsAtOnce},
};
const Field<int> limitFields[] = {{"low", &JobOptions::lowLimit}, {"high", &JobOptions::highLimit}};

/// Names what differs from the defaults, so that a case also fails on a side effect.
std::string described(const JobOptions& o) {
    std::string text;
    const auto add = [&](const std::string& name, const std::string& value) {
        text += (text.empty() ? "" : " ") + name + "=" + value;
    };
    if (o.mode != RunMode::MainWindow) add("mode", std::to_string(static_cast<int>(o.mode)));
    for (const auto& f : textFields)
        if (o.*f.place) add(f.name, "'" + *(o.*f.place) + "'");
    if (o.mask != "*.*") add("mask", o.mask);
    if (o.encoder != EncoderWord::Mp3) add("encoder", std::to_string(static_cast<int>(o.encoder)));
    if (o.preset != "vbr2") add("preset", o.preset);
    for (const auto& f : markFields)
        if (o.*f.place) add(f.name, "on");
    for (const auto& f : switchFields)
        if (o.*f.place) add(f.name, *(o.*f.place) ? "on" : "off");
    if (o.priority) add("priority", std::to_string(static_cast<int>(*o.priority)));
    for (const auto& f : numberFields)
        if (o.*f.place) add(f.name, std::to_string(*(o.*f.place)));
    for (const auto& f : limitFields)
        if (o.*f.place != 0) add(f.name, std::to_string(o.*f.place));
    for (const std::string& word : o.ignored) add("ignored", word);
    return text;
}

std::string readLine(const std::string& text, PathStyle style = PathStyle::Windows) {
    CommandString line(style, isOptionWord);
    line.Command(text);
    return described(readOptions(line, "start"));
}

struct Case {
    std::string line;
    std::string expected;
};

// clang-format off
// One case for each row of the table, by the row's first name.
const std::vector<Case> optionCases{
    {"/agent", "agent=on"}, {"/compress_audio_cd", "mode=7"}, {"/setup", "mode=11"},
    {"/help", "mode=10"}, {"/makelist", "mode=8"}, {"/rename", "mode=1"}, {"/rename2", "mode=2"},
    {"/autorename", "mode=3"}, {"/change", "mode=4"}, {"/copy a.m3u", "mode=12 playlist='a.m3u'"},
    {"/makemxc x*.m3u", "mode=16 mask=x*.m3u"}, {"/encode ogg s2", "mode=5 encoder=1 preset=s2"},
    {"/decode", "mode=6"}, {"/showexec", "exec=on"}, {"/dontshowexec", "exec=off"},
    {"/reducelevel", "reduce=on"}, {"/nordl", "reduce=off"}, {"/normalize", "normalize=on"},
    {"/norm-", "normalize=off"}, {"/trim", "trim=on"}, {"/notrim", "trim=off"},
    {"/paths", "paths=on"}, {"/outside", "outside=on"}, {"/compilation", "compilation=on"}, {"/notags", "notags=on"},
    {"/wavetrim", "mask=*.wav wavetrim=on"}, {"/nf", "noformat=on"}, {"/nb", "nobackup=on"},
    {"/raw", "raw=on"}, {"/z", "z=on"}, {"/zx", "zx=on"}, {"/zxx", "low=255 high=65280"},
    {"/before 5", "before=5"}, {"/after 7", "after=7"}, {"/norm_level 90", "level=90"},
    {"/norm_above 98", "above=98"}, {"/norm_below 80", "below=80"},
    {"/norm_sep", "separately=on"}, {"/folder \" C:\\My Music \"", "folder='C:\\My Music'"},
    {"/a \" An Artist \"", "artist='An Artist'"}, {"/t x", "title='x'"}, {"/l x", "album='x'"},
    {"/y 1999", "year='1999'"}, {"/m x", "mix='x'"}, {"/tn 3", "track='3'"},
    {"/g Rock", "genre='Rock'"}, {"/to x", "target='x'"}, {"/offset 1", "start=1"},
    {"/end 4", "end=4"}, {"/template \" %A - %T\"", "template=' %A - %T'"},
    {"/idle", "priority=64"}, {"/normal", "priority=32"}, {"/high", "priority=128"},
    {"/s", "subfolders=on"}, {"/lng my.lng", "language='my.lng'"}, {"/scan", "mode=18"},
    {"/json", "json=on"}, {"/dryrun", "dryrun=on"}, {"/version", "mode=100"},
    {"/undo", "mode=19"}, {"/u8", "u8=on"}, {"/jobs 3", "jobs=3"},
    {"/log \" a log\"", "log=' a log'"}, {"/force", "force=on"},
    {"/removetags id3v1,ape", "mode=20 kinds='id3v1,ape'"},
};
// clang-format on

TEST(Options, EachDoesWhatTheTableSaysInEverySpelling) {
    std::set<const OptionRow*> tested;
    for (const Case& c : optionCases) {
        const std::size_t end = std::min(c.line.find(' '), c.line.size());
        const OptionRow* row = findOption(c.line.substr(0, end));
        ASSERT_NE(row, nullptr) << c.line;
        tested.insert(row);
        for (const std::string_view name : row->names) {
            if (name.empty()) continue;
            const std::string bare = std::string(name.substr(1)) + c.line.substr(end);
            for (const char* prefix : {"/", "-", "--"}) {
                EXPECT_EQ(readLine(prefix + bare), c.expected) << prefix << bare;
            }
            EXPECT_EQ(readLine("/" + bare, PathStyle::Posix), c.expected) << bare;
        }
    }
    EXPECT_EQ(tested.size(), optionTable.size());
}

TEST(Options, EveryNameIsInTheHelp) {
    for (const Language language : {Language::English, Language::Russian}) {
        const std::string page = helpPage(Texts(language));
        for (const OptionRow& row : optionTable)
            for (const std::string_view name : row.names)
                EXPECT_NE(page.find(name), std::string::npos) << name;
    }
}

TEST(Options, Combinations) {
    const std::vector<Case> cases{
        {"", ""},
        {"/a /t x", "title='x'"},
        {"/a", ""},
        {"/a \"\"", "artist=''"},
        {"/before many", "before=0"},
        {"/before 99999999999", "before=0"},
        {"/before \" 12 \"", "before=12"},
        {"/rename /scan", "mode=18"},
        {"/rdl /rdl-", "reduce=off"},
        {"C:\\Music *.mp3 /s", "folder='C:\\Music' mask=*.mp3 subfolders=on"},
        {"/mxc", "mode=16 mask=*.m3u"},
        {"*.mp3 /mxc", "mode=16 mask=*.mp3"},
        {"/wt a?.wav", "mask=a?.wav wavetrim=on"},
        {"/lng", "mode=17"},
        {"/lng /scan", "mode=18"},
        {"/lng 0", "nolanguage=on"},
        {"/f12", "format=12"},
        {"/f", "format=0"},
        {"/foo", "format=0"},
        {"/Scan", "ignored=/Scan"},
        {"--zzz /s -- -", "subfolders=on ignored=--zzz ignored=-- ignored=-"},
        {"--foo", "ignored=--foo"},
        {"--f3", "format=3"},
        {"\"\"", ""},
    };
    for (const Case& row : cases) EXPECT_EQ(readLine(row.line), row.expected) << row.line;
}

TEST(Options, PathsThatBeginLikeOptions) {
    const std::vector<Case> cases{
        {"/home/x", "folder='/home/x'"},
        {"/home/x /s", "folder='/home/x' subfolders=on"},
        {"/folder /home/x", "folder='/home/x'"},
        {"/to /mnt/p /s", "target='/mnt/p' subfolders=on"},
        {"/folder /s", "subfolders=on"},
        {"/foo", "folder='/foo'"},
        {"/f5", "format=5"},
        {"/music/*.mp3", "mask=/music/*.mp3"},
        {"--folder /home/x --scan", "mode=18 folder='/home/x'"},
        {"--foo", "ignored=--foo"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(readLine(row.line, PathStyle::Posix), row.expected) << row.line;
}

TEST(Options, EncoderAndPresetWords) {
    const std::vector<Case> cases{
        {"/encode", "mode=5"},
        {"/encode /s", "mode=5 subfolders=on"},
        {"/encode mp3", "mode=5"},
        {"/encode vbr-medium", "mode=5 preset=vbr1"},
        {"/encode vbr", "mode=5"},
        {"/encode \"mp3 abr\"", "mode=5 preset=abr"},
        {"/encode C:\\Music", "mode=5 folder='C:\\Music'"},
        {"/encode flac C:\\Music", "mode=5 folder='C:\\Music' encoder=5 preset="},
        {"/encode ogg insane", "mode=5 folder='insane' encoder=1 preset="},
        {"/encode mpc above_braindead", "mode=5 encoder=2 preset=above_braindead"},
        {"/encode wma q75", "mode=5 encoder=3 preset=q75"},
        {"/encode mp4 ALAC", "mode=5 encoder=4 preset=alac"},
        {"/encode wv", "mode=5 encoder=6 preset="},
        {"/encode wavpack", "mode=5 encoder=6 preset="},
        {"/encode monkey extra", "mode=5 encoder=7 preset=extra"},
        {"/encode mac best", "mode=5 encoder=7 preset=best"},
        {"/encode ape fast *.wav", "mode=5 mask=*.wav encoder=7 preset=fast"},
    };
    for (const Case& row : cases) EXPECT_EQ(readLine(row.line), row.expected) << row.line;
}

}  // namespace
}  // namespace tavlo
