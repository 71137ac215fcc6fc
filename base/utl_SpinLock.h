#pragma once

#include <atomic>
#include <thread>

// Held for a few instructions that nothing interrupts; a signal handler may wait for it.
class utl_SpinLock {
public:
  void Lock() noexcept {
    while (m_busy.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  void Unlock() noexcept { m_busy.clear(std::memory_order_release); }

  struct Scope {
    explicit Scope(utl_SpinLock& lock) noexcept : m_lock(lock) { m_lock.Lock(); }
    ~Scope() { m_lock.Unlock(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

  private:
    utl_SpinLock& m_lock;
  };

private:
  std::atomic_flag m_busy = ATOMIC_FLAG_INIT;
};
