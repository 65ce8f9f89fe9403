#include "search/threads.h"

#include "search/clock.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "search/tt.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <sched.h>

bool numa_binding = false;
std::mutex info_lock;
std::mutex stats_lock;

void parse_cpu_list(const char* list, cpu_set_t* set)
{
    CPU_ZERO(set);
    // "0-3,8-11": ranges and single CPUs separated by commas.
    for (const char* p = list; *p;) {
        char* end = nullptr;
        long a = std::strtol(p, &end, 10);
        if (end == p)
            break;
        long b = a;
        if (*end == '-')
            b = std::strtol(end + 1, &end, 10);
        for (long c = a; c <= b && c >= 0 && c < CPU_SETSIZE; c++)
            CPU_SET(int(c), set);
        p = *end == ',' ? end + 1 : end + std::strlen(end);
    }
}

namespace
{

constexpr int MAX_THREADS = 128;
constexpr int NUMA_THRESHOLD = 32;

std::atomic<SearchThread*> workers[MAX_THREADS];
// Set by a worker that could not get its memory: it ends at once, and the
// pool is started again smaller by whoever asked for it.
std::atomic<bool> failed[MAX_THREADS];
pthread_t handles[MAX_THREADS];
int count = 0;
int planned = 0; // the size of the pool being started, for the NUMA spread

// CPUs of each NUMA node from sysfs, read once per pool by the thread that
// starts it: a worker must not allocate (with many threads and little
// memory an allocation there would end the process).
constexpr int MAX_NODES = 64;
cpu_set_t node_cpus[MAX_NODES];
int node_count = 0;

void read_numa_nodes()
{
    node_count = 0;
    for (int node = 0; node < MAX_NODES; node++) {
        char path[80], list[4096];
        std::snprintf(path, sizeof path, "/sys/devices/system/node/node%d/cpulist", node);
        FILE* f = std::fopen(path, "r");
        if (!f)
            break;
        bool read = std::fgets(list, sizeof list, f) != nullptr;
        std::fclose(f);
        if (!read)
            break;
        parse_cpu_list(list, &node_cpus[node_count++]);
    }
}

// Spreads the workers evenly over the nodes, skipped without a topology.
void bind_to_node(int number, int total)
{
    if (node_count < 2)
        return;
    int node = int(int64_t(number) * node_count / total);
    pthread_setaffinity_np(pthread_self(), sizeof(cpu_set_t), &node_cpus[node]);
}

void* worker_main(void* arg)
{
    int number = int(reinterpret_cast<intptr_t>(arg));
    SearchThread* t = new_search_thread();
    if (!t) {
        failed[number].store(true);
        return nullptr;
    }
    t->thread_number = number;
    if (numa_binding || planned > NUMA_THRESHOLD)
        bind_to_node(number, planned);
    workers[number].store(t);
    for (;;) {
        uint8_t command = t->command.load();
        if (command == CMD_IDLE) {
            sleep_ms(1);
        } else if (command == CMD_SEARCH) {
            run_search(t);
            t->command = CMD_IDLE;
        } else if (command == CMD_CLEAR_HASH) {
            tt_clear_slice(number, count);
            t->command = CMD_IDLE;
        } else if (command == CMD_QUIT) {
            break;
        }
    }
    t->command = CMD_GONE;
    return nullptr;
}

} // namespace

bool start_threads(int n)
{
    if (n < 1)
        n = 1;
    if (n > MAX_THREADS)
        n = MAX_THREADS;
    for (int i = 0; i < MAX_THREADS; i++) {
        workers[i].store(nullptr);
        failed[i].store(false);
    }
    planned = n;
    if (numa_binding || n > NUMA_THRESHOLD)
        read_numa_nodes();
    int created = 0;
    while (created < n
           && pthread_create(&handles[created], nullptr, worker_main, reinterpret_cast<void*>(intptr_t(created))) == 0)
        created++;
    count = created;
    // Every thread created reports in, alive or out of memory, before the
    // pool is either kept whole or taken down again.
    bool whole = created == n;
    for (int i = 0; i < created; i++) {
        while (!workers[i].load() && !failed[i].load())
            sleep_ms(1);
        whole = whole && !failed[i].load();
    }
    if (!whole) {
        stop_threads();
        return false;
    }
    return true;
}

void stop_threads()
{
    if (!count)
        return;
    limits.stop_signal = STOP_SHUTDOWN;
    while (count_busy_threads())
        sleep_ms(1);
    for (int i = 0; i < count; i++)
        if (SearchThread* t = workers[i].load())
            t->command = CMD_QUIT;
    for (int i = 0; i < count; i++) {
        if (SearchThread* t = workers[i].load())
            while (t->command != CMD_GONE)
                sched_yield();
        pthread_join(handles[i], nullptr);
    }
    for (int i = 0; i < count; i++) {
        free_search_thread(workers[i].load());
        workers[i].store(nullptr);
    }
    count = 0;
}

int worker_count()
{
    return count;
}

SearchThread* worker(int i)
{
    return i >= 0 && i < count ? workers[i].load() : nullptr;
}

int count_busy_threads()
{
    int busy = 0;
    for (int i = 0; i < count; i++)
        if (SearchThread* t = workers[i].load(); t && t->command != CMD_IDLE)
            busy++;
    return busy;
}

void stop_and_wait(uint8_t signal)
{
    limits.stop_signal = signal;
    while (count_busy_threads())
        sleep_ms(1);
}

void start_search_threads()
{
    if (!count)
        return;
    workers[0].load()->command = CMD_SEARCH;
    if (count >= 2) {
        sleep_ms(5);
        for (int i = 1; i < count; i++)
            workers[i].load()->command = CMD_SEARCH;
    }
}

void clear_hash_table()
{
    if (count < 2) {
        tt_clear();
        return;
    }
    for (int i = 0; i < count; i++)
        workers[i].load()->command = CMD_CLEAR_HASH;
    while (count_busy_threads())
        sleep_ms(1);
}
