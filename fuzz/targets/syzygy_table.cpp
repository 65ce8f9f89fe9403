// The tablebase prober on any table file: the first byte names the file (a
// few three- and four-man materials, WDL or DTZ) and seeds the positions
// probed; the rest is its content, written into the scratch directory ahead
// of the shared tables, so that the other files a probe needs are real.
// Probing must stay inside the mapping, end, and give values in range and
// root moves that can be played.
// fuzz-test-runs: 1000
// fuzz-max-len: 16384
#include "board/fen.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "board/zobrist.h"
#include "fuzz_support.h"
#include "tablebase/tbprobe.h"

#include <cstdio>
#include <random>
#include <string>
#include <unistd.h>

namespace
{

const char* const MATERIALS[] = {"KQvK", "KRvK", "KPvK", "KRvKP", "KPvKP"};
constexpr int MATERIAL_COUNT = int(sizeof MATERIALS / sizeof MATERIALS[0]);
constexpr const char* EXTENSIONS[2] = {".rtbw", ".rtbz"};
constexpr int POSITIONS = 6;
constexpr int TRIES = 40; // random placements per position wanted

std::string search_path;
Game game;

// A FEN with the material's men on random squares (pawns off the first and
// last ranks) and a random side to move; it may still be illegal.
std::string random_fen(const char* material, std::mt19937_64* rng)
{
    char board[64] = {};
    bool white = true;
    for (const char* p = material; *p; p++) {
        white = white && *p != 'v';
        int sq = int((*rng)() % 64);
        while (*p != 'v' && (board[sq] || (*p == 'P' && (sq < 8 || sq >= 56))))
            sq = int((*rng)() % 64);
        if (*p != 'v')
            board[sq] = white ? *p : char(*p - 'A' + 'a');
    }
    return fuzz_placement(board) + ((*rng)() & 1 ? " b - - 0 1" : " w - - 0 1");
}

void probe(const Position* pos)
{
    int wdl = tb_probe_wdl(pos, 100), full_wdl = 0, dtz = 0;
    Move move = 0;
    int root = tb_probe_root(pos, &move);
    if (wdl < -1 || wdl > 4 || root < -1 || root > 4
        || (tb_probe_full(pos, &full_wdl, &dtz) && (full_wdl < -2 || full_wdl > 2)))
        fuzz_fail("a probe gave a value out of range");
    if (move && (!is_pseudo_legal(pos, move) || !is_legal(pos, pos->side, move)))
        fuzz_fail("the root probe chose a move that cannot be played");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    init_zobrist();
    char here[4096];
    if (!getcwd(here, sizeof here))
        fuzz_fail("no working directory");
    search_path = here;
    std::string shared = std::string(KORVEL_DATA_DIR) + "/syzygy";
    if (access(shared.c_str(), R_OK) == 0)
        search_path += ";" + shared;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    int choice = data[0] % (2 * MATERIAL_COUNT);
    const char* material = MATERIALS[choice / 2];
    std::string name = std::string(material) + EXTENSIONS[choice % 2];

    // Only this input's file in the directory.
    for (const char* m : MATERIALS)
        for (const char* e : EXTENSIONS)
            unlink((std::string(m) + e).c_str());
    FILE* f = std::fopen(name.c_str(), "wb");
    if (!f || std::fwrite(data + 1, 1, size - 1, f) != size - 1 || std::fclose(f) != 0)
        fuzz_fail("cannot write the table file");

    tb_set_probe_depths(0, 0);
    tb_init(search_path.c_str());

    // The same positions for every content of the file, so that what a
    // mutation changes is the table alone.
    std::mt19937_64 rng{uint64_t(data[0])};
    int probed = 0;
    for (int t = 0; t < TRIES * POSITIONS && probed < POSITIONS; t++) {
        std::string fen = random_fen(material, &rng);
        Position* pos = game_init(&game);
        set_position(pos, fen.c_str());
        if (position_problem(pos))
            continue;
        probe(pos);
        probed++;
    }
    tb_init("<empty>");
    return 0;
}
