// The instruction set levels that inner loops are compiled for, and the one choice among them. A loop is written
// once, in plain C++, and compiled for each level; all levels give the same bytes. A test can list and force each.
#pragma once

#include <span>

#include "Image/VectorRegisters.h"

namespace Image {

enum class KernelLevel { Baseline, Avx2, Avx512 };

const char *NameOf(KernelLevel level);
/// The levels that this processor has, the plainest first.
std::span<const KernelLevel> AvailableLevels();
/// The level that loops run at: the quickest, unless a test forces another.
KernelLevel CurrentLevel();

/// For tests: loops of all threads run at a level while this lives.
class ForcedLevel {
public:
    explicit ForcedLevel(KernelLevel level);
    ~ForcedLevel();
    ForcedLevel(const ForcedLevel &) = delete;
    ForcedLevel &operator=(const ForcedLevel &) = delete;
};

#if defined(__clang__)
#define ORV_TARGET_AVX512 __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq"), noinline))
#else
#define ORV_TARGET_AVX512                                                                                            \
    __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq,prefer-vector-width=512"), noinline))
#endif

template <class Loop>
__attribute__((noinline)) void RunAtBaseline(const Loop &loop) {
    loop();
}
template <class Loop>
__attribute__((target("avx2"), noinline)) void RunAtAvx2(const Loop &loop) {
    loop();
}
template <class Loop>
ORV_TARGET_AVX512 void RunAtAvx512(const Loop &loop) {
    loop();
}

/// Runs loop() compiled for the current level. Write it as [=]() ORV_INLINE_LAMBDA { ... }, and everything that it
/// calls as ORV_INLINE: only what is inlined is compiled for the level.
template <class Loop>
void RunAtLevel(const Loop &loop) {
    switch (CurrentLevel()) {
    case KernelLevel::Avx512:
        return RunAtAvx512(loop);
    case KernelLevel::Avx2:
        return RunAtAvx2(loop);
    case KernelLevel::Baseline:
        break;
    }
    RunAtBaseline(loop);
}

#define ORV_INLINE_LAMBDA __attribute__((always_inline))

} // namespace Image
