// Counts what does not hold, for the programs that try the code which the manual quotes.
#pragma once

#include <cstdio>

inline int failures = 0;

inline void Expect(bool holds, const char *what) {
    if (!holds) {
        std::printf("does not hold: %s\n", what);
        ++failures;
    }
}

/// The exit code of such a program.
inline int Conclude() {
    std::printf("%s\n", failures == 0 ? "the quoted code does what the manual says" : "the manual is wrong");
    return failures == 0 ? 0 : 1;
}
