// Runs the real engine binary as a child process over pipes, as a GUI does.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

class EngineProcess
{
  public:
    // `address_space_mb` > 0 caps the child's address space, so that a large
    // allocation or many threads fail as on a machine without the memory.
    explicit EngineProcess(const std::vector<std::string>& args = {}, const std::string& workdir = "",
                           size_t address_space_mb = 0);
    ~EngineProcess();

    void send(const std::string& text); // raw bytes, no newline added
    void send_line(const std::string& line) { send(line + "\n"); }
    void close_input();

    // Next complete output line, or false after `timeout_ms` without one.
    bool read_line(std::string* line, int timeout_ms = 10000);
    // Reads until a line starting with `prefix`; returns it ("" on timeout).
    std::string wait_for(const std::string& prefix, int timeout_ms = 10000, std::vector<std::string>* seen = nullptr);
    // Sends `line`, then reads until a line starting with `prefix` ("" on timeout).
    std::string ask(const std::string& line, const std::string& prefix, int timeout_ms = 10000)
    {
        send_line(line);
        return wait_for(prefix, timeout_ms);
    }
    // Waits for the process to end; returns its exit status or -1 on timeout.
    int wait_exit(int timeout_ms = 10000);
    // Sends "quit" and returns the exit status, as wait_exit does.
    int quit(int timeout_ms = 10000)
    {
        send_line("quit");
        return wait_exit(timeout_ms);
    }

  private:
    pid_t pid_ = -1;
    int in_fd_ = -1;
    int out_fd_ = -1;
    std::string buffer_;
    bool exited_ = false;
};

std::string data_path(const std::string& relative);
std::string make_temp_dir();
std::string read_text_file(const std::string& path);
