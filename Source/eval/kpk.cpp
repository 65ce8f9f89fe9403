#include "eval/kpk.h"

#include "board/attacks.h"

#include <cstdint>
#include <vector>

namespace
{

// Index: side to move, black king, white king and the pawn folded onto files
// a-d (ranks 2-7): 2 * 64 * 64 * 24 positions.
constexpr int PAWN_SLOTS = 24;
constexpr int POSITIONS = 2 * 64 * 64 * PAWN_SLOTS;

enum Result : uint8_t { INVALID, UNKNOWN, DRAW, WIN };

uint32_t win_bits[POSITIONS / 32];
bool built = false;

int pawn_slot(int pawn)
{
    return (rank_of(pawn) - 1) * 4 + file_of(pawn);
}
int slot_square(int slot)
{
    return make_square(slot % 4, slot / 4 + 1);
}

int index_of(int stm, int wk, int bk, int pawn)
{
    return stm + 2 * (bk + 64 * (wk + 64 * pawn_slot(pawn)));
}

Result initial(int stm, int wk, int bk, int pawn)
{
    if (wk == bk || wk == pawn || bk == pawn || distance(wk, bk) <= 1)
        return INVALID;
    // With White to move the black king may not stand in the pawn's attack.
    if (stm == 0 && (PAWN_ATTACKS[0][pawn] & bit(bk)))
        return INVALID;
    if (stm == 0 && rank_of(pawn) == 6) {
        int queen = pawn + 8;
        if (queen != wk && queen != bk && (distance(bk, queen) > 1 || distance(wk, queen) == 1))
            return WIN;
    }
    if (stm == 1) {
        Bitboard escapes = KING_ATTACKS[bk] & ~KING_ATTACKS[wk] & ~PAWN_ATTACKS[0][pawn];
        if (!escapes)
            return DRAW; // stalemate (the pawn stands unattacked here)
        if ((KING_ATTACKS[bk] & bit(pawn)) && !(KING_ATTACKS[wk] & bit(pawn)))
            return DRAW; // the pawn falls
    }
    return UNKNOWN;
}

} // namespace

void kpk_init()
{
    if (built)
        return;
    std::vector<uint8_t> table(POSITIONS);
    for (int slot = 0; slot < PAWN_SLOTS; slot++)
        for (int wk = 0; wk < 64; wk++)
            for (int bk = 0; bk < 64; bk++)
                for (int stm = 0; stm < 2; stm++) {
                    int pawn = slot_square(slot);
                    table[index_of(stm, wk, bk, pawn)] = initial(stm, wk, bk, pawn);
                }

    bool changed = true;
    while (changed) {
        changed = false;
        for (int slot = 0; slot < PAWN_SLOTS; slot++) {
            int pawn = slot_square(slot);
            for (int wk = 0; wk < 64; wk++)
                for (int bk = 0; bk < 64; bk++)
                    for (int stm = 0; stm < 2; stm++) {
                        uint8_t& r = table[index_of(stm, wk, bk, pawn)];
                        if (r != UNKNOWN)
                            continue;
                        // White wins if some move wins; Black draws if some move draws.
                        const Result good = stm == 0 ? WIN : DRAW;
                        const Result bad = stm == 0 ? DRAW : WIN;
                        bool any_good = false, all_bad = true;
                        auto see = [&](uint8_t child) {
                            if (child == good)
                                any_good = true;
                            if (child != bad)
                                all_bad = false;
                        };
                        if (stm == 0) {
                            Bitboard moves = KING_ATTACKS[wk] & ~KING_ATTACKS[bk] & ~bit(pawn);
                            while (moves)
                                see(table[index_of(1, pop_lsb(moves), bk, pawn)]);
                            // Pushes below the seventh rank; promotions were settled above.
                            int push = pawn + 8;
                            if (rank_of(pawn) < 6 && push != wk && push != bk) {
                                see(table[index_of(1, wk, bk, push)]);
                                if (rank_of(pawn) == 1 && push + 8 != wk && push + 8 != bk)
                                    see(table[index_of(1, wk, bk, push + 8)]);
                            }
                        } else {
                            Bitboard moves = KING_ATTACKS[bk] & ~KING_ATTACKS[wk] & ~PAWN_ATTACKS[0][pawn] & ~bit(pawn);
                            while (moves)
                                see(table[index_of(0, wk, pop_lsb(moves), pawn)]);
                        }
                        if (any_good) {
                            r = good;
                            changed = true;
                        } else if (all_bad) {
                            r = bad;
                            changed = true;
                        }
                    }
        }
    }
    for (int i = 0; i < POSITIONS; i++)
        if (table[i] == WIN)
            win_bits[i / 32] |= 1u << (i % 32);
    built = true;
}

bool kpk_win(bool white_to_move, int wk, int pawn, int bk)
{
    if (file_of(pawn) >= 4) {
        wk ^= 7;
        pawn ^= 7;
        bk ^= 7;
    }
    int i = index_of(white_to_move ? 0 : 1, wk, bk, pawn);
    return win_bits[i / 32] >> (i % 32) & 1;
}
