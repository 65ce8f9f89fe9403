// The search's findings as the interface or the person at the console sees
// them: info lines, the console's progress lines, the current root move.
#pragma once

#include "board/types.h"

struct SearchThread;

// Routes the search's reports through the printers below.
void install_search_output();

// "cp %d", "mate %d" or "mate -%d".
void score_text(int score, char* text, int size);

// The info line of the main thread for one principal variation; in console
// mode the progress line.
void print_info_line(const SearchThread* t, int depth, int score, const Move* pv, int line_number, char mark);

// The lines that open a timed search: the position and the time budget, to
// the log in UCI mode and to the console otherwise.
void print_search_start();
