#include "tools/line_reader.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> read_all(const std::string& text, int size)
{
    FILE* f = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), f);
    std::rewind(f);
    std::vector<std::string> lines;
    std::vector<char> buffer(static_cast<size_t>(size));
    for (int n; (n = read_line(f, buffer.data(), size)) >= 0;) {
        EXPECT_EQ(size_t(n), std::string(buffer.data()).size());
        lines.push_back(buffer.data());
    }
    std::fclose(f);
    return lines;
}

} // namespace

TEST(LineReader, LineEndsOverlongLinesAndTheLastLine)
{
    // CRLF and LF ends alike; an empty line stays a line; the last line needs no end.
    EXPECT_EQ(read_all("a b\r\n\r\ncd\nlast", 16), (std::vector<std::string>{"a b", "", "cd", "last"}));
    // An overlong line keeps its head and its tail is not a line of its own.
    std::string longer(100, 'x');
    EXPECT_EQ(read_all(longer + "\nnext\n", 10), (std::vector<std::string>{"xxxxxxxxx", "next"}));
    EXPECT_TRUE(read_all("", 10).empty());
}
