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

std::atomic<int16_t> protocol_mode{1};

namespace
{

// One line to `out` and its copy to the log, under the lock every writer takes.
void write_line(FILE* out, const char* text)
{
    std::lock_guard<std::mutex> guard(output_lock);
    std::fputs(text, out);
    std::fputc('\n', out);
    std::fflush(out);
    if (log_enabled && log_file) {
        std::fprintf(log_file, "%s\n", text);
        std::fflush(log_file);
    }
}

} // namespace

void send_line(const char* text)
{
    write_line(stdout, text);
}

void send_error_line(const char* text)
{
    write_line(stderr, text);
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

// The flag and the file change under the output lock: a search thread may
// be printing (and logging) meanwhile.
void open_log()
{
    {
        std::lock_guard<std::mutex> guard(output_lock);
        if (log_file) {
            log_enabled = true;
            return;
        }
        // A log that exists and cannot be deleted belongs to another running
        // instance in this directory: leave it alone.
        if (!(access(LOG_FILE_NAME, F_OK) == 0 && unlink(LOG_FILE_NAME) != 0)) {
            log_file = std::fopen(LOG_FILE_NAME, "w");
            log_enabled = true;
            return;
        }
        log_enabled = false;
    }
    send_line("log file in use.");
}

void stop_logging()
{
    std::lock_guard<std::mutex> guard(output_lock);
    log_enabled = false;
}

bool log_is_enabled()
{
    std::lock_guard<std::mutex> guard(output_lock);
    return log_enabled;
}

void log_command(const char* line)
{
    char buffer[4999];
    format_line(buffer, sizeof buffer, "CMD: %s", line);
    std::lock_guard<std::mutex> guard(output_lock);
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
