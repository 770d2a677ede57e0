#include "collection/RenameReport.h"

#include "core/JsonLine.h"
#include "platform/PlainText.h"

namespace tavlo {

void RenameReport::tell(const RenamePlan& plan) {
    for (const RenameStep& step : plan) tellStep(step);
}

void RenameReport::tellChangedSince(const JournalRow& row) {
    services_.errors.report(Text::ChangedSince, row.to);
    if (!services_.options.json) return;
    out_ += pathsLine(row.to, row.from, "failed", services_.texts.get(Text::ChangedSince, row.to));
}

void RenameReport::tellStep(const RenameStep& step) {
    const std::string_view result = resultOf(step);
    const bool isUnread = step.reason == Text::FileNotRead;
    if (result == "skipped") ++(isUnread ? unread_ : skipped_);
    if (result == "skipped" && isUnread) services_.errors.report(Text::FileNotRead, step.from);
    if (result == "unchanged") ++unchanged_;
    if (result == "planned" || result == "renamed") ++renamed_;
    if (const auto failure = messageOf(step)) {
        services_.errors.report(failure->text, failure->about);
    }
    if (services_.options.json) {
        out_ += pathsLine(step.from, step.to, result, remarkOn(step));
    } else if (result == "planned") {
        const std::string remark = remarkOn(step);
        out_ += withoutControls(step.from + " -> " + step.to);
        out_ += remark.empty() ? "\n" : "  (" + remark + ")\n";
    }
}

std::string_view RenameReport::resultOf(const RenameStep& step) const {
    if (step.result == RenameResult::Skipped) return "skipped";
    if (step.result != RenameResult::Done) return "failed";
    if (step.isMoved) return "renamed";
    if (!step.moves()) return "unchanged";
    return services_.options.dryRun ? "planned" : "cancelled";
}

std::string RenameReport::remarkOn(const RenameStep& step) const {
    const Texts& texts = services_.texts;
    if (const auto failure = messageOf(step)) return texts.get(failure->text, failure->about);
    if (step.result == RenameResult::Skipped) return texts.get(step.reason, step.from);
    return step.isNumbered ? texts.get(Text::NameTaken) : std::string();
}

int RenameReport::finish() {
    const Texts& texts = services_.texts;
    if (!services_.options.json) {
        const bool dryRun = services_.options.dryRun;
        out_ += texts.get(dryRun ? Text::SummaryWouldRename : Text::SummaryRenamed,
                          std::to_string(renamed_)) +
                "  " + texts.get(Text::SummaryUnchanged, std::to_string(unchanged_));
        for (const auto& [text, count] :
             {std::pair(Text::SummarySkipped, skipped_), std::pair(Text::SummaryUnread, unread_)}) {
            if (count > 0) out_ += "  " + texts.get(text, std::to_string(count));
        }
        out_ += '\n';
    }
    services_.progress.setRange(0);
    if (!services_.output.write(out_)) services_.errors.report(Text::OutputNotWritten);
    if (services_.cancel.load()) services_.errors.report(Text::Cancelled);
    return services_.errors.exitCode();
}

}  // namespace tavlo
