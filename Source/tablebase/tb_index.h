// From a placement of men to the position's number inside one table.
//
// A table lists its men in a fixed order. The first ones form the leading
// group, which takes the board's symmetries: without pawns three unique men
// (or the two kings when fewer are unique) are brought into the a1-d1-d4
// triangle by mirroring and a flip over the a1-h8 diagonal; with pawns the
// pawns of one colour lead and only the left-right mirror applies. Every
// further group of like men is numbered as a set of squares (binomial
// coefficients), and the groups are combined with the table's multipliers.
#pragma once

#include <cstdint>

constexpr int TB_MAX_MEN = 6;

// One table side's ordering of its men, in the table's own colours (piece
// codes 1..6 for the side named first, 9..14 for the other).
struct TbEncoding {
    uint8_t men;                  // men in the table, kings included
    uint8_t code[TB_MAX_MEN];     // piece code of each place in the order
    uint8_t group[TB_MAX_MEN];    // size of the group that starts at a place, 0 inside a group
    uint64_t factor[TB_MAX_MEN];  // multiplier of the group that starts at a place
    uint8_t lead_pawns;           // 0 for tables without pawns
    uint8_t other_pawns;          // pawns of the colour that does not lead
    uint8_t pawn_file;            // file 0..3 of the leading pawn this encoding serves
    uint64_t positions;           // positions the side indexes
};

// Builds the binomial and pawn-placement tables and the two-king map;
// later calls do nothing. Returns false if a known count does not come out.
bool tb_index_init();

// Sets the groups of `e` from its codes and the multipliers from the two
// orderings read in the file (`order2` only for pawns of both colours).
// Returns (and keeps) the number of positions the side indexes, 0 when the
// file's orderings or codes cannot describe a table.
uint64_t tb_set_factors(TbEncoding* e, int order, int order2);

// Index of the placement `sq` (squares in the encoding's order, changed in
// place by the normalisation). Returns UINT64_MAX for a placement no table
// holds (two kings side by side).
uint64_t tb_piece_index(const TbEncoding* e, int* sq);
uint64_t tb_pawn_index(const TbEncoding* e, int* sq);

// Moves the leading pawn that decides the subtable (nearest the a or h file,
// then lowest) to sq[0] and returns its file folded to 0..3.
int tb_leading_file(int* sq, int lead_pawns);
