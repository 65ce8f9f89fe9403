// The one output channel: every line to the interface passes through
// send_line, which serialises writers and copies the line to the log. Every
// layer of the engine may print through it; it depends on nothing else.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

constexpr const char* LOG_FILE_NAME = "korvel.log";

// Which dialect the engine speaks: 1 UCI (the default), 0 console. The move
// writer and the search's progress lines follow it. Atomic: a "uci" that
// arrives during a search rewrites it while the search thread prints.
extern std::atomic<int16_t> protocol_mode;

// Writes the line and a newline to stdout, flushes, and copies it to the log.
void send_line(const char* text);

// The same for trouble that is not part of the dialogue with the interface
// (a damaged tablebase file): to stderr, under the same lock, into the log.
void send_error_line(const char* text);

// Writes a line to the log only (when logging is on).
void log_line(const char* text);

// Bounded formatted print into a caller-owned buffer; returns `buffer`.
const char* format_line(char* buffer, size_t size, const char* format, ...) __attribute__((format(printf, 3, 4)));

// Switches logging on, opening "korvel.log" unless a log is already open.
void open_log();
// Switches logging off; the file stays open for a later switch-on.
void stop_logging();
bool log_is_enabled();

// Copies a received command line to the log as "CMD: %s".
void log_command(const char* line);

// Releases the log file at exit.
void close_log_file();
