// The game the front end keeps: its position with the history of the moves
// made, and the list of moves played since the set-up position (for saving
// and jumping). A search copies the position when it starts, so the game may
// change under a running search.
#pragma once

#include "board/position.h"

// The game position (set to the start position before the first command).
Position* game_position();

// Sets the game position from FEN text. Text that cannot be played (see
// position_problem) is refused with a message and the previous position kept.
// Returns 1 when the position was set.
int set_game_position(const char* fen);

// Plays a move on the game position, keeping the history within its bounds.
void play_game_move(Move move);

// Takes back the last game move; 0 when there is none. The move can be
// replayed with jump_to_ply.
int undo_game_move();

// Moves back or forward (over taken-back moves) to `ply` of the game;
// returns the ply reached.
int jump_to_ply(int ply);

// Number of moves played since the set-up position.
int game_length();

// Writes the game as PGN; returns 1 on success.
int save_game(const char* file);

// Prints a message as "info string ..." in UCI mode, plain on the console.
void send_info(const char* text);
