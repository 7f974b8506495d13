#include "Image/KernelLevel.h"

#include <array>
#include <atomic>

namespace Image {
namespace {

constexpr std::array<KernelLevel, 3> allLevels = {KernelLevel::Baseline, KernelLevel::Avx2, KernelLevel::Avx512};

std::size_t CountAvailable() {
    if (__builtin_cpu_supports("avx2") == 0)
        return 1;
    const bool hasAvx512 = __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
                           __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512dq") != 0;
    return hasAvx512 ? 3 : 2;
}

std::atomic<KernelLevel> &Used() {
    static std::atomic<KernelLevel> level{AvailableLevels().back()};
    return level;
}

} // namespace

const char *NameOf(KernelLevel level) {
    constexpr std::array<const char *, 3> names = {"baseline", "avx2", "avx512"};
    return names[static_cast<std::size_t>(level)];
}

std::span<const KernelLevel> AvailableLevels() {
    static const std::size_t count = CountAvailable();
    return {allLevels.data(), count};
}

KernelLevel CurrentLevel() {
    return Used().load(std::memory_order_relaxed);
}

ForcedLevel::ForcedLevel(KernelLevel level) {
    Used().store(level, std::memory_order_relaxed);
}
ForcedLevel::~ForcedLevel() {
    Used().store(AvailableLevels().back(), std::memory_order_relaxed);
}

} // namespace Image
