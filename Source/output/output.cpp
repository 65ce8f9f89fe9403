#include "output/output.h"

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

} // namespace

int16_t protocol_mode = 1;

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
    char buffer[4999];
    format_line(buffer, sizeof buffer, "CMD: %s", line);
    if (log_enabled && log_file) {
        std::fprintf(log_file, "%s\n", buffer);
        std::fflush(log_file);
    }
}

void close_log_file()
{
    std::lock_guard<std::mutex> guard(output_lock);
    if (log_file)
        std::fclose(log_file);
    log_file = nullptr;
    log_enabled = false;
}
