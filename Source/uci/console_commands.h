// The console dialect, for a person at the keyboard (switch -c).
#pragma once

// Handles one console line: a command word, or a move in any notation.
void handle_console_command(char* line);

// Shows the game position (console mode only).
void show_game_board();
