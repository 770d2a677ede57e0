#include "collection/RenamePlan.h"

namespace tavlo {

std::optional<RenameMessage> messageOf(const RenameStep& step) {
    switch (step.result) {
        case RenameResult::NotCreated:
            return RenameMessage{
                step.reason, step.reason == Text::FileNotCreated || step.reason == Text::FileAside
                                 ? step.to
                                 : step.from};
        case RenameResult::FolderNotCreated:
            return RenameMessage{Text::FolderNotCreated, folderOf(step.to, nativePathStyle())};
        case RenameResult::Unknown:
            return RenameMessage{Text::UnknownError, {}};
        default:
            return std::nullopt;
    }
}

// Most files of a batch lie in the folder of the one before.
TakenNames::Names& TakenNames::namesIn(std::string_view folder) {
    if (lastNames_ != nullptr && folder == lastFolder_) return *lastNames_;
    const auto [found, isNew] = folders_.try_emplace(hashNoCase(folder));
    lastFolder_ = folder;
    lastNames_ = &found->second;
    if (isNew) {
        for (const std::string& name : list_(lastFolder_)) ++(*lastNames_)[hashNoCase(name)];
    }
    return *lastNames_;
}

bool TakenNames::isTaken(std::string_view path) {
    return countOf(path) > 0;
}

void TakenNames::remove(std::string_view path) {
    std::uint32_t& count = countOf(path);
    if (count > 0) --count;
}

namespace {
using NameTest = std::function<bool(std::string_view path)>;

// `tried` is the last number that is known to be taken.
std::string numberedPath(const std::string& wanted, PathStyle style, const NameTest& isFree,
                         int& tried) {
    constexpr int mostTries = 1'000'000;
    const std::string_view extension = extensionOf(wanted, style);
    const std::size_t endSize = extension.empty() ? 0 : extension.size() + 1;
    const std::string front = wanted.substr(0, wanted.size() - endSize) + " (";
    const std::string end = ")" + wanted.substr(wanted.size() - endSize);
    while (tried < mostTries) {
        std::string path = front;
        path.append(std::to_string(++tried)).append(end);
        if (isFree(path)) return path;
    }
    return {};
}
}  // namespace

std::string freePath(const std::string& wanted, PathStyle style, const NameTest& isFree) {
    int tried = 0;
    return isFree(wanted) ? wanted : numberedPath(wanted, style, isFree, tried);
}

void settleNames(RenamePlan& plan, TakenNames& taken, PathStyle style) {
    const auto isFree = [&](std::string_view path) { return !taken.isTaken(path); };
    for (const RenameStep& step : plan) {
        if (step.moves()) taken.remove(step.from);
    }
    // From here on names are only taken, so that no number has to be tried twice.
    std::unordered_map<std::uint64_t, int> tried;
    for (RenameStep& step : plan) {
        if (!step.moves()) continue;
        std::string settled =
            isFree(step.to) ? step.to
                            : numberedPath(step.to, style, isFree, tried[hashNoCase(step.to)]);
        step.isNumbered = settled != step.to;
        if (settled.empty()) {
            step.result = RenameResult::NotCreated;
            settled = step.from;
        } else {
            // Only the letters' case would change.
            step.to = equalsNoCase(settled, step.from) ? step.from : settled;
        }
        taken.add(settled);
    }
}

namespace {
// The moving rows by the names that they have now. Where two names differ in case only, the exact
// one bears a name.
class Bearers {
 public:
    explicit Bearers(const RenamePlan& plan) {
        for (std::size_t i = 0; i < plan.size(); ++i) {
            if (!plan[i].moves()) continue;
            exact_.emplace(plan[i].from, i);
            withoutCase_.emplace(hashNoCase(plan[i].from), i);
        }
    }
    [[nodiscard]] std::optional<std::size_t> find(std::string_view path) const {
        if (const auto row = exact_.find(path); row != exact_.end()) return row->second;
        const auto row = withoutCase_.find(hashNoCase(path));
        return row == withoutCase_.end() ? std::nullopt : std::optional(row->second);
    }

 private:
    std::unordered_map<std::string_view, std::size_t> exact_;
    std::unordered_map<std::uint64_t, std::size_t> withoutCase_;
};
}  // namespace

std::vector<MoveStep> moveOrder(const RenamePlan& plan) {
    const Bearers bearers(plan);
    enum class State : std::uint8_t { New, Waiting, Placed };
    std::vector<State> states(plan.size(), State::New);
    std::vector<MoveStep> order;
    std::vector<std::size_t> waiting;
    order.reserve(plan.size());
    for (std::size_t start = 0; start < plan.size(); ++start) {
        // Each file waits for the one that bears its new name.
        for (std::size_t at = start; plan[at].moves() && states[at] == State::New;) {
            states[at] = State::Waiting;
            waiting.push_back(at);
            const auto bearer = bearers.find(plan[at].to);
            if (!bearer) break;
            at = *bearer;
            if (states[at] == State::Waiting) order.push_back({at, true});
        }
        for (; !waiting.empty(); waiting.pop_back()) {
            states[waiting.back()] = State::Placed;
            order.push_back({waiting.back(), false});
        }
    }
    return order;
}

}  // namespace tavlo
