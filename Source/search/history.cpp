#include "search/history.h"

#include "search/search_values.h"

#include <algorithm>
#include <cstring>

const MoveEntry* previous_move(const SearchThread* t, int ply, int back)
{
    int p = ply - back;
    if (p < 0)
        return nullptr;
    const MoveEntry* e = t->plies[p].current_move;
    if (!e || e->move == 0)
        return nullptr;
    return e;
}

void update_quiet_stats(SearchThread* t, int ply, const MoveEntry* e, bool good, int depth, bool in_check)
{
    int d = std::min(depth, 8);
    int bonus = 16 * d, malus = -6 * d;
    const MoveEntry* prev = previous_move(t, ply, 1);
    int prev_type = prev ? piece_type(prev->piece) : 0;
    int to = move_to(e->move);
    // The plain slice and the slice of the previous move's piece; after a
    // null move both are the same entry, updated twice.
    int slots[2] = {history_index(0, e->piece, to), history_index(prev_type, e->piece, to)};
    for (int slot : slots) {
        int h = t->history[slot];
        h += good ? (16384 - h) * bonus / 2048 : h * malus / 2048;
        t->history[slot] = int16_t(h);
    }
    if (!good)
        return;
    PlyInfo& pi = t->plies[ply];
    Move m = e->move;
    if (in_check) {
        pi.check_killer = m;
    } else if (m != pi.killer[0]) {
        pi.killer[1] = pi.killer[0];
        pi.killer[0] = m;
    }
    if (prev) {
        uint16_t* counters = t->counter_moves[prev->piece][move_to(prev->move)];
        if (m != counters[0]) {
            counters[1] = counters[0];
            counters[0] = m;
        }
    }
    if (const MoveEntry* prev2 = previous_move(t, ply, 2))
        t->followup[prev2->piece][move_to(prev2->move)] = m;
}

void clear_history(SearchThread* t)
{
    std::fill(std::begin(t->history), std::end(t->history), int16_t(HISTORY_START));
    std::memset(t->counter_moves, 0, sizeof t->counter_moves);
    std::memset(t->followup, 0, sizeof t->followup);
}
