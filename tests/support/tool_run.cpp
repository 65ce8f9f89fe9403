#include "support/tool_run.h"

#include "support/engine_process.h"

#include <chrono>
#include <fstream>

ToolRun run_tool(const std::vector<std::string>& args, const std::string& dir, int timeout_ms)
{
    ToolRun run{-1, {}};
    EngineProcess e(args, dir);
    // A tool reads no commands from a pipe; the end of input changes nothing.
    e.close_input();
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    std::string line;
    for (;;) {
        int left = int(
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count());
        if (left <= 0 || !e.read_line(&line, left))
            break;
        run.lines.push_back(line);
    }
    run.status = e.wait_exit(5000);
    return run;
}

std::vector<std::string> read_lines(const std::string& path)
{
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string l; std::getline(in, l);) {
        if (!l.empty() && l.back() == '\r')
            l.pop_back();
        lines.push_back(l);
    }
    return lines;
}

std::vector<std::string> starting_with(const std::vector<std::string>& lines, const std::string& prefix)
{
    std::vector<std::string> out;
    for (const std::string& l : lines)
        if (l.compare(0, prefix.size(), prefix) == 0)
            out.push_back(l);
    return out;
}
