#include "board/zobrist.h"

#include "output/output.h"

uint64_t ZOBRIST[1024];

namespace
{

// One step of both multiply-with-carry generators, returning the 32-bit word.
uint32_t next_word(uint32_t& z, uint32_t& w)
{
    z = 36969u * (z & 0xFFFF) + (z >> 16);
    w = 18000u * (w & 0xFFFF) + (w >> 16);
    return (z << 16) + w;
}

} // namespace

int init_zobrist()
{
    uint32_t z = 1, w = 1;
    int warnings = 0;
    for (int i = 0; i < 1024; i++) {
        uint64_t candidate;
        do {
            uint64_t high = next_word(z, w);
            uint64_t low = next_word(z, w);
            candidate = high << 32 | low;
        } while (popcount(candidate) < 24);
        ZOBRIST[i] = candidate;
        for (int j = 0; j < i; j++) {
            if (popcount(ZOBRIST[j] ^ candidate) < 6) {
                send_line("bad hashcode");
                warnings++;
            }
        }
    }
    return warnings;
}

void compute_keys(const Position* pos, uint64_t* key, uint64_t* pawn_key)
{
    uint64_t k = 0, pk = 0;
    Bitboard men = occupancy(pos);
    while (men) {
        int sq = pop_lsb(men);
        int code = pos->board[sq];
        k ^= piece_key(code, sq);
        if (piece_type(code) == PAWN)
            pk ^= piece_key(code, sq);
    }
    if (pos->ep_square != NO_SQUARE)
        k ^= ZOBRIST[pos->ep_square];
    k = pos->side + ((k & ~1ULL) ^ (ZOBRIST[pos->castling] & ~1ULL));
    *key = k;
    *pawn_key = pk;
}
