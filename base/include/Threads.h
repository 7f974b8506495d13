// Locks with a common interface, so that a guard can hold any of them.
#pragma once

#include <boost/thread/recursive_mutex.hpp>
#include <cstdint>

namespace tkThreads {

class ILockable {
public:
    ILockable() = default;
    ILockable(const ILockable &) = delete;
    ILockable &operator=(const ILockable &) = delete;
    virtual ~ILockable();

    /// Waits for the lock. Result 0.
    virtual std::int32_t Lock() = 0;
    virtual void Unlock() = 0;
    /// Takes the lock if that needs no waiting. True when the caller has it now.
    virtual bool TryLock() = 0;
    /// The longest wait in milliseconds; any value below 1 stands for no limit and is kept as -1.
    virtual void SetTimeOut(std::int32_t milliseconds) = 0;
    virtual std::int32_t GetTimeOut() const = 0;
};

/// Keeps the time-out for locks that have one.
class CLockableBase : public ILockable {
public:
    static constexpr std::int32_t NoTimeOut = -1;

    void SetTimeOut(std::int32_t milliseconds) override;
    std::int32_t GetTimeOut() const override;

private:
    std::int32_t timeOutMilliseconds_ = NoTimeOut;
};

/// A lock that its holder may take again. It waits without a limit, whatever the time-out says.
class CCriticalSection : public CLockableBase {
public:
    std::int32_t Lock() override;
    void Unlock() override;
    bool TryLock() override;

private:
    boost::recursive_mutex mutex_;
};

/// Holds a lock as long as it lives. The lock may be null: then it holds nothing.
class CAutoLock {
public:
    explicit CAutoLock(ILockable *lock) : lock_(lock) {
        if (lock_ != nullptr)
            lock_->Lock();
    }
    CAutoLock(const CAutoLock &) = delete;
    CAutoLock &operator=(const CAutoLock &) = delete;
    ~CAutoLock() {
        if (lock_ != nullptr)
            lock_->Unlock();
    }

private:
    ILockable *lock_;
};

} // namespace tkThreads
