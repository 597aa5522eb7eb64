#include "bench/walk_main.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#define CHUNK_SIZE ((size_t)1 << 16)
#define MAX_RUNS 1000

struct LISTING {
    char* bytes;  // owned; whole lines, and the one being made
    size_t size;
    size_t room;
    size_t texts;  // of the line being made
    size_t fields;
    uint64_t checksum;
    int quiet;
};

static char* room_for(LISTING* listing, size_t size)
{
    if (listing->room - listing->size < size) {
        listing->room = (listing->size + size) * 2 + CHUNK_SIZE;
        listing->bytes = realloc(listing->bytes, listing->room);
        if (!listing->bytes)
            abort();
    }
    return listing->bytes + listing->size;
}

static char escape_of(char c)
{
    switch (c) {
    case '\\':
        return '\\';
    case '\t':
        return 't';
    case '\r':
        return 'r';
    case '\n':
        return 'n';
    default:
        return 0;
    }
}

static void append_escaped(LISTING* listing, const char* text, size_t size)
{
    char* start = room_for(listing, 2 * size + 2);
    char* to = start;
    for (size_t i = 0; i < size; ++i) {
        const char c = text[i];
        const char escape = c == '\\' || (unsigned char)c < ' ' ? escape_of(c) : 0;
        if (escape)
            *to++ = '\\';
        *to++ = escape ? escape : c;
    }
    listing->size += (size_t)(to - start);
}

static void drain(LISTING* listing)
{
    if (listing->quiet) {
        for (size_t i = 0; i < listing->size; i += 8) {
            uint64_t word = 0;
            const size_t left = listing->size - i;
            memcpy(&word, listing->bytes + i, left < 8 ? left : 8);
            listing->checksum = (listing->checksum ^ word) * 0x9E3779B97F4A7C15u;
            listing->checksum ^= listing->checksum >> 29;
        }
    } else {
        fwrite(listing->bytes, 1, listing->size, stdout);
    }
    listing->size = 0;
}

void listing_name(LISTING* listing, const char* name, size_t size)
{
    append_escaped(listing, name, size);
    listing->bytes[listing->size++] = '\t';
    listing->texts = 0;
}

void listing_text(LISTING* listing, const char* text, size_t size)
{
    if (listing->texts++ > 0) {
        *room_for(listing, 1) = '|';
        ++listing->size;
    }
    append_escaped(listing, text, size);
}

void listing_end(LISTING* listing)
{
    *room_for(listing, 1) = '\n';
    ++listing->size;
    ++listing->fields;
    if (listing->size >= CHUNK_SIZE)
        drain(listing);
}

static double now_ns(clockid_t clock)
{
    struct timespec time;
    clock_gettime(clock, &time);
    return (double)time.tv_sec * 1e9 + (double)time.tv_nsec;
}

static int by_value(const void* a, const void* b)
{
    const double x = *(const double*)a;
    const double y = *(const double*)b;
    return (x > y) - (x < y);
}

static double median(double* values, int count)
{
    qsort(values, (size_t)count, sizeof *values, by_value);
    return values[count / 2];
}

// Walks the file `runs` times, at most MAX_RUNS, and prints the median times.
static int walk_repeatedly(const char* path, int runs, WALK* walk, LISTING* listing)
{
    double elapsed[MAX_RUNS];
    double cpu[MAX_RUNS];
    runs = runs < MAX_RUNS ? runs : MAX_RUNS;
    for (int i = 0; i < runs; ++i) {
        listing->fields = 0;
        listing->checksum = 0;
        elapsed[i] = -now_ns(CLOCK_MONOTONIC);
        cpu[i] = -now_ns(CLOCK_PROCESS_CPUTIME_ID);
        if (!walk(path, listing))
            return 0;
        drain(listing);
        cpu[i] += now_ns(CLOCK_PROCESS_CPUTIME_ID);
        elapsed[i] += now_ns(CLOCK_MONOTONIC);
    }
    const double fields = listing->fields ? (double)listing->fields : 1;
    printf("{\"fields\": %zu, \"checksum\": \"%016llx\", \"ns_per_field\": %.1f, \"cpu_ns_per_field\": %.1f}\n",
           listing->fields, (unsigned long long)listing->checksum, median(elapsed, runs) / fields,
           median(cpu, runs) / fields);
    return 1;
}

int walk_main(int argc, char** argv, WALK* walk)
{
    int runs = 0;
    LISTING listing = {0};
    for (int i = 2; i < argc; ++i) {
        if (strcmp(argv[i], "--quiet") == 0)
            listing.quiet = 1;
        else if (strcmp(argv[i], "--repeat") == 0 && i + 1 < argc)
            runs = atoi(argv[++i]);
        else
            argc = 0;
    }
    if (argc < 2) {
        fprintf(stderr, "usage: %s FILE [--quiet] [--repeat RUNS]\n", argv[0]);
        return 2;
    }
    if (runs > 0)
        listing.quiet = 1;
    int done = 0;
    if (runs > 0) {
        done = walk_repeatedly(argv[1], runs, walk, &listing);
    } else {
        done = walk(argv[1], &listing);
        drain(&listing);
        if (done && listing.quiet)
            printf("{\"fields\": %zu, \"checksum\": \"%016llx\"}\n", listing.fields,
                   (unsigned long long)listing.checksum);
    }
    free(listing.bytes);
    return done && fflush(stdout) == 0 ? 0 : 1;
}
