// The console dialect, for a person at the keyboard (switch -c).
#pragma once

// Handles one console line: a command word, or a move in any notation.
void handle_console_command(char* line);

// Applies a "level" or "depth" that arrived while a search ran; called
// between searches.
void apply_waiting_console_limits();

// Shows the game position (console mode only).
void show_game_board();
