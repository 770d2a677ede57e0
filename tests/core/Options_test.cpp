#include "core/Options.h"

#include <gtest/gtest.h>

#include <set>

#include "core/Help.h"
#include "core/OptionTable.h"

namespace tavlo {
namespace {

/// Names what differs from the defaults, so that a case also fails on a side effect.
class Description {
 public:
    explicit Description(const JobOptions& o) {
        number("mode", static_cast<int>(o.mode), 0);
        texts(o);
        switches(o);
        numbers(o);
        for (const std::string& word : o.ignored) add("ignored", word);
    }
    const std::string& text() const { return text_; }

 private:
    void texts(const JobOptions& o) {
        text("folder", o.folder);
        if (o.mask != "*.*") add("mask", o.mask);
        text("artist", o.artist);
        text("title", o.title);
        text("album", o.album);
        text("year", o.year);
        text("mix", o.mix);
        text("track", o.trackNumber);
        text("genre", o.genre);
        text("target", o.targetFolder);
        text("template", o.nameTemplate);
        text("playlist", o.playlist);
        text("language", o.languageFile);
        number("encoder", static_cast<int>(o.encoder), 0);
        if (o.preset != "vbr2") add("preset", o.preset);
    }
    void switches(const JobOptions& o) {
        mark("subfolders", o.subfolders);
        mark("agent", o.agent);
        mark("json", o.json);
        mark("nolanguage", o.noLanguageFile);
        mark("compilation", o.compilation);
        mark("notags", o.noTags);
        mark("paths", o.keepPaths);
        mark("noformat", o.noFormat);
        mark("nobackup", o.noBackup);
        mark("raw", o.raw);
        mark("separately", o.normalizeSeparately);
        mark("wavetrim", o.waveTrim);
        mark("z", o.z);
        mark("zx", o.zx);
        toggle("exec", o.showExec);
        toggle("reduce", o.reduceLevel);
        toggle("normalize", o.normalize);
        toggle("trim", o.trim);
    }
    void numbers(const JobOptions& o) {
        if (o.priority) add("priority", std::to_string(static_cast<int>(*o.priority)));
        optional("format", o.outputFormat);
        optional("level", o.normalizeLevel);
        optional("above", o.normalizeAbove);
        optional("below", o.normalizeBelow);
        optional("before", o.before);
        optional("after", o.after);
        optional("start", o.startOffset);
        optional("end", o.endOffset);
        number("low", o.lowLimit, 0);
        number("high", o.highLimit, 0);
    }

    void add(const std::string& name, const std::string& value) {
        text_ += (text_.empty() ? "" : " ") + name + "=" + value;
    }
    void text(const std::string& name, const std::optional<std::string>& value) {
        if (value) add(name, "'" + *value + "'");
    }
    void mark(const std::string& name, bool value) {
        if (value) add(name, "on");
    }
    void toggle(const std::string& name, const std::optional<bool>& value) {
        if (value) add(name, *value ? "on" : "off");
    }
    void optional(const std::string& name, const std::optional<int>& value) {
        if (value) add(name, std::to_string(*value));
    }
    void number(const std::string& name, int value, int standard) {
        if (value != standard) add(name, std::to_string(value));
    }

    std::string text_;
};

std::string readLine(const std::string& text, PathStyle style = PathStyle::Windows) {
    CommandString line(style, isOptionWord);
    line.Command(text);
    return Description(readOptions(line, "start")).text();
}

struct Case {
    std::string line;
    std::string expected;
};

const std::vector<Case> optionCases{
    {"/agent", "agent=on"},
    {"/compress_audio_cd", "mode=7"},
    {"/cdda", "mode=7"},
    {"/setup", "mode=11"},
    {"/help", "mode=10"},
    {"/h", "mode=10"},
    {"/?", "mode=10"},
    {"/makelist", "mode=8"},
    {"/mpl", "mode=8"},
    {"/rename", "mode=1"},
    {"/r", "mode=1"},
    {"/rename2", "mode=2"},
    {"/r2", "mode=2"},
    {"/autorename", "mode=3"},
    {"/ar", "mode=3"},
    {"/change", "mode=4"},
    {"/ch", "mode=4"},
    {"/copy a.m3u", "mode=12 playlist='a.m3u'"},
    {"/makemxc x*.m3u", "mode=16 mask=x*.m3u"},
    {"/mxc", "mode=16 mask=*.m3u"},
    {"/encode ogg s2", "mode=5 encoder=1 preset=s2"},
    {"/e mp3 vbr-extreme", "mode=5 preset=vbr3"},
    {"/decode", "mode=6"},
    {"/d", "mode=6"},
    {"/showexec", "exec=on"},
    {"/show", "exec=on"},
    {"/dontshowexec", "exec=off"},
    {"/hide", "exec=off"},
    {"/reducelevel", "reduce=on"},
    {"/rdl", "reduce=on"},
    {"/nordl", "reduce=off"},
    {"/rdl-", "reduce=off"},
    {"/normalize", "normalize=on"},
    {"/norm", "normalize=on"},
    {"/norm-", "normalize=off"},
    {"/trim", "trim=on"},
    {"/notrim", "trim=off"},
    {"/trim-", "trim=off"},
    {"/paths", "paths=on"},
    {"/compilation", "compilation=on"},
    {"/cmpl", "compilation=on"},
    {"/notags", "notags=on"},
    {"/disabletags", "notags=on"},
    {"/wavetrim", "mask=*.wav wavetrim=on"},
    {"/wt", "mask=*.wav wavetrim=on"},
    {"/nf", "noformat=on"},
    {"/noformat", "noformat=on"},
    {"/nb", "nobackup=on"},
    {"/nobackup", "nobackup=on"},
    {"/raw", "raw=on"},
    {"/z", "z=on"},
    {"/zx", "zx=on"},
    {"/zxx", "low=255 high=65280"},
    {"/before 5", "before=5"},
    {"/after 7", "after=7"},
    {"/norm_level 90", "level=90"},
    {"/norm_above 98", "above=98"},
    {"/norm_below 80", "below=80"},
    {"/norm_sep", "separately=on"},
    {"/norm_separately", "separately=on"},
    {"/folder \" C:\\My Music \"", "folder='C:\\My Music'"},
    {"/a \" An Artist \"", "artist='An Artist'"},
    {"/artist x", "artist='x'"},
    {"/t x", "title='x'"},
    {"/title x", "title='x'"},
    {"/l x", "album='x'"},
    {"/album x", "album='x'"},
    {"/y 1999", "year='1999'"},
    {"/year 1999", "year='1999'"},
    {"/m x", "mix='x'"},
    {"/mix x", "mix='x'"},
    {"/tn 3", "track='3'"},
    {"/track_number 3", "track='3'"},
    {"/g Rock", "genre='Rock'"},
    {"/genre Rock", "genre='Rock'"},
    {"/to x", "target='x'"},
    {"/target x", "target='x'"},
    {"/offset 1", "start=1"},
    {"/start 2", "start=2"},
    {"/start_offset 3", "start=3"},
    {"/end 4", "end=4"},
    {"/end_offset 5", "end=5"},
    {"/template \" %A - %T\"", "template=' %A - %T'"},
    {"/idle", "priority=64"},
    {"/normal", "priority=32"},
    {"/high", "priority=128"},
    {"/s", "subfolders=on"},
    {"/lng my.lng", "language='my.lng'"},
    {"/scan", "mode=18"},
    {"/json", "json=on"},
    {"/version", "mode=100"},
};

TEST(Options, EachDoesWhatTheTableSays) {
    for (const Case& row : optionCases) {
        EXPECT_EQ(readLine(row.line), row.expected) << row.line;
        EXPECT_EQ(readLine("-" + row.line.substr(1)), row.expected) << row.line;
        EXPECT_EQ(readLine("--" + row.line.substr(1)), row.expected) << row.line;
        EXPECT_EQ(readLine(row.line, PathStyle::Posix), row.expected) << row.line;
    }
}

TEST(Options, EveryNameHasACaseAndOnlyOneRow) {
    std::set<std::string> tested;
    for (const Case& row : optionCases) tested.insert(row.line.substr(0, row.line.find(' ')));
    std::set<std::string_view> seen;
    for (const OptionRow& row : optionTable)
        for (const std::string_view name : row.names) {
            if (name.empty()) continue;
            EXPECT_TRUE(tested.contains(std::string(name))) << name;
            EXPECT_TRUE(seen.insert(name).second) << name << " stands in two rows";
        }
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
