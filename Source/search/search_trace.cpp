#include "search/search_report.h"
#include "search/search_trace.h"

#include "board/notation.h"
#include "output/output.h"
#include "search/search_thread.h"

#include <cstdio>

std::atomic<int8_t> trace_depth{0};

namespace
{

FILE* trace_file = nullptr;
int16_t trace_last_ply = 0;
int16_t trace_last_depth = 0;

} // namespace

void trace_move_write(const SearchThread* thread, uint16_t move)
{
    if (!trace_file) {
        trace_file = std::fopen("trace.txt", "w");
        // Without its file the trace is switched off; the search goes on.
        if (!trace_file) {
            trace_depth.store(0, std::memory_order_relaxed);
            send_line("info string cannot write trace.txt: trace switched off");
            return;
        }
    }
    int ply = thread->pos.search_ply;
    if (ply > trace_depth.load(std::memory_order_relaxed))
        return;
    int draft = ply >= 0 && ply < MAX_PLY ? thread->plies[ply].depth : 0;
    int iter = thread->iteration_depth;
    if (iter > trace_last_depth)
        std::fprintf(trace_file, "\n\nSEARCH DEPTH= %d\n", iter);
    char text[16];
    move_to_coord(move, text, reported_move_style());
    if (ply <= trace_last_ply) {
        std::fputc('\n', trace_file);
        for (int i = 1; i < ply; i++)
            std::fputs("         ", trace_file);
    }
    std::fprintf(trace_file, "(%2d)%s ", draft, text);
    trace_last_ply = int16_t(ply);
    trace_last_depth = int16_t(iter);
}

void close_trace_file()
{
    if (trace_file)
        std::fclose(trace_file);
    trace_file = nullptr;
}
