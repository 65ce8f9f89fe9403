#include "uci/input.h"

#include "output/output.h"
#include "search/limits.h"
#include "search/threads.h"
#include "uci/console_commands.h"
#include "uci/uci_commands.h"

#include <cstring>
#include <poll.h>
#include <unistd.h>

bool quit_requested = false;

namespace
{

constexpr int READ_SIZE = 4999;
constexpr int LINE_LIMIT = 4992;  // longer lines lose their tail
constexpr int QUEUE_SIZE = 16384; // a few full lines; reads wait while it is full

bool input_closed = false;
char partial_line[READ_SIZE];
int partial_length = 0;
char command_queue[QUEUE_SIZE];
int queue_length = 0;

// Moves the partial line into the queue, terminated by '@'; empty lines vanish.
void close_partial_line()
{
    if (partial_length > 0) {
        std::memcpy(command_queue + queue_length, partial_line, size_t(partial_length));
        queue_length += partial_length;
        command_queue[queue_length++] = '@';
    }
    partial_length = 0;
}

void queue_text(const char* text)
{
    int n = int(std::strlen(text));
    if (queue_length + n + 1 > QUEUE_SIZE)
        return;
    std::memcpy(command_queue + queue_length, text, size_t(n));
    queue_length += n;
    command_queue[queue_length++] = '@';
}

void read_pending_bytes()
{
    // Each byte read adds at most one byte to the queue, and a closed line
    // carries the partial line with it: only read what is sure to fit.
    int room = QUEUE_SIZE - queue_length - partial_length - 1;
    if (room <= 0 || input_closed)
        return;
    pollfd pfd{0, POLLIN, 0};
    if (poll(&pfd, 1, 0) <= 0 || !(pfd.revents & (POLLIN | POLLHUP | POLLERR)))
        return;
    char buffer[READ_SIZE];
    ssize_t n = read(0, buffer, size_t(room < READ_SIZE ? room : READ_SIZE));
    if (n < 0)
        return;
    if (n == 0) {
        // End of input: whatever was typed last still counts, then quit.
        close_partial_line();
        queue_text("quit");
        input_closed = true;
        return;
    }
    for (ssize_t i = 0; i < n; i++) {
        char c = buffer[i];
        if (c == '\n') {
            close_partial_line();
            continue;
        }
        // '@' separates queued commands and NUL would end the text early.
        if (c == '@' || c == 0)
            c = ' ';
        if (partial_length < LINE_LIMIT)
            partial_line[partial_length++] = c;
    }
}

bool take_command(char* out)
{
    char* end = static_cast<char*>(std::memchr(command_queue, '@', size_t(queue_length)));
    if (!end)
        return false;
    int len = int(end - command_queue);
    std::memcpy(out, command_queue, size_t(len));
    out[len] = 0;
    queue_length -= len + 1;
    std::memmove(command_queue, end + 1, size_t(queue_length));
    for (char* c = out; *c; c++)
        if (*c == '\r' || *c == '\n') {
            *c = 0;
            break;
        }
    return true;
}

} // namespace

void poll_input()
{
    read_pending_bytes();
    char command[READ_SIZE + 1];
    if (take_command(command)) {
        dispatch_command(command);
        return;
    }
    // Input has ended and every line of it is done, yet no "quit" took: the
    // console's position editor reads the line as men. Nothing more can come.
    if (input_closed && !quit_requested) {
        stop_and_wait(STOP_SILENT);
        quit_requested = true;
    }
}

void dispatch_command(char* line)
{
    if (protocol_mode == 1 || std::strcmp(line, "uci") == 0)
        handle_uci_command(line);
    else if (protocol_mode == 0)
        handle_console_command(line);
}

void reset_input()
{
    partial_length = 0;
    queue_length = 0;
    input_closed = false;
}

bool input_pending()
{
    return std::memchr(command_queue, '@', size_t(queue_length)) != nullptr;
}
