// -scan_pgn1 .. -scan_pgn4: PGN games with the evaluation comments that
// chess programs write, turned into EPD lines game by game (pgn_epd.h).
#pragma once

// Scans `path` with `variant` (1..4), writing the listing or the positions
// to `out_path` and the "bm" lines of variant 1 to `side_path` (created
// empty by the other variants). Prints "game %d" every 100 games and
// "games= %d, positions= %d" at the end. Nothing happens when a file
// cannot be opened. Returns the positions written, or -1 then.
int scan_pgn_files(const char* path, int variant, const char* out_path, const char* side_path);
