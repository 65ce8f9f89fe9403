#include "board/attacks.h"

#if defined(KORVEL_SLIDERS_BY_EXTRACTION)

SliderIndex ROOK_INDEX, BISHOP_INDEX;
Bitboard SLIDER_ATTACKS[102400 + 5248];

namespace
{

// A line's last square never blocks anything behind it, so it is left out
// of the mask; that keeps a rook's index to at most 12 bits.
Bitboard relevant(int sq, const Direction (&dirs)[4])
{
    Bitboard mask = 0;
    for (Direction d : dirs) {
        Bitboard ray = RAY[d][sq];
        if (!ray)
            continue;
        int last = d == NORTH || d == EAST || d == NORTH_EAST || d == NORTH_WEST ? msb(ray) : lsb(ray);
        mask |= ray & ~bit(last);
    }
    return mask;
}

uint32_t fill(SliderIndex& index, const Direction (&dirs)[4], Bitboard (*attacks)(int, Bitboard), uint32_t next)
{
    for (int sq = 0; sq < 64; sq++) {
        Bitboard mask = relevant(sq, dirs);
        index.mask[sq] = mask;
        index.offset[sq] = next;
        // Every subset of the mask, in the order the extraction numbers them.
        Bitboard subset = 0;
        do {
            SLIDER_ATTACKS[next + _pext_u64(subset, mask)] = attacks(sq, subset);
            subset = (subset - mask) & mask;
        } while (subset);
        next += uint32_t(1) << popcount(mask);
    }
    return next;
}

// Runs ahead of every ordinary static constructor, so that no code that
// runs before main sees the tables empty.
__attribute__((constructor(101))) void fill_slider_tables()
{
    constexpr Direction orthogonal[4] = {NORTH, EAST, SOUTH, WEST};
    constexpr Direction diagonal[4] = {NORTH_EAST, NORTH_WEST, SOUTH_WEST, SOUTH_EAST};
    uint32_t used = fill(ROOK_INDEX, orthogonal, rook_attacks_by_rays, 0);
    fill(BISHOP_INDEX, diagonal, bishop_attacks_by_rays, used);
}

} // namespace

#endif
