/* Loads a library and unloads it again. With "report" a thread of this program reports an error in between, and
 * ends only after the library was given back: the clean-up of its error slot must still find its code. */
#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef void (*reporter)(uint32_t code, const char *functionName);

static reporter report;
static sem_t hasReported;
static sem_t isUnloaded;

static void *report_and_outlive(void *unused) {
    (void)unused;
    report(0x80000002u, "a thread");
    sem_post(&hasReported);
    sem_wait(&isUnloaded);
    return NULL;
}

static int load_report_unload(const char *path) {
    pthread_t thread;
    void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    void *symbol = library ? dlsym(library, "ReportORVError") : NULL;
    if (!symbol)
        return puts(dlerror()), 1;
    memcpy(&report, &symbol, sizeof report);
    sem_init(&hasReported, 0, 0);
    sem_init(&isUnloaded, 0, 0);
    if (pthread_create(&thread, NULL, report_and_outlive, NULL) != 0)
        return puts("no thread"), 1;
    sem_wait(&hasReported);
    int result = dlclose(library);
    sem_post(&isUnloaded);
    pthread_join(thread, NULL);
    return result;
}

static int load_unload(const char *path) {
    void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return puts(dlerror()), 1;
    return dlclose(library);
}

int main(int count, char **arguments) {
    if (count != 3)
        return puts("usage: load_unload LIBRARY load|report"), 2;
    if (strcmp(arguments[2], "report") == 0)
        return load_report_unload(arguments[1]);
    /* Twice: what the first unloading left behind must not disturb the second loading. */
    return load_unload(arguments[1]) || load_unload(arguments[1]);
}
