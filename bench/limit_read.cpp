#include "bench/limit_program.h"

#include "base/utl_File.h"
#include "base/utl_MappedFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <string_view>

namespace {

constexpr std::size_t blockBytes = 128 << 10; // with its arrays it stays in the second-level cache

// Gathers arrays into chunks and hands the full ones to the store. Append is called by one thread
// at a time; the writing itself is done by whoever finds the store free.
class ChunkWriter {
public:
  explicit ChunkWriter(LimitStore& store) : m_store(store) {}

  template <class T> void Append(LimitArray array, const T* values, std::size_t count) {
    Open& open = m_open[static_cast<std::size_t>(array)];
    const auto* from = reinterpret_cast<const std::byte*>(values);
    for (std::size_t left = count * sizeof(T); left > 0;) {
      if (open.bytes.empty()) open.bytes = FreshBuffer();
      const std::size_t part = std::min(left, limitChunkBytes - open.used);
      std::memcpy(open.bytes.data() + open.used, from, part);
      open.used += part;
      from += part;
      left -= part;
      if (open.used == limitChunkBytes) Queue(array, open);
    }
  }

  void WriteQueued() {
    const std::unique_lock writing(m_writing, std::try_to_lock);
    if (writing)
      while (WriteOne()) continue;
  }

  void Finish() {
    for (std::size_t array = 1; array < m_open.size(); ++array)
      if (m_open[array].used > 0) Queue(static_cast<LimitArray>(array), m_open[array]);
    WriteQueued();
  }

private:
  using Bytes = std::vector<std::byte>;
  struct Open {
    Bytes bytes;
    std::size_t used = 0;
    std::size_t position = 0; // of the next chunk
  };
  struct Full {
    LimitArray array;
    std::size_t position;
    std::size_t used;
    Bytes bytes;
  };

  Bytes FreshBuffer() {
    const std::lock_guard lock(m_mutex);
    if (m_free.empty()) return Bytes(limitChunkBytes);
    Bytes bytes = std::move(m_free.back());
    m_free.pop_back();
    return bytes;
  }

  void Queue(LimitArray array, Open& open) {
    const std::lock_guard lock(m_mutex);
    m_queue.push_back({array, open.position++, open.used, std::move(open.bytes)});
    open.bytes.clear();
    open.used = 0;
  }

  bool WriteOne() {
    Full full;
    {
      const std::lock_guard lock(m_mutex);
      if (m_queue.empty()) return false;
      full = std::move(m_queue.front());
      m_queue.pop_front();
    }
    m_store.WriteChunk(full.array, full.position, std::span(full.bytes).first(full.used));
    const std::lock_guard lock(m_mutex);
    m_free.push_back(std::move(full.bytes));
    return true;
  }

  LimitStore& m_store;
  std::array<Open, 5> m_open;
  std::mutex m_writing;
  std::mutex m_mutex;
  std::deque<Full> m_queue;
  std::vector<Bytes> m_free;
};

// Node labels to positions: a plain table while the labels are compact, else open addressing.
class LabelTable {
public:
  void Append(const std::int32_t* labels, std::size_t count) {
    m_labels.insert(m_labels.end(), labels, labels + count);
  }
  void Build() {
    if (m_labels.empty()) return;
    if (*std::min_element(m_labels.begin(), m_labels.end()) < 0)
      throw std::runtime_error("a label that the limit program does not know");
    const auto largest =
        static_cast<std::size_t>(*std::max_element(m_labels.begin(), m_labels.end()));
    m_dense = largest < 8 * m_labels.size();
    if (m_dense)
      BuildDense(largest);
    else
      BuildSparse();
  }
  // False when a label is no node's.
  bool Translate(std::int32_t* labels, std::size_t count) const {
    std::int32_t least = 0;
    if (m_dense)
      for (std::size_t i = 0; i < count; ++i) {
        const auto label = static_cast<std::uint32_t>(labels[i]);
        labels[i] = label < m_positions.size() ? m_positions[label] : -1;
        least = std::min(least, labels[i]);
      }
    else
      for (std::size_t i = 0; i < count; ++i) {
        if (i + ahead < count) Prefetch(labels[i + ahead]);
        labels[i] = FindSparse(labels[i]);
        least = std::min(least, labels[i]);
      }
    return least >= 0;
  }

private:
  static constexpr std::size_t ahead = 16; // labels whose slots are on their way from memory

  struct Slot {
    std::int32_t label = 0;
    std::int32_t position = -1;
  };

  void BuildDense(std::size_t largest) {
    m_positions.assign(largest + 1, -1);
    for (std::size_t i = 0; i < m_labels.size(); ++i)
      m_positions[static_cast<std::size_t>(m_labels[i])] = static_cast<std::int32_t>(i);
    m_labels = {};
  }
  void BuildSparse() {
    m_shift = 32 - static_cast<int>(std::bit_width(2 * m_labels.size()));
    m_slots.assign(std::size_t{1} << (32 - m_shift), Slot{});
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
      std::size_t at = Hash(m_labels[i]);
      while (m_slots[at].position >= 0) at = (at + 1) & (m_slots.size() - 1);
      m_slots[at] = {m_labels[i], static_cast<std::int32_t>(i)};
    }
    m_labels = {};
  }
  void Prefetch([[maybe_unused]] std::int32_t label) const {
#ifdef __GNUC__
    __builtin_prefetch(m_slots.data() + Hash(label));
#endif
  }
  std::size_t Hash(std::int32_t label) const {
    return (static_cast<std::uint32_t>(label) * 0x9E3779B1U) >> m_shift;
  }
  std::int32_t FindSparse(std::int32_t label) const {
    if (m_slots.empty()) return -1;
    std::size_t at = Hash(label);
    while (m_slots[at].label != label && m_slots[at].position >= 0)
      at = (at + 1) & (m_slots.size() - 1);
    return m_slots[at].position;
  }

  std::vector<std::int32_t> m_labels;
  bool m_dense = true;
  std::vector<std::int32_t> m_positions;
  std::vector<Slot> m_slots;
  int m_shift = 0;
};

class Reader {
public:
  Reader(const std::filesystem::path& deck, LimitStore& store, int threads)
      : m_file(deck), m_writer(store), m_threads(threads) {}

  LimitCounts Run() {
    const std::string_view text = m_file.Text();
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t lineEnd = std::min(text.find('\n', at), text.size() - 1) + 1;
      const std::string_view line = text.substr(at, lineEnd - at);
      if (line.starts_with("*NODE\n")) {
        at = ReadSection(LimitSection::Nodes, lineEnd);
        m_table.Build();
      } else if (line.starts_with("*ELEMENT")) {
        at = ReadSection(LimitSection::Elements, lineEnd);
      } else if (line.starts_with("*HEADING")) {
        at = std::min(text.find("\n*", at), text.size() - 1) + 1;
      } else {
        throw std::runtime_error("a keyword that the limit program does not know");
      }
    }
    m_writer.Finish();
    return m_counts;
  }

private:
  // Blocks are cut at line ends and read on all threads as if the section had no end; the block
  // that finds the next keyword ends it, and what was read behind it is dropped.
  std::size_t ReadSection(LimitSection section, std::size_t begin) {
    m_sectionBegin = begin;
    m_sectionEnd = m_file.Size();
    m_ended = false;
    std::atomic<std::size_t> nextBlock{0};
    LimitTurns turns;
    limitRunThreads(m_threads, [&] {
      LimitRows rows;
      try {
        while (!m_ended) {
          const std::size_t block = nextBlock++;
          const std::size_t from = BlockStart(block);
          if (from >= m_file.Size()) return;
          ReadBlock(section, block, from, rows, turns);
          m_writer.WriteQueued();
        }
      } catch (...) {
        turns.Abandon();
        throw;
      }
    });
    return m_sectionEnd;
  }

  void ReadBlock(LimitSection section, std::size_t block, std::size_t from, LimitRows& rows,
                 LimitTurns& turns) {
    const char* const text = m_file.Data();
    const std::size_t to = BlockStart(block + 1);
    bool known = limitDecode(section, text, text + from, text + to, rows);
    if (known && section == LimitSection::Elements)
      known = m_table.Translate(rows.integers.data(), limitNodesPerBrick * rows.rows);
    turns.Wait(block);
    if (!m_ended) {
      if (!known)
        throw std::runtime_error(
            "a data line that the limit program does not know, or no such node");
      Publish(section, rows);
      if (rows.stoppedAt != text + to) {
        m_sectionEnd = static_cast<std::size_t>(rows.stoppedAt - text);
        m_ended = true;
      }
    }
    turns.Pass();
    m_file.Release(from, to - from);
  }

  void Publish(LimitSection section, const LimitRows& rows) {
    if (section == LimitSection::Nodes) {
      m_writer.Append(LimitArray::NodeLabels, rows.labels.data(), rows.rows);
      m_writer.Append(LimitArray::Coordinates, rows.reals.data(), 3 * rows.rows);
      m_table.Append(rows.labels.data(), rows.rows);
      m_counts.nodes += static_cast<std::int64_t>(rows.rows);
    } else {
      m_writer.Append(LimitArray::ElementLabels, rows.labels.data(), rows.rows);
      m_writer.Append(LimitArray::Connectivity, rows.integers.data(),
                      limitNodesPerBrick * rows.rows);
      m_counts.elements += static_cast<std::int64_t>(rows.rows);
    }
  }

  std::size_t BlockStart(std::size_t block) const {
    if (block == 0) return m_sectionBegin;
    const std::size_t near = m_sectionBegin + block * blockBytes - 1;
    if (near >= m_file.Size()) return m_file.Size();
    return std::min(m_file.Text().find('\n', near), m_file.Size() - 1) + 1;
  }

  utl_MappedFile m_file;
  ChunkWriter m_writer;
  int m_threads;
  LabelTable m_table;
  LimitCounts m_counts;
  std::size_t m_sectionBegin = 0;
  std::size_t m_sectionEnd = 0;
  std::atomic<bool> m_ended = false;
};

} // namespace

LimitCounts limitConvert(const std::filesystem::path& deck, const std::filesystem::path& model,
                         int threads) {
  utl_removeFile(model);
  LimitStore store(model, LimitStore::Mode::Create);
  const LimitCounts counts = Reader(deck, store, threads).Run();
  store.WriteCounts(counts);
  store.Finish();
  return counts;
}
