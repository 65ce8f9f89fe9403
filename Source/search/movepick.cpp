#include "search/movepick.h"

#include "board/makemove.h"
#include "board/movegen.h"
#include "board/see.h"
#include "search/history.h"
#include "search/search_thread.h"
#include "search/search_values.h"
#include "search/tt.h"

namespace
{

constexpr int GOOD_CAPTURE = 150;
constexpr int UNDER_PROMOTION_SCORE = 15;

enum Stage {
    STAGE_HASH = 0,
    STAGE_GEN_CAPTURES = 1,
    STAGE_CAPTURES = 2, // without exchange scoring (quiescence)
    STAGE_QUIET_CHECKS = 3,
    STAGE_GOOD_CAPTURES = 4,
    STAGE_GEN_QUIETS = 5,
    STAGE_REST = 6,    // quiet moves and losing captures together
    STAGE_GEN_ALL = 7, // plain walk of every move (perft)
    STAGE_WALK = 8,
    STAGE_END = 15,
};

inline int stage_of(const PlyInfo& pi)
{
    return pi.pick_stage & 15;
}
inline void set_stage(PlyInfo& pi, int stage)
{
    pi.pick_stage = uint16_t((pi.pick_stage & ~15) | stage);
}

// Moves the best-scored entry of [next, end) to next (first of equals wins).
MoveEntry* select_best(PlyInfo& pi)
{
    MoveEntry* best = pi.next;
    MoveEntry* end = pi.list_end;
    if (best == end)
        return nullptr;
    int best_score = best->score;
    for (MoveEntry* e = best + 1; e != end; e++)
        if (e->score > best_score) {
            best_score = e->score;
            best = e;
        }
    MoveEntry chosen = *best;
    *best = *pi.next;
    *pi.next = chosen;
    return pi.next;
}

void score_captures(SearchThread* t, PlyInfo& pi, MoveEntry* begin, MoveEntry* end)
{
    const Position* pos = &t->pos;
    bool see = pi.pick_stage & PICK_SEE;
    for (MoveEntry* e = begin; e != end; e++) {
        int captured = piece_type(e->captured), mover = piece_type(e->piece);
        if (!see) {
            e->score = int16_t(MVV[captured] - mover);
            continue;
        }
        // The capture can lose at most the capturing man: when even that
        // leaves 50 or more, every threshold below is passed without the
        // exchange sequence.
        int floor = SEE_VALUE[captured] - SEE_VALUE[mover];
        int s = floor >= 50 ? floor : swap(pos, pos->side, move_from(e->move), move_to(e->move));
        if (s < -49)
            e->score = int16_t(captured + 4);
        else if (e->move & (PROMO_KNIGHT | PROMO_BISHOP | PROMO_ROOK))
            e->score = UNDER_PROMOTION_SCORE;
        else
            e->score = int16_t(MVV[captured] - mover - (s < 50 ? 6 : 0));
    }
}

// The good captures come next in the main search: their children's table
// buckets and evaluation entries are asked for at once.
void prefetch_good_captures(SearchThread* t, const MoveEntry* begin, const MoveEntry* end)
{
    for (const MoveEntry* e = begin; e != end; e++)
        if (e->score > GOOD_CAPTURE) {
            uint64_t key = key_after(&t->pos, e->move);
            tt_prefetch(key);
            prefetch_eval_entry(&t->eval, key);
        }
}

void score_quiets(SearchThread* t, int ply, PlyInfo& pi, MoveEntry* begin, MoveEntry* end)
{
    if (t->pos.search_ply <= ROOT_PLY) {
        for (MoveEntry* e = begin; e != end; e++)
            e->score = 0;
        return;
    }
    const MoveEntry* prev = previous_move(t, ply, 1);
    const MoveEntry* prev2 = previous_move(t, ply, 2);
    int prev_type = prev ? piece_type(prev->piece) : 0;
    const uint16_t* counters = prev ? t->counter_moves[prev->piece][move_to(prev->move)] : nullptr;
    uint16_t follow = prev2 ? t->followup[prev2->piece][move_to(prev2->move)] : 0;
    for (MoveEntry* e = begin; e != end; e++) {
        int to = move_to(e->move);
        int base = (t->history[history_index(prev_type, e->piece, to)] / 256
                    + t->history[history_index(0, e->piece, to)] / 256)
                   / 2;
        Move m = e->move;
        if (!pi.in_check) {
            if (m == pi.killer[0])
                base += 60;
            else if (m == pi.killer[1])
                base += 55;
            else if (counters && m == counters[0])
                base += 50;
            else if (counters && m == counters[1])
                base += 45;
            else if (m == follow)
                base += 40;
        } else {
            if (m == pi.check_killer)
                base += 60;
            else if (counters && m == counters[0])
                base += 55;
            else if (counters && m == counters[1])
                base += 50;
        }
        e->score = int16_t(base);
    }
}

} // namespace

MoveEntry* list_start(SearchThread* t, int ply)
{
    return ply <= ROOT_PLY ? t->move_buffer : t->plies[ply - 1].list_end + 1;
}

void init_picker(SearchThread* t, int ply, int mode, int checker)
{
    PlyInfo& pi = t->plies[ply];
    pi.move_list = list_start(t, ply);
    pi.list_end = pi.move_list;
    pi.next = pi.move_list;
    pi.checker_square = uint8_t(checker);
    pi.pick_stage = uint16_t(mode | ((mode & PICK_ORDERED) ? STAGE_HASH : STAGE_GEN_ALL));
}

MoveEntry* next_move(SearchThread* t, int ply)
{
    PlyInfo& pi = t->plies[ply];
    const Position* pos = &t->pos;
    int side = pos->side;
    for (;;) {
        switch (stage_of(pi)) {
        case STAGE_HASH:
            set_stage(pi, STAGE_GEN_CAPTURES);
            if ((pi.pick_stage & PICK_HASH_FIRST) && pi.hash_move) {
                Move m = pi.hash_move;
                pi.hash_entry.move = m;
                pi.hash_entry.score = HASH_MOVE_SCORE;
                pi.hash_entry.piece = pos->board[move_from(m)];
                pi.hash_entry.captured = pos->board[move_to(m)];
                return &pi.hash_entry;
            }
            break;
        case STAGE_GEN_CAPTURES: {
            MoveEntry* end = gen_captures(pos, side, pi.list_end, pi.checker_square);
            end = gen_promotions(pos, side, pi.pick_stage & PICK_SEE, end);
            score_captures(t, pi, pi.list_end, end);
            if (pi.pick_stage & PICK_SEE)
                prefetch_good_captures(t, pi.list_end, end);
            pi.list_end = end;
            set_stage(pi, (pi.pick_stage & PICK_SEE) ? STAGE_GOOD_CAPTURES : STAGE_CAPTURES);
            break;
        }
        case STAGE_CAPTURES:
            if (MoveEntry* e = select_best(pi)) {
                pi.next++;
                return e;
            }
            set_stage(pi, (pi.pick_stage & PICK_CHECKS) ? STAGE_QUIET_CHECKS : STAGE_END);
            break;
        case STAGE_QUIET_CHECKS:
            pi.list_end = gen_quiet_checks(pos, pi.list_end);
            set_stage(pi, STAGE_WALK);
            break;
        case STAGE_GOOD_CAPTURES: {
            MoveEntry* e = select_best(pi);
            if (e && e->score > GOOD_CAPTURE) {
                pi.next++;
                return e;
            }
            set_stage(pi, STAGE_GEN_QUIETS);
            break;
        }
        case STAGE_GEN_QUIETS: {
            MoveEntry* end = gen_quiets(pos, side, pi.list_end, pi.checker_square);
            score_quiets(t, ply, pi, pi.list_end, end);
            pi.list_end = end;
            set_stage(pi, STAGE_REST);
            break;
        }
        case STAGE_REST:
            if (MoveEntry* e = select_best(pi)) {
                pi.next++;
                return e;
            }
            set_stage(pi, STAGE_END);
            break;
        case STAGE_GEN_ALL: {
            pi.list_end = gen_pseudo_legal(pos, side, pi.list_end, pi.checker_square);
            set_stage(pi, STAGE_WALK);
            break;
        }
        case STAGE_WALK:
            if (pi.next != pi.list_end)
                return pi.next++;
            set_stage(pi, STAGE_END);
            break;
        default:
            return nullptr;
        }
    }
}
