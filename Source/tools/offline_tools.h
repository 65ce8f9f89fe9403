// Entry points of the offline tools that the command line selects. The
// benchmark, the book builder and the tuner have headers of their own.
#pragma once

// -anepd: searches every position of an EPD test suite (epd_suite.cpp).
void run_epd_analysis(const char* file);

// -scan_pgn1 .. -scan_pgn4: PGN games with evaluation comments to EPD lines
// (pgn_scan.cpp).
void scan_pgn(const char* file, int variant);

// -mktune: quiet training positions from labelled EPD lines (tune_data.cpp);
// returns the mean absolute error of the search scores against the results.
double make_tune_file(const char* file);
