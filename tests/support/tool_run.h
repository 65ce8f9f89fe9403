// Runs the real binary as an offline tool in a directory of its own and
// collects everything it prints until it ends.
#pragma once

#include <string>
#include <vector>

struct ToolRun {
    int status; // exit status, -1 when it did not end in time
    std::vector<std::string> lines;
};

ToolRun run_tool(const std::vector<std::string>& args, const std::string& dir, int timeout_ms = 60000);

// Lines of a text file, without their line ends.
std::vector<std::string> read_lines(const std::string& path);


// Lines of `lines` that start with `prefix`.
std::vector<std::string> starting_with(const std::vector<std::string>& lines, const std::string& prefix);
