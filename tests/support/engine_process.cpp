#include "support/engine_process.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <signal.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

EngineProcess::EngineProcess(const std::vector<std::string>& args, const std::string& workdir, size_t address_space_mb)
{
    int to_child[2], from_child[2];
    if (pipe(to_child) != 0 || pipe(from_child) != 0)
        return;
    pid_ = fork();
    if (pid_ == 0) {
        dup2(to_child[0], 0);
        dup2(from_child[1], 1);
        close(to_child[1]);
        close(from_child[0]);
        if (!workdir.empty() && chdir(workdir.c_str()) != 0)
            _exit(127);
        if (address_space_mb) {
            struct rlimit cap = {rlim_t(address_space_mb) << 20, rlim_t(address_space_mb) << 20};
            setrlimit(RLIMIT_AS, &cap);
        }
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(KORVEL_BINARY));
        for (const std::string& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        execv(KORVEL_BINARY, argv.data());
        _exit(127);
    }
    close(to_child[0]);
    close(from_child[1]);
    in_fd_ = to_child[1];
    out_fd_ = from_child[0];
    signal(SIGPIPE, SIG_IGN);
}

EngineProcess::~EngineProcess()
{
    close_input();
    if (pid_ > 0 && !exited_) {
        if (wait_exit(5000) < 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    if (out_fd_ >= 0)
        close(out_fd_);
}

void EngineProcess::send(const std::string& text)
{
    size_t done = 0;
    while (in_fd_ >= 0 && done < text.size()) {
        ssize_t n = write(in_fd_, text.data() + done, text.size() - done);
        if (n <= 0)
            return;
        done += size_t(n);
    }
}

void EngineProcess::close_input()
{
    if (in_fd_ >= 0)
        close(in_fd_);
    in_fd_ = -1;
}

namespace
{

int ms_left(std::chrono::steady_clock::time_point deadline)
{
    return int(
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count());
}

} // namespace

bool EngineProcess::read_line(std::string* line, int timeout_ms)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    for (size_t nl; (nl = buffer_.find('\n')) == std::string::npos;) {
        pollfd pfd{out_fd_, POLLIN, 0};
        char chunk[4096];
        ssize_t n = 0;
        if (out_fd_ < 0 || ms_left(deadline) <= 0 || poll(&pfd, 1, ms_left(deadline)) <= 0
            || (n = read(out_fd_, chunk, sizeof chunk)) <= 0)
            return false;
        buffer_.append(chunk, size_t(n));
    }
    size_t nl = buffer_.find('\n');
    *line = buffer_.substr(0, nl);
    buffer_.erase(0, nl + 1);
    return true;
}

std::string EngineProcess::wait_for(const std::string& prefix, int timeout_ms, std::vector<std::string>* seen)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    for (std::string line; ms_left(deadline) > 0 && read_line(&line, ms_left(deadline));) {
        if (seen)
            seen->push_back(line);
        if (line.compare(0, prefix.size(), prefix) == 0)
            return line;
    }
    return "";
}

int EngineProcess::wait_exit(int timeout_ms)
{
    if (pid_ <= 0)
        return -1;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        pid_t r = waitpid(pid_, &status, WNOHANG);
        if (r == pid_) {
            exited_ = true;
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        // Keep reading: an engine blocked on a full output pipe cannot finish.
        pollfd pfd{out_fd_, POLLIN, 0};
        if (out_fd_ >= 0 && poll(&pfd, 1, 5) > 0) {
            char chunk[4096];
            ssize_t n = read(out_fd_, chunk, sizeof chunk);
            if (n > 0)
                buffer_.append(chunk, size_t(n));
            else
                usleep(5000); // end of output: just wait for the exit
            if (buffer_.size() > (1 << 20))
                buffer_.clear();
        } else {
            usleep(5000);
        }
    }
    return -1;
}

std::string data_path(const std::string& relative)
{
    return std::string(KORVEL_DATA_DIR) + "/" + relative;
}

std::string make_temp_dir()
{
    // Every scratch directory goes when the test process ends, whether or
    // not its test cleaned up after itself.
    static std::vector<std::string> made;
    static bool cleanup = std::atexit([] {
        for (const std::string& d : made) {
            std::error_code ignored;
            std::filesystem::remove_all(d, ignored);
        }
    }) == 0;
    (void)cleanup;
    char pattern[] = "/tmp/korvel_test_XXXXXX";
    char* dir = mkdtemp(pattern);
    if (!dir)
        return "/tmp";
    made.push_back(dir);
    return dir;
}

std::string read_text_file(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}
