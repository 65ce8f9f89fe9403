// The seeded random driver: runs a target without libFuzzer (g++ builds,
// make test). It feeds the seed corpus first, then inputs made from it by
// random mutations (bit flips, byte edits, cut and copied ranges, dictionary
// words, interesting numbers, splices of two seeds) and some wholly random
// inputs. There is no coverage feedback; the targets' grammar-aware readers
// make up for much of it. It takes libFuzzer's flags where they mean the same:
//
//   fuzz_<target> [-seed=N] [-runs=N] [-max_total_time=S] [-timeout=S]
//                 [-max_len=N] [-dict=FILE] [-artifact_prefix=P] [SEEDS...]
//
// SEEDS are files or directories of files. An input that crashes, fails a
// sanitizer or outlives -timeout is written to <artifact_prefix>crash-<hash>
// or timeout-<hash> before the process ends.
#include "fuzz_support.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));
extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace
{

using Bytes = std::vector<uint8_t>;

struct Options {
    uint64_t seed = 0;
    bool seed_given = false;
    long long runs = -1;
    double max_total_time = 0;
    double timeout = 60;
    size_t max_len = 4096;
    std::string dict;
    std::string artifact_prefix;
    std::vector<std::string> seeds;
};

// The input under way, kept where a dying process can still write it out.
constexpr size_t INPUT_CAPACITY = 1 << 20;
uint8_t current[INPUT_CAPACITY];
std::atomic<size_t> current_size{0};
char artifact_prefix[512];
std::atomic<double> input_started{0};
std::atomic<bool> saved{false};

double now()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

// Only async-signal-safe calls: this runs from signal handlers too.
void save_current(const char* kind)
{
    if (saved.exchange(true))
        return;
    size_t n = current_size.load();
    uint64_t h = 1469598103934665603ull;
    for (size_t i = 0; i < n; i++)
        h = (h ^ current[i]) * 1099511628211ull;
    char name[600];
    size_t len = 0;
    for (const char* p = artifact_prefix; *p && len < 500; p++)
        name[len++] = *p;
    for (const char* p = kind; *p; p++)
        name[len++] = *p;
    name[len++] = '-';
    for (int shift = 60; shift >= 0; shift -= 4)
        name[len++] = "0123456789abcdef"[(h >> shift) & 15];
    name[len] = 0;
    int fd = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd >= 0) {
        size_t done = 0;
        while (done < n) {
            ssize_t w = write(fd, current + done, n - done);
            if (w <= 0)
                break;
            done += size_t(w);
        }
        close(fd);
    }
    const char* head = "==fuzz== the input is saved as ";
    ssize_t ignored = write(2, head, std::strlen(head));
    ignored = write(2, name, len);
    ignored = write(2, "\n", 1);
    (void)ignored;
}

void on_death()
{
    save_current("crash");
}

void on_signal(int sig)
{
    save_current("crash");
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

void install_death_handlers()
{
    if (__sanitizer_set_death_callback) {
        // The sanitizers print their report and then call this.
        __sanitizer_set_death_callback(on_death);
        std::signal(SIGABRT, on_signal);
        return;
    }
    for (int sig : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(sig, on_signal);
}

void watchdog(double timeout)
{
    for (;;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        double started = input_started.load();
        if (started > 0 && now() - started > timeout) {
            std::fprintf(stderr, "==fuzz== an input ran longer than %.0f seconds: a hang\n", timeout);
            save_current("timeout");
            std::abort();
        }
    }
}

bool parse_flag(const char* arg, const char* name, std::string* value)
{
    size_t n = std::strlen(name);
    if (std::strncmp(arg, name, n) || arg[n] != '=')
        return false;
    *value = arg + n + 1;
    return true;
}

Options parse_options(int argc, char** argv)
{
    Options o;
    for (int i = 1; i < argc; i++) {
        const char* a = argv[i];
        std::string v;
        if (parse_flag(a, "-seed", &v)) {
            o.seed = std::strtoull(v.c_str(), nullptr, 10);
            o.seed_given = true;
        } else if (parse_flag(a, "-runs", &v)) {
            o.runs = std::atoll(v.c_str());
        } else if (parse_flag(a, "-max_total_time", &v)) {
            o.max_total_time = std::atof(v.c_str());
        } else if (parse_flag(a, "-timeout", &v)) {
            o.timeout = std::atof(v.c_str());
        } else if (parse_flag(a, "-max_len", &v)) {
            o.max_len = size_t(std::atoll(v.c_str()));
        } else if (parse_flag(a, "-dict", &v)) {
            o.dict = v;
        } else if (parse_flag(a, "-artifact_prefix", &v)) {
            o.artifact_prefix = v;
        } else if (a[0] == '-') {
            std::fprintf(stderr, "==fuzz== flag ignored: %s\n", a);
        } else {
            o.seeds.push_back(a);
        }
    }
    if (o.max_len < 1 || o.max_len > INPUT_CAPACITY)
        o.max_len = INPUT_CAPACITY;
    return o;
}

bool read_file(const std::string& path, Bytes* out)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream s;
    s << in.rdbuf();
    std::string text = s.str();
    out->assign(text.begin(), text.end());
    return true;
}

void load_seeds(const std::vector<std::string>& paths, size_t max_len, std::vector<Bytes>* seeds)
{
    for (const std::string& path : paths) {
        struct stat st;
        if (stat(path.c_str(), &st) != 0)
            continue;
        std::vector<std::string> files;
        if (S_ISDIR(st.st_mode)) {
            if (DIR* d = opendir(path.c_str())) {
                while (dirent* e = readdir(d))
                    if (e->d_name[0] != '.')
                        files.push_back(path + "/" + e->d_name);
                closedir(d);
            }
        } else {
            files.push_back(path);
        }
        std::sort(files.begin(), files.end()); // the same order on every machine
        for (const std::string& f : files) {
            Bytes b;
            if (read_file(f, &b)) {
                if (b.size() > max_len)
                    b.resize(max_len);
                seeds->push_back(b);
            }
        }
    }
}

// The dictionary format libFuzzer reads: one "quoted" word a line, with \\,
// \" and \xNN escapes; anything else on the line is a comment or a name.
std::vector<Bytes> load_dictionary(const std::string& path)
{
    std::vector<Bytes> words;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        size_t q = line.find('"');
        if (q == std::string::npos || line[0] == '#')
            continue;
        Bytes w;
        for (size_t i = q + 1; i < line.size() && line[i] != '"'; i++) {
            if (line[i] == '\\' && i + 1 < line.size()) {
                i++;
                if (line[i] == 'x' && i + 2 < line.size()) {
                    w.push_back(uint8_t(std::strtol(line.substr(i + 1, 2).c_str(), nullptr, 16)));
                    i += 2;
                    continue;
                }
            }
            w.push_back(uint8_t(line[i]));
        }
        if (!w.empty())
            words.push_back(w);
    }
    return words;
}

const char* const INTERESTING_NUMBERS[] = {"0",     "1",          "-1",          "2",   "3",
                                           "7",     "8",          "63",          "64",  "66",
                                           "67",    "100",        "127",         "128", "255",
                                           "256",   "1000",       "4999",        "5000", "16384",
                                           "32767", "32768",      "65535",       "65536", "2147483647",
                                           "-2147483648", "4294967296", "99999999999999999999", "1e400", "nan"};

struct Mutator {
    std::mt19937_64 rng;
    const std::vector<Bytes>* seeds;
    const std::vector<Bytes>* dict;
    size_t max_len;

    size_t below(size_t n) { return n ? size_t(rng() % n) : 0; }

    void insert_bytes(Bytes* b, const Bytes& what)
    {
        size_t at = below(b->size() + 1);
        b->insert(b->begin() + long(at), what.begin(), what.end());
    }

    void mutate_once(Bytes* b)
    {
        switch (below(11)) {
        case 0: // flip a bit
            if (!b->empty())
                (*b)[below(b->size())] ^= uint8_t(1u << below(8));
            break;
        case 1: // a random byte
            if (!b->empty())
                (*b)[below(b->size())] = uint8_t(rng());
            break;
        case 2: // insert random bytes
            insert_bytes(b, Bytes(1 + below(4), uint8_t(rng())));
            break;
        case 3: { // cut a range
            if (b->empty())
                break;
            size_t at = below(b->size()), n = 1 + below(std::min<size_t>(16, b->size() - at));
            b->erase(b->begin() + long(at), b->begin() + long(at + n));
            break;
        }
        case 4: { // copy a range elsewhere
            if (b->empty())
                break;
            size_t at = below(b->size()), n = 1 + below(std::min<size_t>(64, b->size() - at));
            insert_bytes(b, Bytes(b->begin() + long(at), b->begin() + long(at + n)));
            break;
        }
        case 5:
        case 6: // a dictionary word
            if (!dict->empty())
                insert_bytes(b, (*dict)[below(dict->size())]);
            break;
        case 7: { // a dictionary word over what was there
            if (dict->empty() || b->empty())
                break;
            const Bytes& w = (*dict)[below(dict->size())];
            size_t at = below(b->size());
            for (size_t i = 0; i < w.size(); i++) {
                if (at + i < b->size())
                    (*b)[at + i] = w[i];
                else
                    b->push_back(w[i]);
            }
            break;
        }
        case 8: { // a run of digits becomes an interesting number
            std::string text(b->begin(), b->end());
            size_t at = text.find_first_of("0123456789", below(text.size() + 1));
            if (at == std::string::npos)
                break;
            size_t end = text.find_first_not_of("0123456789", at);
            if (end == std::string::npos)
                end = text.size();
            const char* n = INTERESTING_NUMBERS[below(sizeof INTERESTING_NUMBERS / sizeof *INTERESTING_NUMBERS)];
            b->erase(b->begin() + long(at), b->begin() + long(end));
            b->insert(b->begin() + long(at), n, n + std::strlen(n));
            break;
        }
        case 9: { // splice with another seed
            if (seeds->empty())
                break;
            const Bytes& other = (*seeds)[below(seeds->size())];
            size_t keep = below(b->size() + 1), from = below(other.size() + 1);
            b->resize(keep);
            b->insert(b->end(), other.begin() + long(from), other.end());
            break;
        }
        default: // cut the tail
            if (!b->empty())
                b->resize(below(b->size() + 1));
            break;
        }
    }

    Bytes next()
    {
        Bytes b;
        if (seeds->empty() || below(8) == 0) {
            b.resize(1 + below(std::min<size_t>(max_len, 512)));
            for (auto& c : b)
                c = uint8_t(rng());
        } else {
            b = (*seeds)[below(seeds->size())];
            for (size_t n = 1 + below(8); n > 0; n--)
                mutate_once(&b);
        }
        if (b.size() > max_len)
            b.resize(max_len);
        return b;
    }
};

void run_one(const Bytes& b)
{
    std::memcpy(current, b.data(), b.size());
    current_size = b.size();
    input_started = now();
    LLVMFuzzerTestOneInput(current, b.size());
    input_started = 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options o = parse_options(argc, argv);
    if (!o.seed_given)
        o.seed = uint64_t(std::chrono::steady_clock::now().time_since_epoch().count());
    std::snprintf(artifact_prefix, sizeof artifact_prefix, "%s", o.artifact_prefix.c_str());
    if (artifact_prefix[0] != '/' && artifact_prefix[0]) {
        // Targets may change directory; keep artifacts where the caller meant.
        char cwd[400];
        if (getcwd(cwd, sizeof cwd))
            std::snprintf(artifact_prefix, sizeof artifact_prefix, "%s/%s", cwd, o.artifact_prefix.c_str());
    } else if (!artifact_prefix[0]) {
        char cwd[400];
        if (getcwd(cwd, sizeof cwd))
            std::snprintf(artifact_prefix, sizeof artifact_prefix, "%s/", cwd);
    }
    std::vector<Bytes> seeds;
    load_seeds(o.seeds, o.max_len, &seeds);
    std::vector<Bytes> dict = o.dict.empty() ? std::vector<Bytes>() : load_dictionary(o.dict);
    std::fprintf(stderr, "==fuzz== seed %llu, %zu seed inputs, %zu dictionary words\n", (unsigned long long)o.seed,
                 seeds.size(), dict.size());

    install_death_handlers();
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    std::thread(watchdog, o.timeout).detach();

    double start = now(), last_report = start;
    long long done = 0;
    auto more = [&] {
        if (o.runs >= 0 && done >= o.runs)
            return false;
        if (o.max_total_time > 0 && now() - start >= o.max_total_time)
            return false;
        return true;
    };
    for (const Bytes& s : seeds) {
        if (!more())
            break;
        run_one(s);
        done++;
    }
    Mutator m{std::mt19937_64(o.seed), &seeds, &dict, o.max_len};
    while (more()) {
        run_one(m.next());
        done++;
        if (now() - last_report >= 30) {
            last_report = now();
            std::fprintf(stderr, "==fuzz== #%lld inputs, %.0f s\n", done, last_report - start);
        }
    }
    double seconds = now() - start;
    if (__lsan_do_recoverable_leak_check && __lsan_do_recoverable_leak_check()) {
        std::fprintf(stderr, "==fuzz== memory leaked\n");
        return 1;
    }
    std::fprintf(stderr, "==fuzz== done: %lld inputs in %.1f s, none crashed, hung or failed a check\n", done,
                 seconds);
    std::fprintf(stderr, "stat::number_of_executed_units: %lld\n", done);
    return 0;
}
