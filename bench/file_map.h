// A file's bytes, mapped, for the racers that read from memory.
#pragma once

#include <fcntl.h>
#include <stddef.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

typedef struct FILE_MAP {
    const unsigned char* bytes;  // owned; null when the file can't be read
    size_t size;
} FILE_MAP;

static inline FILE_MAP map_file(const char* path)
{
    FILE_MAP map = {NULL, 0};
    struct stat info;
    const int file = open(path, O_RDONLY);
    if (file >= 0 && fstat(file, &info) == 0 && info.st_size > 0) {
        void* const bytes = mmap(NULL, (size_t)info.st_size, PROT_READ, MAP_PRIVATE, file, 0);
        if (bytes != MAP_FAILED) {
            map.bytes = (const unsigned char*)bytes;
            map.size = (size_t)info.st_size;
        }
    }
    if (file >= 0)
        close(file);
    return map;
}

static inline void unmap_file(FILE_MAP map)
{
    if (map.bytes)
        munmap((void*)map.bytes, map.size);
}
