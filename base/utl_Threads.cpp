#include "base/utl_Threads.h"
#include "base/utl_Interruption.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace {

std::atomic<int> g_threadCount{0}; // 0: as many as the machine has
thread_local bool t_insideWork = false;

// Threads that wait for a job and run it once each, beside the caller. Never destroyed: a process
// that ends need not wait for them, and one that unloads the library calls utl_releaseThreads.
class Pool {
public:
  static Pool& Instance() {
    static Pool* pool = new Pool;
    return *pool;
  }

  // Runs job on `count` threads, the caller among them; false when another job has the pool.
  bool Run(std::size_t count, const std::function<void()>& job) {
    std::unique_lock owner(m_owner, std::try_to_lock);
    if (!owner) return false;
    const std::size_t helpers = std::min(count - 1, StartThreads(count - 1));
    {
      std::lock_guard lock(m_mutex);
      m_job = &job;
      m_wanted = helpers;
      m_running = helpers;
    }
    m_wake.notify_all();
    job();
    std::unique_lock lock(m_mutex);
    m_running -= m_wanted; // who has not begun by now finds no work left anyway
    m_wanted = 0;
    m_done.wait(lock, [this] { return m_running == 0; });
    return true;
  }

  void Release() {
    std::lock_guard owner(m_owner);
    {
      std::lock_guard lock(m_mutex);
      m_stop = true;
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads) thread.join();
    m_threads.clear();
    m_stop = false;
  }

private:
  // A system that refuses a thread leaves us with fewer, which only costs time.
  std::size_t StartThreads(std::size_t count) {
    try {
      while (m_threads.size() < count) m_threads.emplace_back([this] { Serve(); });
    } catch (const std::exception&) {
    }
    return m_threads.size();
  }

  void Serve() {
    t_insideWork = true;
    std::unique_lock lock(m_mutex);
    while (true) {
      m_wake.wait(lock, [this] { return m_stop || m_wanted > 0; });
      if (m_stop) return;
      --m_wanted;
      const std::function<void()>& job = *m_job;
      lock.unlock();
      job();
      lock.lock();
      if (--m_running == 0) m_done.notify_one();
    }
  }

  std::mutex m_owner; // held by the caller whose job runs
  std::vector<std::thread> m_threads;

  std::mutex m_mutex; // guards all below
  std::condition_variable m_wake, m_done;
  const std::function<void()>* m_job = nullptr; // throws nothing
  std::size_t m_wanted = 0;                     // threads that may still join the job
  std::size_t m_running = 0;                    // those and the ones that joined and have not ended
  bool m_stop = false;
};

// The exception of the lowest index, and the index from which on nothing needs to run.
class FirstFailure {
public:
  void Record(std::size_t i) {
    std::lock_guard lock(m_mutex);
    if (i >= m_index) return;
    m_index = i;
    m_exception = std::current_exception();
  }
  bool IsBefore(std::size_t i) const { return m_index.load() < i; }
  void Rethrow() const {
    if (m_exception) std::rethrow_exception(m_exception);
  }

private:
  std::mutex m_mutex;
  std::atomic<std::size_t> m_index{SIZE_MAX};
  std::exception_ptr m_exception;
};

// Marks the calling thread as inside work for the life of a job.
class InsideWork {
public:
  InsideWork() : m_before(t_insideWork) { t_insideWork = true; }
  ~InsideWork() { t_insideWork = m_before; }
  InsideWork(const InsideWork&) = delete;
  InsideWork& operator=(const InsideWork&) = delete;

private:
  bool m_before;
};

bool runOnPool(std::size_t n, const std::function<void()>& job) {
  const std::size_t count = std::min(n, static_cast<std::size_t>(utl_threadCount()));
  if (count < 2 || t_insideWork) return false;
  return Pool::Instance().Run(count, [&job] {
    InsideWork inside;
    job();
  });
}

// The state of one call of utl_orderedBlocks: blocks are taken in order, and whoever completes the
// next one to publish publishes it and those completed behind it.
class OrderedRun {
public:
  OrderedRun(std::size_t n, const utl_BlockCall& work, const utl_BlockCall& publish)
      : m_n(n), m_slots(utl_slotCount()), m_work(work), m_publish(publish), m_ready(m_slots) {}

  void Run() {
    std::unique_lock lock(m_mutex);
    while (m_next < m_n && !m_exception) {
      const std::size_t i = m_next++;
      m_slotFree.wait(lock, [&] { return i < m_published + m_slots || m_exception; });
      if (m_exception) return; // an earlier block failed, or all before this one would be done
      Work(i, lock);
      PublishReady(lock);
    }
  }
  void Rethrow() const {
    if (m_exception) std::rethrow_exception(m_exception);
  }

private:
  enum class State : unsigned char { Empty, Done, Failed };

  void Work(std::size_t i, std::unique_lock<std::mutex>& lock) {
    Slot& slot = m_ready[i % m_slots];
    lock.unlock();
    std::exception_ptr failure;
    try {
      utl_stopIfAsked();
      m_work(i, i % m_slots);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    slot.failure = failure;
    slot.state = failure ? State::Failed : State::Done;
  }

  void PublishReady(std::unique_lock<std::mutex>& lock) {
    if (m_publishing) return; // who publishes looks again before leaving
    m_publishing = true;
    while (!m_exception && m_published < m_n) {
      const std::size_t at = m_published % m_slots;
      if (m_ready[at].state == State::Empty) break;
      if (m_ready[at].state == State::Failed)
        m_exception = m_ready[at].failure;
      else
        Publish(at, lock);
      m_slotFree.notify_all();
    }
    m_publishing = false;
  }

  void Publish(std::size_t slot, std::unique_lock<std::mutex>& lock) {
    lock.unlock();
    std::exception_ptr failure;
    try {
      m_publish(m_published, slot);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    m_ready[slot].state = State::Empty;
    m_exception = failure;
    if (!failure) ++m_published;
  }

  struct Slot {
    State state = State::Empty;
    std::exception_ptr failure;
  };

  const std::size_t m_n, m_slots;
  const utl_BlockCall& m_work;
  const utl_BlockCall& m_publish;
  std::mutex m_mutex; // guards all below
  std::condition_variable m_slotFree;
  std::vector<Slot> m_ready;
  std::size_t m_next = 0;
  std::size_t m_published = 0; // written by the publishing thread only
  bool m_publishing = false;
  std::exception_ptr m_exception;
};

} // namespace

int utl_threadCount() {
  const int count = g_threadCount.load();
  if (count > 0) return count;
  static const int hardware = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  return hardware;
}

void utl_setThreadCount(int count) {
  g_threadCount = std::max(count, 0);
}

void utl_releaseThreads() {
  Pool::Instance().Release();
}

// Two blocks a thread, so that one may be worked on while another waits to be published.
std::size_t utl_slotCount() {
  const int count = utl_threadCount();
  return count < 2 ? 1 : 2 * static_cast<std::size_t>(count);
}

void utl_parallelFor(std::size_t n, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  FirstFailure failure;
  const bool parallel = runOnPool(n, [&] {
    for (std::size_t i; (i = next.fetch_add(1)) < n && !failure.IsBefore(i);) {
      try {
        utl_stopIfAsked();
        work(i);
      } catch (...) {
        failure.Record(i);
      }
    }
  });
  if (!parallel)
    for (std::size_t i = 0; i < n; ++i) {
      utl_stopIfAsked();
      work(i);
    }
  failure.Rethrow();
}

void utl_orderedBlocks(std::size_t n, const utl_BlockCall& work, const utl_BlockCall& publish) {
  OrderedRun run(n, work, publish);
  if (runOnPool(n, [&run] { run.Run(); })) {
    run.Rethrow();
    return;
  }
  for (std::size_t i = 0; i < n; ++i) {
    utl_stopIfAsked();
    work(i, 0);
    publish(i, 0);
  }
}
