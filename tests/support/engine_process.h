// Runs the real engine binary as a child process over pipes, as a GUI does.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

class EngineProcess
{
  public:
    explicit EngineProcess(const std::vector<std::string>& args = {}, const std::string& workdir = "");
    ~EngineProcess();

    void send(const std::string& text); // raw bytes, no newline added
    void send_line(const std::string& line) { send(line + "\n"); }
    void close_input();

    // Next complete output line, or false after `timeout_ms` without one.
    bool read_line(std::string* line, int timeout_ms = 10000);
    // Reads until a line starting with `prefix`; returns it ("" on timeout).
    std::string wait_for(const std::string& prefix, int timeout_ms = 10000, std::vector<std::string>* seen = nullptr);
    // Waits for the process to end; returns its exit status or -1 on timeout.
    int wait_exit(int timeout_ms = 10000);

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
