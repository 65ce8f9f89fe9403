// The input thread's loop once start-up is done: commands, search starts,
// and the report of each finished search.
#pragma once

// Engine moves the console asked for: one ("move"), or every move of both
// sides until the game ends or the console plays one itself ("self").
void request_engine_moves(bool continuous);
void cancel_engine_moves();

// Runs until "quit".
void run_engine_loop();

// One round of the loop (sleep, clock, input, start, report); for tests.
void engine_round();
