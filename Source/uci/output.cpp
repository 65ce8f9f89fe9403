#include "uci/output.h"

#include "board/notation.h"
#include "search/search_thread.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

namespace
{

std::mutex output_lock;
FILE* log_file = nullptr;
bool log_enabled = false;
int log_commands = 1;

FILE* trace_file = nullptr;
int16_t trace_last_ply = 0;
int16_t trace_last_depth = 0;

} // namespace

int8_t trace_depth = 0;

void send_line(const char* text)
{
    std::lock_guard<std::mutex> guard(output_lock);
    std::fputs(text, stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    if (log_enabled && log_file) {
        std::fprintf(log_file, "%s\n", text);
        std::fflush(log_file);
    }
}

void log_line(const char* text)
{
    std::lock_guard<std::mutex> guard(output_lock);
    if (log_enabled && log_file) {
        std::fprintf(log_file, "%s\n", text);
        std::fflush(log_file);
    }
}

const char* format_line(char* buffer, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, size, format, args);
    va_end(args);
    return buffer;
}

void open_log()
{
    log_enabled = true;
    if (log_file)
        return;
    // A log that exists and cannot be deleted belongs to another running
    // instance in this directory: leave it alone.
    if (access(LOG_FILE_NAME, F_OK) == 0 && unlink(LOG_FILE_NAME) != 0) {
        send_line("log file in use.");
        log_enabled = false;
        return;
    }
    log_file = std::fopen(LOG_FILE_NAME, "w");
}

void close_log_flag()
{
    log_enabled = false;
}

bool log_is_enabled()
{
    return log_enabled;
}

void log_command(const char* line)
{
    if (!log_commands)
        return;
    char buffer[4999];
    format_line(buffer, sizeof buffer, "CMD: %s", line);
    if (log_enabled && log_file) {
        std::fprintf(log_file, "%s\n", buffer);
        std::fflush(log_file);
    }
}

void trace_move_write(const SearchThread* thread, uint16_t move)
{
    if (!trace_file) {
        trace_file = std::fopen("trace.txt", "w");
        if (!trace_file)
            std::exit(0);
    }
    int ply = thread->search_ply;
    if (ply > trace_depth)
        return;
    int draft = ply >= 0 && ply < MAX_PLY ? thread->plies[ply].depth : 0;
    int iter = thread->iteration_depth;
    if (iter > trace_last_depth)
        std::fprintf(trace_file, "\n\nSEARCH DEPTH= %d\n", iter);
    char text[16];
    move_to_coord(move, text);
    if (ply <= trace_last_ply) {
        std::fputc('\n', trace_file);
        for (int i = 1; i < ply; i++)
            std::fputs("         ", trace_file);
    }
    std::fprintf(trace_file, "(%2d)%s ", draft, text);
    trace_last_ply = int16_t(ply);
    trace_last_depth = int16_t(iter);
}

void close_output_files()
{
    std::lock_guard<std::mutex> guard(output_lock);
    if (log_file)
        std::fclose(log_file);
    log_file = nullptr;
    log_enabled = false;
    if (trace_file)
        std::fclose(trace_file);
    trace_file = nullptr;
}
