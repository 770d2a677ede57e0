#include "collection/ListJob.h"

#include <string>

#include "collection/JobFiles.h"
#include "collection/ListJson.h"
#include "collection/ListTable.h"
#include "core/Measures.h"
#include "tags/AudioFile.h"

namespace tavlo {

namespace {
constexpr std::size_t outputBlock = 1U << 16U;  // bytes written at once

class ListPrinter {
 public:
    ListPrinter(Services& services, ListForm form) : services_(services), form_(form) {}

    // False when the output takes no more.
    bool add(const ListRow& row) {
        ++files_;
        bytes_ += row.record.Length;
        seconds_ += static_cast<std::uint64_t>(row.record.Seconds);
        switch (form_) {
            case ListForm::Table:
                table_.add(row);
                break;
            case ListForm::TabLines:
                appendTabLine(out_, row);
                break;
            case ListForm::JsonLines:
                appendJsonLine(out_, row);
                break;
        }
        return out_.size() < outputBlock || flush();
    }

    bool finish(std::size_t terminalColumns) {
        if (form_ == ListForm::Table) {
            out_ += table_.print(services_.texts, terminalColumns);
            out_ += summary();
        }
        return flush();
    }

 private:
    bool flush() {
        const bool written = out_.empty() || services_.output.write(out_);
        out_.clear();
        return written;
    }

    [[nodiscard]] std::string summary() const {
        const Texts& texts = services_.texts;
        return "\n" + texts.get(Text::SummaryFiles, std::to_string(files_)) + "  " +
               texts.get(Text::SummarySize, sizeText(texts, bytes_)) + "  " +
               texts.get(Text::SummaryTime, durationText(seconds_)) + "\n";
    }

    Services& services_;
    ListForm form_;
    ListTable table_;
    std::string out_;
    std::uint64_t files_ = 0, bytes_ = 0, seconds_ = 0;
};

// A type that is not read gives an empty record without being opened.
bool isUnreadable(const ID3tag& record) {
    return record.FileType != FileType::None && !record.OK;
}

bool printAll(Services& services, const cFilesCollection& files, ListPrinter& printer) {
    const CodePage ansi(services.ansiCodePage);
    services.progress.setRange(files.count());
    for (std::size_t i = 1; i <= files.count(); ++i) {
        ListRow row{files.GetFile(i), files.GetFileSubPath(i), {}};
        row.record = ReadAudioFile(row.path, {ansi});
        if (isUnreadable(row.record)) services.errors.report(Text::FileNotRead, row.path);
        if (row.record.Path.empty()) row.record.Length = files.GetFileSize(i);
        if (!printer.add(row)) return false;
        services.progress.report(row.subPath);
        services.progress.step();
        services.progress.pumpMessages();
        if (services.cancel.load(std::memory_order_relaxed)) break;
    }
    services.progress.setRange(0);
    return true;
}
}  // namespace

int listFiles(Services& services, ListForm form, std::size_t terminalColumns) {
    cFilesCollection files(services.progress, services.cancel);
    if (!gatherJobFiles(services, {}, files)) return unusableCommandLine;
    // What a cancelled scan gathered is still printed; the next cancel ends that as well.
    const bool wasCancelled = services.cancel.exchange(false);
    ListPrinter printer(services, form);
    const bool written = printAll(services, files, printer) && printer.finish(terminalColumns);
    if (!written) services.errors.report(Text::OutputNotWritten);
    if (wasCancelled || services.cancel.load()) services.errors.report(Text::Cancelled);
    return services.errors.exitCode();
}

}  // namespace tavlo
