#include "board/position_check.h"

#include "board/zobrist.h"

#include <cstdio>
#include <cstdlib>

const char* position_fault(const Position* pos)
{
    Bitboard pieces[2][8] = {};
    uint32_t signature[2] = {0, 0};
    uint16_t phase[2] = {0, 0};
    for (int sq = 0; sq < 64; sq++) {
        int code = pos->board[sq];
        if (!code)
            continue;
        int side = piece_side(code), type = piece_type(code);
        if (type == EMPTY || type > KING)
            return "bad piece code";
        pieces[side][0] |= bit(sq);
        pieces[side][type] |= bit(sq);
        signature[side] += SIGNATURE_STEP[type];
        phase[side] += PHASE_WEIGHT[type];
        if (type == KING && pos->king_square[side] != sq)
            return "king square";
    }
    for (int s = 0; s < 2; s++) {
        for (int t = 0; t < 8; t++)
            if (pieces[s][t] != pos->pieces[s][t])
                return "bitboards";
        if (signature[s] != pos->material_signature[s])
            return "material signature";
        if (phase[s] != pos->phase_material[s])
            return "phase material";
    }
    uint64_t key, pawn_key;
    compute_keys(pos, &key, &pawn_key);
    if (key != pos->key)
        return "key";
    if (pawn_key != pos->pawn_key)
        return "pawn key";
    return "";
}

#ifdef KORVEL_CHECKS
void check_position_or_die(const Position* pos)
{
    const char* fault = position_fault(pos);
    if (*fault) {
        std::fprintf(stderr, "position check failed: %s\n", fault);
        std::abort();
    }
}
#endif
