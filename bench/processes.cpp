// bench_processes ROUNDS NAME=COMMAND...: whole programs in turn, run by the shell with their
// output in a file of their own; ratios to the first one. The command in PREPARE, if there is one,
// runs before each of them and is not timed.

#include <cstdio>
#include <cstdlib>

#include "bench/Rounds.h"

using namespace tavlo;

namespace {
bool succeeds(const std::string& command) {
    return std::system(command.c_str()) == 0;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const char* prepare = std::getenv("PREPARE");
    const std::string preparation = prepare != nullptr ? prepare : "true";
    std::vector<Contender> contenders;
    for (int i = 2; i < argc; ++i) {
        const std::string text = argv[i];
        const std::size_t equals = text.find('=');
        const std::string command = text.substr(equals + 1) + " >build/bench/output.txt";
        contenders.push_back({text.substr(0, equals),
                              [command] { return succeeds(command); },
                              {},
                              [preparation] { return succeeds(preparation); }});
    }
    if (!runRounds(contenders, std::atoi(argv[1]))) return 1;
    std::printf("| program | times %s's speed | seconds |\n|---|---|---|\n",
                contenders[0].name.c_str());
    for (const Contender& contender : contenders) {
        std::printf("| %s | %.2f | %.3f |\n", contender.name.c_str(),
                    ratio(contenders[0], contender), median(contender.seconds));
    }
    return 0;
}
