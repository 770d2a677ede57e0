#include "core/Options.h"

#include <algorithm>

#include "core/Numbers.h"
#include "core/OptionTable.h"
#include "platform/PlainText.h"

namespace tavlo {
namespace {

constexpr std::string_view formatPrefix = "/f";

bool isDigits(std::string_view text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !text.empty() && std::ranges::all_of(text, isDigit);
}

bool isFormatWord(std::string_view word) {
    return word.starts_with(formatPrefix) && isDigits(word.substr(formatPrefix.size()));
}

/// One walk over the arguments; `operator()` carries out the action of the option at hand.
class OptionReader {
 public:
    OptionReader(const CommandString& line, JobOptions& options) : line_(line), options_(options) {}

    void readAll() {
        for (at_ = 1; at_ <= line_.count(); ++at_) readOne();
        if (!hasMask_) options_.mask = defaultMask();
    }

    void operator()(const SetMode& action) { setMode(action.mode); }
    void operator()(const SetMark& action) { options_.*action.mark = true; }
    void operator()(const SetSwitch& action) { options_.*action.target = action.value; }
    void operator()(const SetPriority& action) { options_.priority = action.priority; }

    void operator()(const TakeText& action) {
        const std::string word = line_.ParameterEx(at_);
        if (auto value = takeValue()) {
            options_.*action.target = action.trimmed ? std::string(trimBlanks(*value)) : *value;
        } else {
            options_.valueless.push_back(word);
        }
    }

    void operator()(const TakeNumber& action) {
        const std::string word = line_.ParameterEx(at_);
        if (const auto value = takeValue()) {
            options_.*action.target = parseInteger(trimBlanks(*value)).value_or(0);
        } else {
            options_.valueless.push_back(word);
        }
    }

    void operator()(const TakeSpecial& action) {
        switch (action) {
            case TakeSpecial::Playlist:
                setMode(RunMode::Copy);
                if (auto value = takeValue()) options_.playlist = *value;
                break;
            case TakeSpecial::DiscMask:
                setMode(RunMode::MakeDiscFiles);
                if (auto value = takeValue()) setMask(*value);
                break;
            case TakeSpecial::Encoder:
                setMode(RunMode::Encode);
                takeEncoder();
                break;
            case TakeSpecial::Language:
                takeLanguage();
                break;
            case TakeSpecial::Limits:
                options_.lowLimit = 255;
                options_.highLimit = 65280;
                break;
            case TakeSpecial::TagKinds:
                setMode(RunMode::RemoveTags);
                (*this)(TakeText{&JobOptions::tagKinds});
                break;
        }
    }

 private:
    void readOne() {
        const std::string word = line_.Parameter(at_);
        if (!line_.IsOption(at_)) {
            readBareWord(word);
        } else if (const OptionRow* row = findOption(word)) {
            std::visit(*this, row->action);
        } else if (isFormatWord(word) || line_.ParameterEx(at_).starts_with(formatPrefix)) {
            options_.outputFormat = parseInteger(word.substr(formatPrefix.size())).value_or(0);
        } else {
            options_.ignored.push_back(line_.ParameterEx(at_));
        }
    }

    void readBareWord(const std::string& word) {
        // "\\\\?\\" begins a long path of Windows.
        const std::size_t from = word.starts_with(R"(\\?\)") ? 4 : 0;
        if (word.find_first_of("*?", from) != std::string::npos) {
            setMask(word);
        } else if (!word.empty()) {
            options_.folder = word;
            options_.paths.push_back(word);
        }
    }

    std::optional<std::string> takeValue() {
        if (!line_.NextIsValue(at_)) return std::nullopt;
        return line_.ParameterEx(++at_);
    }

    /// "/encode ogg s1", "/encode "ogg s1"" and "/encode vbr1" are understood; a word that is
    /// neither an encoder nor a preset is left for the mask or folder.
    void takeEncoder() {
        options_.encoder = EncoderWord::Mp3;
        std::string_view word = nextValue();
        const std::size_t blank = word.find(' ');
        const auto encoder = findEncoder(word.substr(0, blank));
        options_.encoder = encoder.value_or(EncoderWord::Mp3);
        options_.preset = defaultPreset(options_.encoder);
        if (encoder) ++at_;
        if (encoder && blank != std::string_view::npos) {
            const auto preset = findPreset(*encoder, trimBlanks(word.substr(blank)));
            if (preset) options_.preset = *preset;
        } else if (const auto preset = findPreset(options_.encoder, nextValue())) {
            options_.preset = *preset;
            ++at_;
        }
    }

    void takeLanguage() {
        auto value = takeValue();
        if (!value) {
            setMode(RunMode::LanguageTemplate);
        } else if (*value == "0") {
            options_.noLanguageFile = true;
            options_.languageFile.reset();
        } else {
            options_.noLanguageFile = false;
            options_.languageFile = std::move(value);
        }
    }

    std::string_view nextValue() const {
        return line_.NextIsValue(at_) ? std::string_view(line_.ParameterEx(at_ + 1)) : "";
    }

    void setMode(RunMode mode) {
        const bool isSecond = options_.mode != RunMode::MainWindow && options_.mode != mode;
        if (isSecond) options_.secondJob = line_.Parameter(at_);
        options_.mode = mode;
        options_.modeWord = line_.Parameter(at_);
    }

    void setMask(const std::string& mask) {
        options_.mask = mask;
        hasMask_ = true;
    }

    std::string defaultMask() const {
        if (options_.mode == RunMode::MakeDiscFiles) return "*.m3u";
        return options_.waveTrim ? "*.wav" : "*.*";
    }

    const CommandString& line_;
    JobOptions& options_;
    std::size_t at_ = 1;
    bool hasMask_ = false;
};

}  // namespace

const OptionRow* findOption(std::string_view word) {
    if (word.empty()) return nullptr;
    const auto* row = std::ranges::find_if(optionTable, [&](const OptionRow& option) {
        return std::ranges::find(option.names, word) != option.names.end();
    });
    return row == optionTable.end() ? nullptr : row;
}

bool isOptionWord(std::string_view word) {
    return findOption(word) != nullptr || isFormatWord(word);
}

JobOptions readOptions(const CommandString& line, std::string startFolder) {
    JobOptions options;
    options.startFolder = std::move(startFolder);
    OptionReader(line, options).readAll();
    return options;
}

}  // namespace tavlo
