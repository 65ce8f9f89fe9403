// The UCI dialect.
#pragma once

// Handles one UCI command line; unknown words are ignored without reply.
void handle_uci_command(char* line);

// The "position" command's arguments: startpos or fen, then optional moves.
void position_command(char* args);

// The "go" command's arguments, parsed into the search limits.
void go_command(const char* args);

// Fills the search limits' defaults for a new game.
void reset_game_limits();
