#include "bench/limit_program.h"

#include "base/utl_File.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <thread>

void limitRunThreads(int threads, const std::function<void()>& work) {
  std::mutex mutex;
  std::exception_ptr failure;
  const auto guarded = [&] {
    try {
      work();
    } catch (...) {
      const std::lock_guard lock(mutex);
      if (!failure) failure = std::current_exception();
    }
  };
  std::vector<std::jthread> others;
  for (int i = 1; i < threads; ++i) others.emplace_back(guarded);
  guarded();
  others.clear();
  if (failure) std::rethrow_exception(failure);
}

void LimitTurns::Wait(std::size_t block) {
  for (std::size_t turn = m_turn; turn != block; turn = m_turn) {
    if (turn == abandoned) throw std::runtime_error("another thread failed");
    m_turn.wait(turn);
  }
}

void LimitTurns::Pass() {
  ++m_turn;
  m_turn.notify_all();
}

void LimitTurns::Abandon() {
  m_turn = abandoned;
  m_turn.notify_all();
}

namespace {

int run(int argc, char** argv) {
  const std::string_view direction = argc > 2 ? argv[1] : "";
  if (direction == "columns") {
    const int most = static_cast<int>(std::thread::hardware_concurrency());
    const LimitColumns times = limitColumns(argv[2], argc > 4 ? std::atoi(argv[4]) : most);
    std::printf("{\"rows\": %lld, \"decode_seconds\": %.5f, \"print_seconds\": %.5f}\n",
                static_cast<long long>(times.rows), times.decodeSeconds, times.printSeconds);
    return 0;
  }
  if (argc < 4 || (direction != "convert" && direction != "write")) {
    std::fputs("limit_program convert DECK MODEL [--threads N] [--scalar] [--sync]\n"
               "limit_program write   MODEL DECK [--threads N]\n"
               "limit_program columns DECK [--threads N]\n",
               stderr);
    return 2;
  }
  int threads = static_cast<int>(std::thread::hardware_concurrency());
  bool sync = false; // a conversion ends with its model on the disk
  for (int i = 4; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--scalar") limitUseScalarDecoder();
    if (word == "--sync") sync = true;
    if (word == "--threads" && i + 1 < argc) threads = std::atoi(argv[i + 1]);
  }
  const auto start = std::chrono::steady_clock::now();
  const LimitCounts counts = direction == "convert" ? limitConvert(argv[2], argv[3], threads)
                                                    : limitWrite(argv[2], argv[3], threads);
  if (sync && direction == "convert") utl_syncFile(argv[3]);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  std::printf("{\"nodes\": %lld, \"elements\": %lld, \"seconds\": %.4f, \"peak_bytes\": %zu, "
              "\"threads\": %d, \"decoder\": \"%s\"}\n",
              static_cast<long long>(counts.nodes), static_cast<long long>(counts.elements),
              time.count(), utl_peakMemory(), threads, limitDecoderName());
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "limit_program: %s\n", error.what());
    return 3;
  }
}
