#pragma once

#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

// Chance that is the same on every platform for the same seed.
class Random {
public:
  explicit Random(std::uint64_t seed) : m_engine(seed) {}

  // 0 … n - 1
  long long Below(long long n) {
    return static_cast<long long>(m_engine() % static_cast<std::uint64_t>(n));
  }
  long long From(long long least, long long most) { return least + Below(most - least + 1); }
  bool OneIn(long long n) { return Below(n) == 0; }
  double Real(double least, double most) {
    return least + (most - least) * static_cast<double>(Below(1 << 20)) / (1 << 20);
  }
  template <class List> const auto& Of(const List& list) {
    return list[static_cast<std::size_t>(Below(static_cast<long long>(std::size(list))))];
  }
  template <class T> void Shuffle(std::vector<T>& list) {
    for (std::size_t n = list.size(); n > 1; --n)
      std::swap(list[n - 1], list[static_cast<std::size_t>(Below(static_cast<long long>(n)))]);
  }

private:
  std::mt19937_64 m_engine;
};
