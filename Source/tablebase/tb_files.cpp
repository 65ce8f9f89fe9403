#include "tablebase/tb_files.h"

#include "tablebase/tb_report.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int NAME_BUFFER = 260;
constexpr int NAME_BUDGET = NAME_BUFFER - 1;
constexpr size_t PATH_BUFFER = 4096;
constexpr size_t SMALLEST_TABLE = 16; // magic, flags and the shortest header

char path_copy[PATH_BUFFER];
const char* directories[TB_MAX_DIRECTORIES];
int directory_count = 0;

} // namespace

int tb_set_directories(const char* path)
{
    directory_count = 0;
    std::snprintf(path_copy, sizeof path_copy, "%s", path);
    char* p = path_copy;
    while (*p && directory_count < TB_MAX_DIRECTORIES) {
        size_t len = std::strcspn(p, ";:");
        bool last = p[len] == 0;
        p[len] = 0;
        if (len)
            directories[directory_count++] = p;
        if (last)
            break;
        p += len + 1;
    }
    return directory_count;
}

int tb_directory_count()
{
    return directory_count;
}

const char* tb_directory(int i)
{
    return directories[i];
}

int tb_open_file(const char* name, const char* extension, int* directory)
{
    char file[NAME_BUFFER];
    int budget = NAME_BUDGET;
    int tail = int(std::strlen(name) + std::strlen(extension));
    for (int d = 0; d < directory_count; d++) {
        budget -= int(std::strlen(directories[d])) + 1 + tail;
        if (budget <= 0)
            return -1;
        std::snprintf(file, sizeof file, "%s/%s%s", directories[d], name, extension);
        int fd = open(file, O_RDONLY | O_CLOEXEC);
        if (fd >= 0) {
            *directory = d;
            return fd;
        }
    }
    return -1;
}

bool tb_map_file(int fd, int directory, const char* file_name, TbMapping* m)
{
    char dir[NAME_BUFFER];
    std::snprintf(dir, sizeof dir, "%s/", tb_directory(directory));
    struct stat st;
    if (fstat(fd, &st) != 0) {
        tb_report_unmeasured(dir, file_name, errno);
        close(fd);
        return false;
    }
    // Too short to hold a header: damaged, never mapped.
    if (!S_ISREG(st.st_mode) || size_t(st.st_size) < SMALLEST_TABLE) {
        close(fd);
        return false;
    }
    void* data = mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_SHARED, fd, 0);
    if (data == MAP_FAILED)
        tb_fail_view(dir, file_name, (unsigned long)errno);
    m->data = static_cast<const uint8_t*>(data);
    m->size = size_t(st.st_size);
    m->fd = fd;
    return true;
}

void tb_unmap_file(TbMapping* m)
{
    if (m->fd < 0)
        return;
    if (munmap(const_cast<uint8_t*>(m->data), m->size) != 0)
        tb_report_unmap_failure(errno);
    if (close(m->fd) != 0)
        tb_report_close_failure(errno);
    m->data = nullptr;
    m->size = 0;
    m->fd = -1;
}
