// Evaluations per second over the opening positions, with cold and warm caches.
#include "board/fen.h"
#include "board/zobrist.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace
{

double now_seconds()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

} // namespace

int main(int argc, char** argv)
{
    std::string path = argc > 1 ? argv[1] : "../shared/data/openings/noob_3moves_10k.epd";
    std::ifstream in(path);
    std::vector<std::string> fens;
    for (std::string line; std::getline(in, line);)
        if (line.size() > 10)
            fens.push_back(line);
    if (fens.empty()) {
        std::fprintf(stderr, "no positions in %s\n", path.c_str());
        return 1;
    }
    init_zobrist();
    init_evaluation();
    init_eval_params(0);
    auto game = std::make_unique<Game>();
    auto caches = std::make_unique<EvalCaches>();
    Position* pos = game_init(game.get());

    std::vector<Position> positions;
    for (const std::string& f : fens) {
        set_position(pos, f.c_str());
        if (!position_problem(pos))
            positions.push_back(*pos);
    }
    const int rounds = 20;
    long long sum = 0;
    double cold = 0, warm = 0;
    for (int r = 0; r < rounds; r++) {
        clear_eval_caches(caches.get());
        double start = now_seconds();
        for (const Position& p : positions)
            sum += evaluate(&p, caches.get(), p.side, 2, 0, nullptr);
        cold += now_seconds() - start;
        // Same positions again: now answered by the evaluation cache.
        start = now_seconds();
        for (const Position& p : positions)
            sum += evaluate(&p, caches.get(), p.side, 2, 0, nullptr);
        warm += now_seconds() - start;
    }
    double n = double(positions.size()) * rounds;
    std::printf("positions %zu  cold caches %.0f evals/s (%.0f ns each)  warm caches %.0f evals/s  [checksum %lld]\n",
                positions.size(), n / cold, 1e9 * cold / n, n / warm, sum);
    return 0;
}
