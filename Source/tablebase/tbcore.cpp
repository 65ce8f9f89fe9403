#include "tablebase/tbcore.h"

#include "tablebase/tb_moves.h"
#include "tablebase/tb_registry.h"

namespace
{

// Finds the part of the table that serves the position and fills `sq` with
// the men's squares in that part's order. The position's colours are
// exchanged when its material is the table's with the sides swapped (and,
// for equal material, when Black is to move), so that the table's side to
// move is `side`; pawns then also change direction, hence the rank mirror.
const TbPart* place_men(const TbLayout* t, const TbBoard* b, bool exchanged, int side, int* sq)
{
    int flip = exchanged ? 1 : 0;
    int mirror = exchanged && t->lead_code ? 56 : 0;
    const TbPart* part;
    int i = 0;
    if (t->lead_code) {
        Bitboard lead = tb_men(b, (t->lead_code >> 3) ^ flip, PAWN);
        if (popcount(lead) != t->lead_pawns)
            return nullptr;
        while (lead)
            sq[i++] = pop_lsb(lead) ^ mirror;
        int file = tb_leading_file(sq, t->lead_pawns);
        part = &t->part[file][t->sides == 2 ? side : 0];
    } else {
        part = &t->part[0][t->sides == 2 ? side : 0];
    }
    const TbEncoding* e = &part->enc;
    while (i < e->men) {
        int code = e->code[i];
        Bitboard men = tb_men(b, (code >> 3) ^ flip, code & 7);
        for (; i < e->men && e->code[i] == code; i++) {
            if (!men)
                return nullptr;
            sq[i] = pop_lsb(men) ^ mirror;
        }
        if (men)
            return nullptr;
    }
    return part;
}

// The table of the position's material with the colour exchange and the
// table's side to move; nullptr when there is none.
TbTable* table_for(const TbBoard* b, bool* exchanged, int* side)
{
    // No table holds a board without one king a side or with a pawn on
    // the first or last rank (and the pawn indexes have no place for one).
    if (popcount(tb_men(b, WHITE, KING)) != 1 || popcount(tb_men(b, BLACK, KING)) != 1)
        return nullptr;
    if (b->type[PAWN] & (RANK_1 | RANK_8))
        return nullptr;
    TbTable* t = tb_find_table(tb_material_key(b), exchanged);
    if (!t)
        return nullptr;
    if (t->material.symmetric)
        *exchanged = b->stm == BLACK;
    *side = b->stm ^ int(*exchanged);
    return t;
}

// The stored number of the position in a part, -1 when it cannot be read.
int stored_number(const TbLayout* t, const TbBoard* b, bool exchanged, int side, const TbPart** used)
{
    int sq[TB_MAX_MEN];
    const TbPart* part = place_men(t, b, exchanged, side, sq);
    if (!part)
        return -1;
    uint64_t idx = t->lead_code ? tb_pawn_index(&part->enc, sq) : tb_piece_index(&part->enc, sq);
    if (idx >= part->enc.positions)
        return -1;
    *used = part;
    return tb_pairs_value(&part->pairs, idx);
}

} // namespace

bool tb_core_init()
{
    return tb_index_init();
}

bool tb_stored_wdl(const TbBoard* b, int* wdl)
{
    // Two bare kings: no file, always a draw.
    if ((b->side[WHITE] | b->side[BLACK]) == b->type[KING] && popcount(b->type[KING]) == 2) {
        *wdl = 0;
        return true;
    }
    bool exchanged;
    int side;
    TbTable* t = table_for(b, &exchanged, &side);
    if (!t)
        return false;
    const TbLayout* layout = tb_table_layout(t, TB_WDL);
    if (!layout)
        return false;
    const TbPart* part;
    int v = stored_number(layout, b, exchanged, side, &part);
    if (v < 0 || v > 4)
        return false;
    *wdl = v - 2;
    return true;
}

bool tb_stored_dtz(const TbBoard* b, int wdl, int* plies, bool* other_side)
{
    bool exchanged;
    int side;
    TbTable* t = table_for(b, &exchanged, &side);
    if (!t || wdl == 0)
        return false;
    const TbLayout* layout = tb_table_layout(t, TB_DTZ);
    if (!layout)
        return false;

    // The part (for pawns: the leading pawn's file) says which side to move
    // it keeps.
    int sq[TB_MAX_MEN];
    const TbPart* part = place_men(layout, b, exchanged, 0, sq);
    if (!part)
        return false;
    int kept = part->pairs.flags & DTZ_BLACK_TO_MOVE ? 1 : 0;
    *other_side = kept != side && !t->material.symmetric;
    if (*other_side)
        return true;

    int v = stored_number(layout, b, exchanged, 0, &part);
    if (v < 0)
        return false;
    static constexpr int SLOT[5] = {MAP_LOSS, MAP_BLESSED_LOSS, 0, MAP_CURSED_WIN, MAP_WIN};
    v = tb_map_distance(part, SLOT[wdl + 2], v);
    if (v < 0)
        return false;
    // Stored in moves unless the flags say plies; results the fifty-move
    // rule turns are always stored in moves.
    int flags = part->pairs.flags;
    bool in_plies = (wdl == 2 && (flags & DTZ_WIN_PLIES)) || (wdl == -2 && (flags & DTZ_LOSS_PLIES));
    *plies = in_plies ? v : 2 * v;
    return true;
}

bool tb_resolve_wdl(const TbBoard* b, int* wdl, bool* capture_best)
{
    TbMove moves[TB_MAX_CAPTURES];
    int n = tb_legal_captures(b, moves);
    int best = -3;
    for (int i = 0; i < n; i++) {
        TbBoard child = tb_after(b, moves[i]);
        int v;
        bool unused;
        if (!tb_resolve_wdl(&child, &v, &unused))
            return false;
        v = -v;
        if (v > best) {
            best = v;
            if (best == 2) {
                *wdl = 2;
                *capture_best = true;
                return true;
            }
        }
    }

    // With nothing but captures to play, the stored value means nothing.
    bool only_captures = n > 0 && !tb_has_quiet_move(b);
    int stored = best;
    if (!only_captures && !tb_stored_wdl(b, &stored))
        return false;
    if (best >= stored) {
        *wdl = best;
        *capture_best = best > 0 || only_captures;
    } else {
        *wdl = stored;
        *capture_best = false;
    }
    return true;
}
