// Training positions from games with a known result, played from the
// standard start or from a [FEN] tag: every position becomes a line labelled
// with the result and, where the game carries one, the mover's evaluation.
#pragma once

// Reads the PGN file and writes "labelled.epd": "EPD bm MOVE; ce E; gr X;"
// per position (X the result from the side to move's view; E the evaluation
// comment of the move played, "{+0.23/9 ...}" in the mover's view, or 0 when
// the game has none). Returns the number of positions written, or -1 when a
// file cannot be opened.
long label_games(const char* file);
