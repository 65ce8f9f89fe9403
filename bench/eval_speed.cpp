// Evaluations per second over the opening positions, with cold and warm caches.
#include "board/fen.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "search/clock.h"
#include "search/search_thread.h"
#include "search/tt.h"
#include "uci/settings.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

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
    set_default_settings();
    tt_allocate(1);
    SearchThread* t = static_cast<SearchThread*>(std::calloc(1, sizeof(SearchThread)));
    attach_position(t);
    init_evaluation();
    init_eval_params(0);

    std::vector<Position> positions;
    for (const std::string& f : fens) {
        set_position(&t->pos, f.c_str());
        if (!position_problem(&t->pos))
            positions.push_back(t->pos);
    }
    const int rounds = 20;
    long long sum = 0;
    double cold = 0, warm = 0;
    for (int r = 0; r < rounds; r++) {
        clear_eval_caches(t);
        double start = now_seconds();
        for (const Position& p : positions) {
            t->pos = p;
            t->pos.undo = t->undo;
            sum += evaluate(t, p.side, 2, 0, 0);
        }
        cold += now_seconds() - start;
        // Same positions again: now answered by the evaluation cache.
        start = now_seconds();
        for (const Position& p : positions) {
            t->pos = p;
            t->pos.undo = t->undo;
            sum += evaluate(t, p.side, 2, 0, 0);
        }
        warm += now_seconds() - start;
    }
    double n = double(positions.size()) * rounds;
    std::printf("positions %zu  cold caches %.0f evals/s (%.0f ns each)  warm caches %.0f evals/s  [checksum %lld]\n",
                positions.size(), n / cold, 1e9 * cold / n, n / warm, sum);
    std::free(t);
    return 0;
}
