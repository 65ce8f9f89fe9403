// Progress of a long run whose regular output is silent: a line on stderr
// at most every few seconds, so that stdout keeps exactly what the tool
// prints and a short run prints nothing here at all.
#pragma once

// The first call starts the interval; later calls print the formatted note
// once the interval has passed since the last note (or the first call).
void progress_note(const char* format, ...) __attribute__((format(printf, 1, 2)));
