#include "tools/line_reader.h"

int read_line(FILE* file, char* line, int size)
{
    int n = 0;
    int c = std::getc(file);
    if (c == EOF)
        return -1;
    for (; c != EOF && c != '\n'; c = std::getc(file))
        if (n < size - 1)
            line[n++] = char(c);
    while (n > 0 && line[n - 1] == '\r')
        n--;
    line[n] = 0;
    return n;
}
