#include "board/gives_check.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/see.h"
#include "eval/eval_cache.h"
#include "search/limits.h"
#include "search/movepick.h"
#include "search/search.h"
#include "search/search_thread.h"
#include "search/search_trace.h"
#include "search/search_values.h"
#include "search/tt.h"

#include <algorithm>

namespace
{

constexpr int CHECK_GAIN = 20000;      // checks are never delta-pruned
constexpr int LAST_PIECES_GAIN = 5000; // a capture that leaves a bare king or one minor
constexpr int PAWN_RUN_GAIN = 1500;    // a pawn reaching the seventh or eighth rank
constexpr int DELTA_MARGIN = 150;
constexpr int DELTA_MARGIN_RAZORED = 450;
// Below this draft only recaptures on the square of the last move are searched.
constexpr int RECAPTURE_DEPTH = -3;

} // namespace

int quiesce(SearchThread* t, int side, int ply, int depth, int alpha, int beta, int node_type, Move* pv)
{
    Position* pos = &t->pos;
    PlyInfo& pi = t->plies[ply];

    // Step 1: stand pat.
    int e = pi.eval;
    if (e >= beta)
        return beta;
    int a = std::max(alpha, e);
    int floor = a;
    pi.moves_tried = 0;

    // Steps 2-3: delta margin and picker mode.
    int margin = depth < 1 ? DELTA_MARGIN : DELTA_MARGIN_RAZORED;
    init_picker(t, ply, depth < 0 ? MODE_QUIESCE : MODE_QUIESCE_CHECKS, NO_SQUARE);

    const MoveEntry* last = t->plies[ply - 1].current_move;
    int last_to = last && last->move ? move_to(last->move) : NO_SQUARE;
    // The node is never in check here (the node routine takes checks to the
    // move loop). Pins and checking squares are gathered only once a move
    // comes that needs them: many quiescence nodes have none.
    PinInfo pins;
    CheckInfo ci;
    bool facts = false;
    Move child_pv[MAX_PLY + 2];
    child_pv[ply + 1] = 0;
    int result = a;
    Move best_move = 0;
    int enemy = side ^ 1;

    // Step 4.
    while (MoveEntry* m = next_move(t, ply)) {
        Move move = m->move;
        int from = move_from(move), to = move_to(move);
        // a: recaptures only, deep in the quiescence search.
        if (depth < RECAPTURE_DEPTH && to != last_to)
            continue;
        if (!facts) {
            pins = pin_info_unchecked(pos, side);
            ci = check_info(pos);
            facts = true;
        }
        // b-d: the gain to expect.
        int captured = piece_type(m->captured);
        int g = SEE_VALUE[captured]; // the delta test expects the exchange values
        if (gives_check(pos, move, ci)) {
            g = CHECK_GAIN;
        } else if (captured && popcount(pos->pieces[enemy][PAWN]) == (captured == PAWN ? 1 : 0)
                   && pos->phase_material[enemy] - PHASE_WEIGHT[captured] < 4) {
            g = LAST_PIECES_GAIN;
        } else if (piece_type(m->piece) == PAWN && (side == WHITE ? to : to ^ 56) >= 48) {
            g = PAWN_RUN_GAIN;
        }
        // e: delta pruning.
        if (g + e <= a - margin)
            continue;
        // f: exchange pruning of captures by a more valuable man.
        bool ep = piece_type(m->piece) == PAWN && to == pos->ep_square;
        if (!ep && PIECE_WORTH[piece_type(m->piece)] > PIECE_WORTH[captured] && swap(pos, side, from, to) < BAD_SEE)
            continue;
        // g: null and illegal moves.
        if (move == 0 || !is_legal_fast(pos, side, move, pins))
            continue;
        // h: search it.
        pi.current_move = m;
        // Children below draft 0 never probe the table; all evaluate.
        uint64_t child_key = key_after(pos, move);
        if (depth >= 1)
            tt_prefetch(child_key);
        prefetch_eval_entry(&t->eval, child_key);
        trace_move(t, move);
        make_move(pos, move);
        int v = -search_node(t, enemy, ply + 1, depth - 1, -beta, -a, -node_type, child_pv);
        unmake_move(pos);
        pi.current_move = nullptr;
        if (search_stopped())
            return 0;
        pi.moves_tried++;
        // i: a new best move.
        if (v > a) {
            best_move = move;
            pv[ply] = move;
            pv[ply + 1] = 0;
            if (v >= beta) {
                result = v;
                break;
            }
            for (int i = ply + 1; i < MAX_PLY && child_pv[i]; i++) {
                pv[i] = child_pv[i];
                if (i + 1 < MAX_PLY)
                    pv[i + 1] = 0;
            }
            a = v;
            result = a;
        }
    }

    // Step 5: only a fail high is stored.
    if (depth >= 0 && result >= beta)
        tt_store(pos, ply, depth, best_move, result, floor, beta);
    return result;
}
