// measure OUTPUT PROGRAM ARGUMENT...: runs the program with its standard output in the file OUTPUT and prints the time and
// the memory that it took. This process is small, so that the child's peak is the child's own and not its parent's.

#include <fcntl.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static double now_ms(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e3 + (double)time.tv_nsec / 1e6;
}

static double ms_of(struct timeval time)
{
    return (double)time.tv_sec * 1e3 + (double)time.tv_usec / 1e3;
}

int main(int argc, char** argv)
{
    const int out = argc > 2 ? open(argv[1], O_WRONLY | O_CREAT | O_TRUNC, 0644) : -1;
    if (out < 0) {
        fprintf(stderr, "usage: measure OUTPUT PROGRAM ARGUMENT...\n");
        return 2;
    }
    const double start = now_ms();
    const pid_t child = fork();
    if (child == 0) {
        dup2(out, STDOUT_FILENO);
        close(out);
        execv(argv[2], argv + 2);
        _exit(127);
    }
    int status = 0;
    struct rusage usage;
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
        return 1;
    printf("{\"wall_ms\": %.3f, \"cpu_ms\": %.3f, \"peak_kb\": %ld}\n", now_ms() - start,
           ms_of(usage.ru_utime) + ms_of(usage.ru_stime), usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
