// Text files read one line at a time into a fixed buffer. The tools read
// files that people and other programs wrote: lines may end in CRLF, and a
// line longer than the buffer keeps its head while the tail is dropped, so
// that an overlong line never turns into a second, made-up line.
#pragma once

#include <cstdio>

// Reads the next line into `line` (at most size - 1 characters, terminated)
// without its line end ("\n", "\r\n" or a lone trailing "\r"). Returns the
// length kept, or -1 at the end of the file.
int read_line(FILE* file, char* line, int size);
