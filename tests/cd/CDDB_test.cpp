#include "cd/CDDB.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "cd/DiscJob.h"
#include "support/MemorySink.h"
#include "support/TagBytes.h"
#include "support/TestProgress.h"
#include "support/TestRegistry.h"

namespace tavlo::test {
namespace {

constexpr unsigned audio = 0x10, data = 0x14;

struct Start {
    int frames;
    unsigned control = audio;
};

std::string descriptor(int number, const Start& start) {
    const int seconds = start.frames / framesPerSecond;
    const int bytes[] = {0,
                         static_cast<int>(start.control),
                         number,
                         0,
                         0,
                         seconds / secondsPerMinute,
                         seconds % secondsPerMinute,
                         start.frames % framesPerSecond};
    return {std::begin(bytes), std::end(bytes)};
}

// An answer to READ TOC; the last start is the lead-out's.
std::string tocAnswer(const std::vector<Start>& starts, int first = 1) {
    const int count = static_cast<int>(starts.size()) - 1;
    std::string all = {static_cast<char>(first), static_cast<char>(first + count - 1)};
    for (int i = 0; i <= count; ++i) {
        all += descriptor(i == count ? 0xAA : first + i, starts[static_cast<std::size_t>(i)]);
    }
    return bigEndian(all.size(), 2) + all;
}

std::string tocText(const std::string& answer) {
    const auto toc = parseToc(bytesOfText(answer));
    return toc ? toc->text() : "none";
}

TEST(DiscToc, TextHasEveryStartAndTheLeadOut) {
    std::vector<Start> most;
    std::string mostText;
    for (int i = 0; i <= 99; ++i) {
        most.push_back({150 + 1000 * i});
        mostText += (i > 0 ? " " : "") + std::to_string(150 + 1000 * i);
    }
    std::vector<Start> tooMany = most;
    tooMany.push_back({200000});
    const std::string three = tocAnswer({{150}, {18432}, {36107}, {201850}});
    std::string unpositioned = three;
    for (const std::size_t at : {5U, 13U, 21U, 29U}) unpositioned[at] = '\0';
    const std::pair<std::string, std::string> discs[] = {
        {tocAnswer({{150}, {20000}}), "150 20000"},
        {three, "150 18432 36107 201850"},
        {tocAnswer(most), mostText},
        {tocAnswer({{150, data}, {18432}, {201850}}), "150 18432 201850"},  // mixed
        {tocAnswer({{150}, {18432}, {190000, data}, {201850, data}}), "150 18432 190000 201850"},
        {tocAnswer({{150, data}, {201850}}), ""},  // data only
        {tocAnswer({{150}, {18432}, {300000}}, 5), "150 18432 300000"},
        {tocAnswer({{150}, {18432}}, 0), "none"},
        {tocAnswer({{150}, {18432}}, 100), "none"},
        {tocAnswer({{20000}, {150}, {30000}}), "none"},
        {three.substr(0, 20) + std::string(40, '\0'), "none"},
        {tocAnswer(tooMany), "none"},
        {tocAnswer({{150}}), "none"},  // blank: the last track is below the first
        {three + std::string(500, '\xFF'), "150 18432 36107 201850"},
        {bigEndian(802, 2) + three.substr(2), "150 18432 36107 201850"},  // says more than there is
        {three.substr(0, three.size() - 1), "none"},
        {bigEndian(30, 2) + three.substr(2), "none"},  // says less than there is
        {unpositioned, ""},
        {"", "none"},
    };
    for (const auto& [answer, text] : discs) EXPECT_EQ(tocText(answer), text);
    // The data of an Enhanced CD is a session of its own, and the way there no sound.
    const auto enhanced =
        parseToc(bytesOfText(tocAnswer({{150}, {18432}, {190000, data}, {201850, data}})));
    EXPECT_EQ(enhanced->tracks[0].length, 18282);
    EXPECT_EQ(enhanced->tracks[1].length, 160168);
}

// Discs whose numbers were published.
TEST(DiscToc, DiscIdIsThatOfTheServers) {
    const std::vector<Start> ten = {{150},    {18901},  {39738},  {59557},  {79152}, {100126},
                                    {124833}, {147278}, {166336}, {182560}, {206535}};
    EXPECT_EQ(parseToc(bytesOfText(tocAnswer(ten)))->discId(), "830abf0a");
    const std::vector<Start> many = {{150},    {9700},   {25887},  {39297},  {53795},  {63735},
                                     {77517},  {94877},  {107270}, {123552}, {135522}, {148422},
                                     {161197}, {174790}, {192022}, {205545}, {218010}, {228700},
                                     {239590}, {255470}, {266932}, {288750}, {303602}};
    EXPECT_EQ(parseToc(bytesOfText(tocAnswer(many)))->discId(), "370fce16");
}

std::uint16_t checksumOf(std::string_view pack) {
    unsigned sum = 0;
    for (const char c : pack) {
        for (int bit = 7; bit >= 0; --bit) {
            const unsigned in = static_cast<unsigned char>(c) >> static_cast<unsigned>(bit) & 1U;
            const bool carries = ((sum >> 15U) ^ in) != 0;
            sum = (sum << 1U ^ (carries ? 0x1021U : 0U)) & 0xFFFFU;
        }
    }
    return static_cast<std::uint16_t>(sum ^ 0xFFFFU);
}

// The packs of one kind for texts from the album on, each ended by a zero character.
std::vector<std::string> textPacks(unsigned kind, const std::vector<std::string>& texts,
                                   std::size_t width = 1, unsigned block = 0) {
    std::vector<std::string> packs;
    std::size_t begin = 0;  // of the text that is written
    std::string all;
    std::vector<std::pair<std::size_t, std::size_t>> places;  // track, position of each byte
    for (std::size_t track = 0; track < texts.size(); ++track) {
        begin = all.size();
        all += texts[track] + std::string(width, '\0');
        for (std::size_t i = begin; i < all.size(); ++i) places.emplace_back(track, i - begin);
    }
    all.resize((all.size() + 11) / 12 * 12, '\0');
    for (std::size_t at = 0; at < all.size(); at += 12) {
        const auto [track, position] = places[at];
        const std::size_t place =
            std::min<std::size_t>(position / width, 15) | block << 4U | (width == 2 ? 0x80U : 0U);
        std::string pack = {static_cast<char>(kind), static_cast<char>(track),
                            static_cast<char>(packs.size()), static_cast<char>(place)};
        pack += all.substr(at, 12);
        packs.push_back(pack + bigEndian(checksumOf(pack), 2));
    }
    return packs;
}

std::string textAnswer(const std::vector<std::vector<std::string>>& kinds) {
    std::string all(2, '\0');
    for (const auto& packs : kinds) {
        for (const std::string& pack : packs) all += pack;
    }
    return bigEndian(all.size(), 2) + all;
}

TEST(CdText, TextsRunOverPacks) {
    const std::vector<std::string> titles = {"An album of songs", "A", "\t", "",
                                             "A title that is longer than two packs \xE9"};
    const std::string answer =
        textAnswer({textPacks(0x80, titles), textPacks(0x81, {"Somebody", "Else", "\t"}),
                    textPacks(0x82, {"a writer"}), textPacks(0x80, {"Other language"}, 1, 1)});
    const CdText text = parseCdText(bytesOfText(answer));
    EXPECT_EQ(text.titles[0], "An album of songs");
    EXPECT_EQ(text.titles[2], "A");  // as before
    EXPECT_EQ(text.titles[3], "");
    EXPECT_EQ(text.titles[4], "A title that is longer than two packs é");
    EXPECT_EQ(text.artists[1] + text.artists[2], "ElseElse");
    const std::string wide =
        textAnswer({textPacks(0x80, {"\x83\x65", "\x83\x65\x83\x58", "\t\t"}, 2)});
    EXPECT_EQ(parseCdText(bytesOfText(wide)).titles[2], "テス");
    for (std::size_t size = 0; size < answer.size(); size += 7) {
        parseCdText(bytesOfText(answer).first(size));
    }
}

TEST(CdText, BrokenPackTakesOnlyItsOwnTexts) {
    auto packs = textPacks(0x80, {"album", "one and a long one", "two", "three", "four"});
    ASSERT_EQ(packs.size(), 4U);
    packs[1][10] ^= 1;  // inside "one and a long one"
    const CdText text = parseCdText(bytesOfText(textAnswer({packs})));
    EXPECT_EQ(text.titles[0], "album");
    EXPECT_EQ(text.titles[1], "");
    EXPECT_EQ(text.titles[3], "three");
    EXPECT_EQ(text.titles[4], "four");
    // Behind its fifteenth character a text's packs are told apart by their numbers alone.
    auto longer = textPacks(0x80, {"a", std::string(60, 'b'), "c"});
    longer.erase(longer.begin() + 3);
    const CdText rest = parseCdText(bytesOfText(textAnswer({longer})));
    EXPECT_EQ(rest.titles[0] + rest.titles[1] + rest.titles[2], "ac");
}

std::string sealed(std::string pack) {
    return pack.replace(16, 2, bigEndian(checksumOf(pack.substr(0, 16)), 2));
}

// The sizes of the first language begin with its character code.
TEST(CdText, CharacterCodeIsThatOfTheSizes) {
    const std::tuple<int, std::size_t, std::string, std::string> texts[] = {
        {-1, 1, "\xC9t\xE9", "Été"},
        {0, 1, "\xC9t\xE9", "Été"},
        {1, 1, "Plain", "Plain"},
        {0x80, 1, "a\x83\x65", "aテ"},
        {0x80, 2, "\x83\x65", "テ"},
        {-1, 2, "\x83\x65", "テ"},
        {0x81, 2, "\xB0\xA1", "가"},
        {0x82, 2, "\xB0\xA1", "啊"},
        {0x55, 1, "\xE9 unknown", "é unknown"}};
    for (const auto& [code, width, bytes, text] : texts) {
        const std::string sizes = "\x8F" + std::string(1, '\0') + "\1" + std::string(15, '\0');
        std::string first = sizes, other = sizes, second = sizes;
        first[4] = static_cast<char>(code);
        other[3] = second[1] = '\x10';  // another language, and not the first of the sizes
        other[4] = second[4] = code == 0 ? '\x80' : '\0';
        std::vector<std::string> packs{sealed(other), sealed(second)};
        if (code >= 0) packs.insert(packs.begin(), sealed(first));
        const std::string answer = textAnswer({textPacks(0x80, {bytes}, width), packs});
        EXPECT_EQ(parseCdText(bytesOfText(answer)).titles[0], text) << code;
    }
}

TEST(CdText, LastTextMayLackItsZero) {
    const auto titles = textPacks(0x80, {"Album", "abcdef"});  // 12 characters and the zero
    const auto cut = [](std::vector<std::string> packs) {
        packs.pop_back();
        return packs;
    };
    ASSERT_EQ(titles.size(), 2U);
    const auto artists = cut(textPacks(0x81, {"Twelve chars"}));
    const auto title = [](const std::string& answer) {
        return parseCdText(bytesOfText(answer)).titles[1];
    };
    const CdText text = parseCdText(bytesOfText(textAnswer({cut(titles), artists})));
    EXPECT_EQ(text.titles[1] + "|" + text.artists[0], "abcdef|Twelve chars");
    EXPECT_EQ(title(textAnswer({cut(titles)})), "abcdef");
    // But where a pack is missing it may go on.
    EXPECT_EQ(title(textAnswer({cut(titles), {std::string(18, '\0')}, artists})), "");
    EXPECT_EQ(title(textAnswer({cut(titles), {titles[1].substr(0, 9)}})), "");
}

TEST(CdText, FirstTrackNeedNotBeTheFirst) {
    auto packs = textPacks(0x80, {"Album", "\t", "Two"});
    ASSERT_EQ(packs.size(), 1U);
    const CdText text = parseCdText(bytesOfText(textAnswer({packs})), 5);
    EXPECT_EQ(text.titles[5] + "|" + text.titles[6], "|Two");
    std::string& only = packs.front();
    only[1] = '\x80';  // an extension
    only = sealed(only);
    EXPECT_TRUE(parseCdText(bytesOfText(textAnswer({packs}))).isEmpty());
}

// Answers as a drive gave them.
struct Recording {
    CdAnswer opened = CdAnswer::Done, toc = CdAnswer::Done, text = CdAnswer::Failed;
    int attentions = 0;  // that the drive has to tell first
    std::string tocBytes, textBytes;
    std::vector<std::string> log;
};

class Recorded final : public CdTransport {
 public:
    explicit Recorded(Recording& recording) : recording_(recording) {}
    CdAnswer open(const std::string& drive) override {
        recording_.log.push_back("open " + drive);
        return recording_.opened;
    }
    CdAnswer send(const CdCommand& command, std::span<std::uint8_t> bytes) override {
        const bool isToc = command[2] == 0;
        EXPECT_EQ(command, (isToc ? CdCommand{0x43, 2, 0, 0, 0, 0, 0, 3, 0x24, 0}
                                  : CdCommand{0x43, 2, 5, 0, 0, 0, 0, 0x12, 4, 0}));
        EXPECT_EQ(bytes.size(), isToc ? 804U : 4612U);
        if (recording_.attentions-- > 0) return CdAnswer::Attention;
        const std::string& answer = isToc ? recording_.tocBytes : recording_.textBytes;
        std::copy_n(answer.begin(), std::min(answer.size(), bytes.size()), bytes.begin());
        return isToc ? recording_.toc : recording_.text;
    }
    void close() override { recording_.log.emplace_back("close"); }

 private:
    Recording& recording_;
};

class RecordedTracks final : public CdTracks {
 public:
    explicit RecordedTracks(int first = 1, int lastLength = 999)
        : first_(first), lastLength_(lastLength) {}
    CdAnswer open(const std::string&) override { return CdAnswer::Done; }
    int first() override { return first_; }
    int count() override { return 2; }
    std::optional<CdTrackInfo> track(int number) override {
        if (number == first_) return CdTrackInfo{0, 2, 0, 17999, true};
        if (number == first_ + 1) return CdTrackInfo{4, 2, 0, lastLength_, true};
        return std::nullopt;
    }
    void close() override {}

 private:
    const int first_, lastLength_;
};

TEST(Cddb, FirstReaderThatSucceedsAnswers) {
    Recording good;
    good.tocBytes = tocAnswer({{150}, {18150}, {20000}});
    good.text = CdAnswer::Done;
    good.textBytes = textAnswer({textPacks(0x80, {"Album"})});
    Recording bad;
    bad.toc = CdAnswer::Failed;
    Recording empty;
    empty.toc = CdAnswer::NoDisc;
    Recording dataOnly;
    dataOnly.tocBytes = tocAnswer({{150, data}, {18150}});
    Recording absent;
    absent.opened = CdAnswer::NotAvailable;
    CDDB_MCI mci(std::make_unique<RecordedTracks>());
    const auto read = [&](Recording& first, Recording& second, bool withMci) {
        CDDB_SPTI spti(std::make_unique<Recorded>(first));
        CDDB_ASPI aspi(std::make_unique<Recorded>(second));
        std::vector<DiscReader*> readers{&spti, &aspi};
        if (withMci) readers.push_back(&mci);
        return readDiscBy(" d:\\", readers);
    };
    const DiscContents first = read(good, bad, true);
    EXPECT_EQ(first.toc.text(), "150 18150 20000");
    EXPECT_EQ(first.text.titles[0], "Album");
    EXPECT_EQ(good.log, (std::vector<std::string>{"open d:", "close"}));
    EXPECT_TRUE(bad.log.empty());
    EXPECT_EQ(read(bad, good, false).toc.text(), "150 18150 20000");
    // One frame behind the last track's position and length.
    const DiscContents last = read(bad, absent, true);
    EXPECT_EQ(last.toc.text(), "150 18150 19150");
    EXPECT_TRUE(last.text.isEmpty());
    EXPECT_EQ(last.toc.tracks[0].length, 18000);
    EXPECT_EQ(read(absent, bad, false).answer, CdAnswer::Failed);
    EXPECT_EQ(read(bad, empty, false).answer, CdAnswer::NoDisc);
    EXPECT_EQ(read(dataOnly, good, false).answer, CdAnswer::Done);
    Recording cut;
    cut.tocBytes = good.tocBytes.substr(0, 11);
    EXPECT_EQ(read(cut, absent, false).answer, CdAnswer::Failed);
    EXPECT_EQ(read(dataOnly, absent, false).toc.text(), "");
    for (const Recording* one : {&bad, &empty, &dataOnly}) EXPECT_EQ(one->log.back(), "close");
}

TEST(Cddb, AttentionIsAskedOnceMore) {
    for (const auto& [attentions, isRead] : {std::pair{1, true}, {2, false}}) {
        Recording recording;
        recording.tocBytes = tocAnswer({{150}, {18150}});
        recording.attentions = attentions;
        CDDB_SPTI reader(std::make_unique<Recorded>(recording));
        EXPECT_EQ(reader.InitMediaTOC("D:"), isRead);
        EXPECT_EQ(reader.answer(), isRead ? CdAnswer::Done : CdAnswer::Failed);
    }
}

TEST(Cddb, TracksOfTheSystemBearTheirNumbers) {
    CDDB_MCI mci(std::make_unique<RecordedTracks>(5));
    EXPECT_TRUE(mci.InitMediaTOC("D:"));
    EXPECT_EQ(mci.toc().tracks[0].number, 5);
    EXPECT_EQ(mci.toc().tracks[1].number, 6);
    EXPECT_EQ(mci.GetTOC(), "150 18150 19150");
    for (const auto& [first, length] : {std::pair{0, 999}, {99, 999}, {1, -1}}) {
        CDDB_MCI bad(std::make_unique<RecordedTracks>(first, length));
        EXPECT_FALSE(bad.InitMediaTOC("D:"));
        EXPECT_EQ(bad.answer(), CdAnswer::Failed);
    }
}

// A drive that answers one call only when the test has ended, by writing to what it was handed.
struct Hanging {
    explicit Hanging(std::string call) : call(std::move(call)) {}
    void enter(const std::string& name) {
        if (name == call) released.wait();
    }
    const std::string call;
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future();
    std::atomic<int> sent = 0;
};

class HangingDrive final : public CdTransport, public CdTracks {
 public:
    explicit HangingDrive(std::shared_ptr<Hanging> script) : script_(std::move(script)) {}
    CdAnswer open(const std::string&) override {
        script_->enter("open");
        return CdAnswer::Done;
    }
    CdAnswer send(const CdCommand& command, std::span<std::uint8_t> bytes) override {
        ++script_->sent;
        const bool isToc = command[2] == 0;
        script_->enter(isToc ? "toc" : "text");
        const std::string answer = tocAnswer({{150}, {18150}});
        std::ranges::copy(answer, bytes.begin());
        return isToc ? CdAnswer::Done : CdAnswer::Failed;
    }
    int first() override { return 1; }
    int count() override { return 1; }
    std::optional<CdTrackInfo> track(int) override {
        script_->enter("track");
        return CdTrackInfo{0, 2, 0, 17999, true};
    }
    void close() override { script_->enter("close"); }

 private:
    const std::shared_ptr<Hanging> script_;
};

TEST(Cddb, DriveThatHangsIsGivenUp) {
    constexpr std::chrono::milliseconds limit{200};
    constexpr std::string_view whole = "150 18150";
    struct Case {
        std::string call;
        CdAnswer answer;
        std::string_view text;
        int sent;
        bool byTracks = false;
    };
    const Case cases[] = {
        {"open", CdAnswer::TimedOut, "", 0},       {"toc", CdAnswer::TimedOut, "", 1},
        {"text", CdAnswer::Done, whole, 2},        {"close", CdAnswer::Done, whole, 2},
        {"open", CdAnswer::TimedOut, "", 0, true}, {"track", CdAnswer::TimedOut, "", 0, true}};
    for (const Case& one : cases) {
        const auto script = std::make_shared<Hanging>(one.call);
        Recording unasked;
        auto drive = std::make_unique<HangingDrive>(script);
        std::unique_ptr<DiscReader> first;
        if (one.byTracks) {
            first = std::make_unique<CDDB_MCI>(std::move(drive), limit);
        } else {
            first = std::make_unique<CDDB_SPTI>(std::move(drive), limit);
        }
        CDDB_ASPI second(std::make_unique<Recorded>(unasked));
        const std::array<DiscReader*, 2> readers{first.get(), &second};
        const DiscContents contents = readDiscBy("D:", readers);
        EXPECT_EQ(contents.answer, one.answer) << one.call;
        EXPECT_EQ(contents.toc.text(), one.text) << one.call;
        EXPECT_TRUE(unasked.log.empty());
        EXPECT_FALSE(first->InitMediaTOC("D:"));
        EXPECT_EQ(first->answer(), CdAnswer::TimedOut);
        first.reset();
        EXPECT_EQ(script->sent, one.sent) << one.call;
        script->release.set_value();
        while (script.use_count() > 1) std::this_thread::yield();
    }
}

TEST(Cddb, DiscIsPrinted) {
    TestRegistry registry;
    RegistryEx store(registry.registry());
    JobOptions options;
    Settings settings(store);
    const Texts texts;
    MemorySink output;
    MemorySink messages;
    ErrorReport errors(texts, messages);
    TestProgress progress;
    Services services{options, settings, texts, errors, output, progress, progress.cancel, 1252};
    DiscContents disc;
    disc.toc = *parseToc(bytesOfText(tocAnswer({{150}, {18432, data}, {20000}})));
    disc.text.titles[0] = "Album";
    disc.text.artists[0] = "Band";
    disc.text.titles[1] = "One\n";
    disc.answer = CdAnswer::Done;
    EXPECT_EQ(printDisc(services, "D:", disc), 0);
    EXPECT_EQ(output.text,
              "150 18432 20000\nCDDB disc id: 0d010802\nBand - Album\n"
              "01  00:02.00  01:31.57  audio  One \n02  04:05.57  00:20.68  data\n");
    options.json = true;
    output.text.clear();
    printDisc(services, "D:", disc);
    EXPECT_TRUE(output.text.starts_with(
        R"({"Drive":"D:","Toc":"150 18432 20000","DiscId":"0d010802","Artist":"Band","Title":"Album",)"
        R"("Tracks":[{"Number":1,"Start":"00:02.00","Length":"01:31.57","IsAudio":true,"Artist":"",)"
        R"("Title":"One\n"},)"))
        << output.text;
    disc.toc = {};
    const std::pair<CdAnswer, std::string_view> failures[] = {
        {CdAnswer::Done, "no audio"},
        {CdAnswer::NoDisc, "no disc"},
        {CdAnswer::NotAvailable, "There is no CD drive"},
        {CdAnswer::OtherDevice, "device is no CD drive"},
        {CdAnswer::NoRights, "No right"},
        {CdAnswer::TimedOut, "cannot be read"},
        {CdAnswer::Failed, "cannot be read"}};
    for (const auto& [answer, words] : failures) {
        messages.text.clear();
        disc.answer = answer;
        EXPECT_EQ(printDisc(services, "D:", disc), 1);
        EXPECT_NE(messages.text.find(words), std::string::npos) << messages.text;
    }
}

}  // namespace
}  // namespace tavlo::test
