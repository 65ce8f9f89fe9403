// The parameter file on any text: the input is written as params.txt and
// the table is laid down again, as at start-up. Whatever the file holds,
// loading must stay inside the table and the line buffer; every row's packed
// value must be the rounding of its working copies; the table the tuner
// writes out must read back as the same table; and the evaluation of a few
// positions must be the same straight and through its caches (the sanitizer
// build checks the arithmetic on the way).
// fuzz-test-runs: 1500
// fuzz-max-len: 32768
#include "board/fen.h"
#include "board/zobrist.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "fuzz_support.h"
#include "tools/tuner.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace
{

const char* const FENS[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "2r3k1/5pp1/p3p2p/1p1bP3/3P4/P4N2/1q3PPP/R2Q2K1 b - -",
    "8/8/4k3/8/2pK4/8/1P6/8 w - -",
};

Game game;
EvalCaches caches;
std::vector<Score> written;

void write_file(const uint8_t* data, size_t size)
{
    FILE* f = std::fopen("params.txt", "wb");
    if (!f)
        fuzz_fail("cannot write params.txt in the scratch directory");
    if (size)
        std::fwrite(data, 1, size, f);
    std::fclose(f);
}

void check_rows()
{
    for (int row = 0; row < param_count; row++) {
        const EvalParam& p = param_table[row];
        if (opening_of(p.score) != int(std::lround(p.opening_f)) || endgame_of(p.score) != int(std::lround(p.endgame_f)))
            fuzz_fail("a row's packed value is not its working copies");
    }
}

void check_evaluations()
{
    clear_eval_caches(&caches);
    for (const char* fen : FENS) {
        Position* pos = game_init(&game);
        set_position(pos, fen);
        int straight = evaluate(pos, &caches, pos->side, 0, 0, nullptr);
        evaluate(pos, &caches, pos->side, 2, 0, nullptr);
        if (evaluate(pos, &caches, pos->side, 2, 0, nullptr) != straight)
            fuzz_fail("the cached evaluation differs from the straight one");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    init_zobrist();
    init_evaluation();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    write_file(data, size);
    init_eval_params(0);
    check_rows();
    check_evaluations();

    // What the tuner writes is read back as the same table.
    written.clear();
    for (int row = 0; row < param_count; row++)
        written.push_back(param_table[row].score);
    if (!write_params_file("params.txt"))
        fuzz_fail("the tuner could not write params.txt");
    init_eval_params(0);
    for (int row = 0; row < param_count; row++)
        if (param_table[row].score != written[size_t(row)])
            fuzz_fail("the table written out reads back as another");
    return 0;
}
