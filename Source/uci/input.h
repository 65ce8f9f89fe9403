// Non-blocking command input: pending bytes are collected into complete
// lines, and at most one command is carried out per call.
#pragma once

#include <cstdint>

extern bool quit_requested;

// Reads whatever stdin holds without blocking, queues complete lines and
// handles the oldest queued command, if any. End of input acts as "quit".
void poll_input();

// Routes one command line (without line end) to the UCI or console handler
// by the protocol mode. The line may be modified.
void dispatch_command(char* line);

// Forgets queued and partial input (used by tests).
void reset_input();

// Whether a complete command waits in the queue (used by tests, which need to
// know when everything they sent has been carried out).
bool input_pending();
