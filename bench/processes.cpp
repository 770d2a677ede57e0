// bench_processes ROUNDS NAME=COMMAND...: whole programs in turn, run by the shell with their
// output in a file of their own; ratios to the first one.

#include <cstdio>
#include <cstdlib>

#include "bench/Rounds.h"

using namespace tavlo;

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    std::vector<Contender> contenders;
    for (int i = 2; i < argc; ++i) {
        const std::string text = argv[i];
        const std::size_t equals = text.find('=');
        const std::string command = text.substr(equals + 1) + " >build/bench/output.txt";
        contenders.push_back(
            {text.substr(0, equals), [command] { return std::system(command.c_str()) == 0; }, {}});
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
