#include "tools/progress.h"

#include "output/output.h"
#include "search/clock.h"

#include <cstdarg>
#include <cstdio>

namespace
{

constexpr double NOTE_INTERVAL = 5.0; // seconds

double last_note = 0;

} // namespace

void progress_note(const char* format, ...)
{
    double now = now_seconds();
    if (last_note == 0) {
        last_note = now;
        return;
    }
    if (now - last_note < NOTE_INTERVAL)
        return;
    last_note = now;
    char text[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    send_error_line(text);
}
