#include "tablebase/tb_dtz.h"

#include "board/attack_queries.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "tablebase/tbcore.h"

namespace
{

// A table that keeps only one side to move needs one ply of search, and
// the positions it reaches are kept for their side; more levels than this
// only come from a broken table.
constexpr int MAX_NESTING = 4;

constexpr int CURSED = 100; // extra count of results the fifty-move rule turns

// Distance of a position whose best move zeroes (or where a zeroing move
// keeps its value).
int zeroing_distance(int wdl)
{
    static constexpr int DISTANCE[5] = {-1, -1 - CURSED, 0, 1 + CURSED, 1};
    return DISTANCE[wdl + 2];
}

inline int sign(int v)
{
    return (v > 0) - (v < 0);
}

// Moves are made on a copy that shares the game's undo records; a game at
// the end of its history leaves no room for them.
inline bool room_for_a_move(const Position* pos)
{
    return pos->game_ply + 1 < MAX_GAME_PLY;
}

inline bool zeroes(const MoveEntry& e)
{
    return piece_type(e.piece) == PAWN || e.captured;
}

bool resolve(const Position* pos, int* wdl)
{
    TbBoard b = tb_board_of(pos);
    bool unused;
    return tb_resolve_wdl(&b, wdl, &unused);
}

bool is_mated(Position* pos)
{
    MoveEntry list[MAX_MOVES];
    return in_check(pos, pos->side) && gen_legal(pos, list) == 0;
}

bool distance(Position* pos, int nesting, int* wdl_out, int* dtz_out)
{
    if (nesting > MAX_NESTING || !room_for_a_move(pos))
        return false;
    TbBoard b = tb_board_of(pos);
    int wdl;
    bool capture_best;
    if (!tb_resolve_wdl(&b, &wdl, &capture_best))
        return false;
    *wdl_out = wdl;
    if (wdl == 0 || capture_best) {
        *dtz_out = zeroing_distance(wdl);
        return true;
    }

    // Step 1: a pawn move that keeps the win zeroes at once.
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list);
    if (wdl > 0)
        for (int i = 0; i < n; i++) {
            if (piece_type(list[i].piece) != PAWN || list[i].captured)
                continue;
            make_move(pos, list[i].move);
            int v;
            bool ok = resolve(pos, &v);
            unmake_move(pos);
            if (!ok)
                return false;
            if (-v == wdl) {
                *dtz_out = zeroing_distance(wdl);
                return true;
            }
        }

    // Step 2: the stored distance, when the table keeps this side to move.
    int plies;
    bool other_side;
    if (!tb_stored_dtz(&b, wdl, &plies, &other_side))
        return false;
    if (!other_side) {
        *dtz_out = sign(wdl) * (plies + 1 + (wdl == 1 || wdl == -1 ? CURSED : 0));
        return true;
    }

    // Step 3: otherwise one ply of search. Winning, only moves that do not
    // zero are left to try; losing, every move counts and the longest
    // resistance is the distance.
    bool found = false;
    int best = 0;
    for (int i = 0; i < n; i++) {
        bool zeroing = zeroes(list[i]);
        if (wdl > 0 && zeroing)
            continue;
        make_move(pos, list[i].move);
        int v = 0, child_wdl, child_dtz;
        bool ok;
        if (zeroing) {
            // A table that cannot be read leaves no value to look up.
            ok = resolve(pos, &child_wdl);
            v = ok ? -zeroing_distance(child_wdl) : 0;
        } else {
            ok = distance(pos, nesting + 1, &child_wdl, &child_dtz);
            if (ok && wdl > 0 && child_dtz == -1 && is_mated(pos)) {
                v = 1; // a mate ends the phase with this very move
            } else {
                v = ok ? -child_dtz : 0;
                v += sign(v);
            }
        }
        unmake_move(pos);
        if (!ok)
            return false;
        if (sign(v) == sign(wdl) && (!found || v < best)) {
            best = v;
            found = true;
        }
    }
    if (!found && wdl > 0)
        return false;
    *dtz_out = found ? best : -1;
    return true;
}

// Preference of a root move by the distance after it (from the root's
// view): a mate, then wins by the soonest zeroing, then draws, then losses
// by the longest resistance.
int root_preference(int v, bool mate)
{
    if (mate)
        return 4000;
    if (v > 0)
        return 3000 - v;
    if (v == 0)
        return 1000;
    return -v;
}

} // namespace

bool tb_position_dtz(const Position* pos, int* wdl, int* dtz)
{
    Position copy = *pos;
    return distance(&copy, 0, wdl, dtz);
}

bool tb_root_move(const Position* pos, Move* move, int* dtz)
{
    Position p = *pos;
    int wdl;
    if (!distance(&p, 0, &wdl, dtz))
        return false;
    // (distance() has made sure there is room for the moves below.)
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(&p, list);
    int best = -1;
    *move = 0;
    for (int i = 0; i < n; i++) {
        make_move(&p, list[i].move);
        int v = 0, child_wdl, child_dtz;
        bool ok;
        bool mate = *dtz > 0 && is_mated(&p);
        if (zeroes(list[i])) {
            ok = resolve(&p, &child_wdl);
            v = ok ? zeroing_distance(-child_wdl) : 0;
        } else {
            ok = distance(&p, 1, &child_wdl, &child_dtz);
            v = ok ? -child_dtz : 0;
            v += sign(v);
        }
        unmake_move(&p);
        if (!ok)
            return false;
        int preference = root_preference(v, mate);
        if (preference > best) {
            best = preference;
            *move = list[i].move;
        }
    }
    return true;
}
