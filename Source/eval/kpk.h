// King and pawn against king: a win/draw table for every position, built at
// start-up by retrograde analysis.
#pragma once

// Builds the table (a few milliseconds); later calls do nothing.
void kpk_init();

// Whether the side with the pawn wins, with White holding the pawn: `white_to_move`,
// the white king, the white pawn (any file, ranks 2-7) and the black king.
bool kpk_win(bool white_to_move, int white_king, int pawn, int black_king);
