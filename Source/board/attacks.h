// Precomputed attack tables and slider attacks by ray and first blocker.
//
// Sliders use one ray per direction: the first blocker of an ascending ray is
// the lowest set bit of ray & occupancy, of a descending ray the highest one.
// XOR-ing the blocker's own ray in the same direction removes exactly the
// squares behind it. Square 63 (ascending) and square 0 (descending) serve as
// sentinels: their rays in those directions are empty, so an unblocked ray
// costs no branch.
#pragma once

#include "board/bitboard.h"

#include <array>
#include <cstdint>

// Bit extraction where the processor has it, unless the build asks for
// the ray path (KORVEL_RAY_ATTACKS) in order to test it.
#if defined(__BMI2__) && !defined(KORVEL_RAY_ATTACKS)
#define KORVEL_SLIDERS_BY_EXTRACTION 1
#include <immintrin.h>
#endif

enum Direction { NORTH, EAST, NORTH_EAST, NORTH_WEST, SOUTH, WEST, SOUTH_WEST, SOUTH_EAST };

namespace attack_tables
{

constexpr int DIR_FILE[8] = {0, 1, 1, -1, 0, -1, -1, 1};
constexpr int DIR_RANK[8] = {1, 0, 1, 1, -1, 0, -1, -1};

constexpr bool on_board(int f, int r)
{
    return f >= 0 && f < 8 && r >= 0 && r < 8;
}

constexpr Bitboard steps(int sq, const int (&df)[8], const int (&dr)[8])
{
    Bitboard b = 0;
    for (int i = 0; i < 8; i++) {
        int f = file_of(sq) + df[i], r = rank_of(sq) + dr[i];
        if (on_board(f, r))
            b |= bit(make_square(f, r));
    }
    return b;
}

constexpr std::array<Bitboard, 64> make_knight()
{
    constexpr int df[8] = {1, 2, 2, 1, -1, -2, -2, -1};
    constexpr int dr[8] = {2, 1, -1, -2, -2, -1, 1, 2};
    std::array<Bitboard, 64> t{};
    for (int sq = 0; sq < 64; sq++)
        t[sq] = steps(sq, df, dr);
    return t;
}

constexpr std::array<Bitboard, 64> make_king()
{
    std::array<Bitboard, 64> t{};
    for (int sq = 0; sq < 64; sq++)
        t[sq] = steps(sq, DIR_FILE, DIR_RANK);
    return t;
}

constexpr std::array<std::array<Bitboard, 64>, 2> make_pawn()
{
    std::array<std::array<Bitboard, 64>, 2> t{};
    for (int sq = 0; sq < 64; sq++) {
        for (int df = -1; df <= 1; df += 2) {
            int f = file_of(sq) + df;
            if (on_board(f, rank_of(sq) + 1))
                t[0][sq] |= bit(make_square(f, rank_of(sq) + 1));
            if (on_board(f, rank_of(sq) - 1))
                t[1][sq] |= bit(make_square(f, rank_of(sq) - 1));
        }
    }
    return t;
}

constexpr std::array<std::array<Bitboard, 64>, 8> make_rays()
{
    std::array<std::array<Bitboard, 64>, 8> t{};
    for (int d = 0; d < 8; d++)
        for (int sq = 0; sq < 64; sq++) {
            int f = file_of(sq) + DIR_FILE[d], r = rank_of(sq) + DIR_RANK[d];
            while (on_board(f, r)) {
                t[d][sq] |= bit(make_square(f, r));
                f += DIR_FILE[d];
                r += DIR_RANK[d];
            }
        }
    return t;
}

constexpr auto RAYS = make_rays();

constexpr std::array<Bitboard, 64> make_line_union(int first_dir)
{
    // Orthogonal directions are N, E, S, W; diagonal ones NE, NW, SW, SE.
    std::array<Bitboard, 64> t{};
    for (int sq = 0; sq < 64; sq++)
        t[sq] = first_dir == 0
                    ? RAYS[NORTH][sq] | RAYS[EAST][sq] | RAYS[SOUTH][sq] | RAYS[WEST][sq]
                    : RAYS[NORTH_EAST][sq] | RAYS[NORTH_WEST][sq] | RAYS[SOUTH_WEST][sq] | RAYS[SOUTH_EAST][sq];
    return t;
}

constexpr std::array<std::array<Bitboard, 64>, 64> make_between()
{
    std::array<std::array<Bitboard, 64>, 64> t{};
    for (int a = 0; a < 64; a++)
        for (int d = 0; d < 8; d++) {
            Bitboard path = 0;
            int f = file_of(a) + DIR_FILE[d], r = rank_of(a) + DIR_RANK[d];
            while (on_board(f, r)) {
                int b = make_square(f, r);
                t[a][b] = path;
                path |= bit(b);
                f += DIR_FILE[d];
                r += DIR_RANK[d];
            }
        }
    return t;
}

} // namespace attack_tables

inline constexpr auto KNIGHT_ATTACKS = attack_tables::make_knight();
inline constexpr auto KING_ATTACKS = attack_tables::make_king();
inline constexpr auto PAWN_ATTACKS = attack_tables::make_pawn(); // [side][square]
inline constexpr auto RAY = attack_tables::RAYS;                 // [direction][square]
inline constexpr auto ROOK_RAYS = attack_tables::make_line_union(0);
inline constexpr auto BISHOP_RAYS = attack_tables::make_line_union(1);
inline constexpr auto BETWEEN = attack_tables::make_between(); // [a][b], strictly between

// Ray-and-blocker slider attacks: the portable way, and how the indexed
// tables below are filled.
inline Bitboard rook_attacks_by_rays(int sq, Bitboard occ)
{
    Bitboard att = ROOK_RAYS[sq];
    att ^= RAY[NORTH][lsb((RAY[NORTH][sq] & occ) | bit(63))];
    att ^= RAY[EAST][lsb((RAY[EAST][sq] & occ) | bit(63))];
    att ^= RAY[SOUTH][msb((RAY[SOUTH][sq] & occ) | 1)];
    att ^= RAY[WEST][msb((RAY[WEST][sq] & occ) | 1)];
    return att;
}

inline Bitboard bishop_attacks_by_rays(int sq, Bitboard occ)
{
    Bitboard att = BISHOP_RAYS[sq];
    att ^= RAY[NORTH_EAST][lsb((RAY[NORTH_EAST][sq] & occ) | bit(63))];
    att ^= RAY[NORTH_WEST][lsb((RAY[NORTH_WEST][sq] & occ) | bit(63))];
    att ^= RAY[SOUTH_WEST][msb((RAY[SOUTH_WEST][sq] & occ) | 1)];
    att ^= RAY[SOUTH_EAST][msb((RAY[SOUTH_EAST][sq] & occ) | 1)];
    return att;
}

#if defined(KORVEL_SLIDERS_BY_EXTRACTION)
constexpr bool SLIDERS_BY_EXTRACTION = true;
// Where the processor extracts bits in one instruction, a slider's attacks
// are a single table read: the occupancy of the squares that can block it
// (its lines without their last square) gathered into an index. The rook
// tables take 800 KB, the bishop ones 42 KB; they are filled before main.
struct SliderIndex {
    Bitboard mask[64];   // squares whose occupancy matters
    uint32_t offset[64]; // where the square's block starts in SLIDER_ATTACKS
};
extern SliderIndex ROOK_INDEX, BISHOP_INDEX;
extern Bitboard SLIDER_ATTACKS[];

inline Bitboard rook_attacks(int sq, Bitboard occ)
{
    return SLIDER_ATTACKS[ROOK_INDEX.offset[sq] + _pext_u64(occ, ROOK_INDEX.mask[sq])];
}

inline Bitboard bishop_attacks(int sq, Bitboard occ)
{
    return SLIDER_ATTACKS[BISHOP_INDEX.offset[sq] + _pext_u64(occ, BISHOP_INDEX.mask[sq])];
}
#else
// Rays and their first blockers: processors without bit extraction, and
// builds that ask for it (KORVEL_RAY_ATTACKS) to test this path.
constexpr bool SLIDERS_BY_EXTRACTION = false;
inline Bitboard rook_attacks(int sq, Bitboard occ)
{
    return rook_attacks_by_rays(sq, occ);
}

inline Bitboard bishop_attacks(int sq, Bitboard occ)
{
    return bishop_attacks_by_rays(sq, occ);
}
#endif

inline Bitboard queen_attacks(int sq, Bitboard occ)
{
    return rook_attacks(sq, occ) | bishop_attacks(sq, occ);
}

// Squares from which a pawn of `side` attacks `sq`.
inline Bitboard pawn_attackers_mask(int side, int sq)
{
    return PAWN_ATTACKS[side ^ 1][sq];
}
