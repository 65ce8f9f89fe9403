// Files other programs or people wrote: after an even first byte a PGN file
// for the book builder, the comment scanners and the labeller (a built book
// is whole entries in ascending key order); after an odd one params.txt
// (each row packs its working values, evaluation stays defined, and what
// the tuner writes reads back the same).
// fuzz-test-runs: 2000
// fuzz-max-len: 32768
#include "board/fen.h"
#include "board/zobrist.h"
#include "book/book_builder.h"
#include "book/book_entry.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "fuzz_support.h"
#include "tools/label_games.h"
#include "tools/pgn_scan.h"
#include "tools/tuner.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace
{

void check_book(const char* name)
{
    std::ifstream in(name, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() % BOOK_ENTRY_SIZE)
        fuzz_fail("the built book ends inside an entry");
    uint64_t previous = 0;
    for (size_t at = 0; at < bytes.size(); at += BOOK_ENTRY_SIZE) {
        BookEntry e;
        decode_book_entry(reinterpret_cast<const unsigned char*>(&bytes[at]), &e);
        if (e.key < previous)
            fuzz_fail("the built book is out of key order");
        previous = e.key;
    }
}

void check_rows()
{
    for (int row = 0; row < param_count; row++) {
        const EvalParam& p = param_table[row];
        if (opening_of(p.score) != int(std::lround(p.opening_f))
            || endgame_of(p.score) != int(std::lround(p.endgame_f)))
            fuzz_fail("a row's packed value is not its working copies");
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
    if (size == 0)
        return 0;
    bool pgn = data[0] % 2 == 0;
    std::ofstream(pgn ? "fuzz.pgn" : "params.txt", std::ios::binary)
        .write(reinterpret_cast<const char*>(data + 1), std::streamsize(size - 1));
    if (pgn) {
        if (build_book("fuzz.pgn", "fuzz.bin"))
            check_book("fuzz.bin");
        for (int variant = 1; variant <= 4; variant++)
            if (scan_pgn_files("fuzz.pgn", variant, "scan.out", "scan.side") < 0)
                fuzz_fail("the scanner could not open its files");
        if (label_games("fuzz.pgn") < 0)
            fuzz_fail("the labeller could not open its files");
        return 0;
    }
    init_eval_params(0);
    check_rows();
    // Extreme rows must still give defined arithmetic (the sanitizers check).
    static Game game;
    static EvalCaches caches;
    for (const char* fen : {START_FEN, "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
                            "8/8/4k3/8/2pK4/8/1P6/8 w - -"}) {
        Position* pos = game_init(&game);
        set_position(pos, fen);
        clear_eval_caches(&caches);
        if (evaluate(pos, &caches, pos->side, 0, 0, nullptr) != evaluate(pos, &caches, pos->side, 2, 0, nullptr))
            fuzz_fail("the evaluation differs between plies");
    }
    std::vector<Score> written;
    for (int row = 0; row < param_count; row++)
        written.push_back(param_table[row].score);
    if (!write_params_file("params.txt"))
        fuzz_fail("the tuner could not write params.txt");
    init_eval_params(0);
    for (int row = 0; row < param_count; row++)
        if (param_table[row].score != written[size_t(row)])
            fuzz_fail("the table the tuner wrote reads back as another");
    std::remove("params.txt");
    return 0;
}
