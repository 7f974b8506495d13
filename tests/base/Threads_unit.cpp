#include "Threads.h"

#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <vector>

#include "VirtualSlot.h"

namespace {

using tkThreads::CAutoLock;
using tkThreads::CCriticalSection;
using tkThreads::ILockable;

/// Whether another thread could take the lock now.
bool IsFreeForOthers(CCriticalSection &lock) {
    bool taken = false;
    std::thread([&lock, &taken] {
        taken = lock.TryLock();
        if (taken)
            lock.Unlock();
    }).join();
    return taken;
}

TEST(CCriticalSection, LockGivesZeroAndExcludesOthers) {
    CCriticalSection lock;
    EXPECT_TRUE(IsFreeForOthers(lock));
    EXPECT_EQ(lock.Lock(), 0);
    EXPECT_FALSE(IsFreeForOthers(lock));
    lock.Unlock();
    EXPECT_TRUE(IsFreeForOthers(lock));
}

TEST(CCriticalSection, IsTakenAgainByItsHolder) {
    CCriticalSection lock;
    EXPECT_EQ(lock.Lock(), 0);
    EXPECT_EQ(lock.Lock(), 0);
    EXPECT_TRUE(lock.TryLock());
    lock.Unlock();
    lock.Unlock();
    EXPECT_FALSE(IsFreeForOthers(lock));
    lock.Unlock();
    EXPECT_TRUE(IsFreeForOthers(lock));
}

TEST(CCriticalSection, GuardsACounter) {
    CCriticalSection lock;
    int counter = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 5000; ++round) {
                const CAutoLock guard(&lock);
                ++counter;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(counter, 20000);
}

TEST(CLockableBase, KeepsATimeOutAndStoresAnyBelow1AsMinus1) {
    CCriticalSection lock;
    EXPECT_EQ(lock.GetTimeOut(), -1);
    lock.SetTimeOut(250);
    EXPECT_EQ(lock.GetTimeOut(), 250);
    for (const std::int32_t value : {0, -1, -2, std::numeric_limits<std::int32_t>::min()}) {
        lock.SetTimeOut(1);
        EXPECT_EQ(lock.GetTimeOut(), 1);
        lock.SetTimeOut(value);
        EXPECT_EQ(lock.GetTimeOut(), -1);
    }
}

TEST(CAutoLock, HoldsTheLockAsLongAsItLives) {
    CCriticalSection lock;
    {
        const CAutoLock guard(&lock);
        EXPECT_FALSE(IsFreeForOthers(lock));
    }
    EXPECT_TRUE(IsFreeForOthers(lock));
}

TEST(CAutoLock, CallsLockAndUnlockOnceAndMayHoldNull) {
    struct Counter final : tkThreads::CLockableBase {
        std::int32_t Lock() override { return ++Locked, 0; }
        void Unlock() override { ++Unlocked; }
        bool TryLock() override { return false; }
        int Locked = 0;
        int Unlocked = 0;
    };
    Counter counter;
    {
        const CAutoLock guard(&counter);
        const CAutoLock none(nullptr);
        EXPECT_EQ(counter.Locked, 1);
        EXPECT_EQ(counter.Unlocked, 0);
    }
    EXPECT_EQ(counter.Locked, 1);
    EXPECT_EQ(counter.Unlocked, 1);
}

TEST(ILockable, HasItsSlotsInOrder) {
    EXPECT_EQ(TestSupport::SlotOf(&ILockable::Lock), 2u);
    EXPECT_EQ(TestSupport::SlotOf(&ILockable::Unlock), 3u);
    EXPECT_EQ(TestSupport::SlotOf(&ILockable::GetTimeOut), 6u);
}

} // namespace
