#include "tablebase/tbprobe.h"

#include "tablebase/tb_dtz.h"
#include "tablebase/tb_files.h"
#include "tablebase/tb_registry.h"
#include "tablebase/tb_report.h"
#include "tablebase/tbcore.h"

#include <cstring>

uint32_t tb_largest = 0;

namespace
{

constexpr int SEVEN_MEN_DEPTH = 100; // positions of seven or more men: in effect never in search
constexpr int FIFTY_MOVE_PLIES = 100;

int probe_depth5 = 0;
int probe_depth6 = 1;
bool index_ready = false;

// Root and console probes need a board the tables can hold: no castling,
// one king a side, no square claimed by both sides.
bool fit_for_tables(const Position* pos)
{
    if (uint32_t(popcount(occupancy(pos))) > tb_largest || pos->castling)
        return false;
    return popcount(pos->pieces[WHITE][KING]) == 1 && popcount(pos->pieces[BLACK][KING]) == 1
           && !(pos->pieces[WHITE][0] & pos->pieces[BLACK][0]);
}

} // namespace

void tb_init(const char* path)
{
    // Step 1: let go of every table of the previous initialisation.
    tb_registry_clear();
    tb_largest = 0;

    // Step 2: the fixed index tables, once per process.
    static bool built = false;
    if (!built) {
        built = true;
        index_ready = tb_core_init();
    }

    // Step 3: no path, no tables.
    if (!path || !*path || !std::strcmp(path, "<empty>") || !index_ready)
        return;

    // Steps 4-6: the directories, then every material that has a file.
    tb_set_directories(path);
    uint32_t largest = 0;
    int found = tb_registry_scan(&largest);
    tb_largest = largest;

    // Step 7.
    tb_report_found(found);
}

void tb_set_probe_depths(int depth5, int depth6)
{
    probe_depth5 = depth5;
    probe_depth6 = depth6;
}

int tb_probe_wdl(const Position* pos, int depth)
{
    // Step 1-4: the cheap refusals come before any work on the position.
    if (depth < probe_depth5)
        return -1;
    int men = popcount(occupancy(pos));
    if (uint32_t(men) > tb_largest)
        return -1;
    if ((men == 6 && depth < probe_depth6) || (men >= 7 && depth < SEVEN_MEN_DEPTH))
        return -1;
    if (pos->castling)
        return -1;

    // Step 5: the prober sees bitboards and a fifty-move count of zero.
    TbBoard b = tb_board_of(pos);
    int wdl;
    bool unused;
    if (!tb_resolve_wdl(&b, &wdl, &unused))
        return -1;
    return wdl + 2;
}

int tb_probe_root(const Position* pos, Move* move)
{
    *move = 0;
    if (!fit_for_tables(pos))
        return -1;
    int dtz;
    if (!tb_root_move(pos, move, &dtz)) {
        *move = 0;
        return -1;
    }
    // The real fifty-move count decides whether the distance still fits.
    if (dtz > 0)
        return dtz + pos->fifty <= FIFTY_MOVE_PLIES ? 4 : 3;
    if (dtz < 0)
        return -dtz + pos->fifty <= FIFTY_MOVE_PLIES ? 0 : 1;
    return 2;
}

bool tb_probe_full(const Position* pos, int* wdl, int* dtz)
{
    return fit_for_tables(pos) && tb_position_dtz(pos, wdl, dtz);
}
