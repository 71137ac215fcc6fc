#include "bench/limit_program.h"

#include "base/utl_File.h"
#include "base/utl_Number.h"
#include "base/utl_OutputFile.h"

#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t lineRoom = 256;

// Text in the making, in a buffer that is reused.
class Text {
public:
  void Start(std::size_t lines) {
    if (m_buffer.size() < lines * lineRoom) m_buffer.resize(lines * lineRoom);
    m_end = m_buffer.data();
  }
  void Integer(std::int64_t value) { m_end = utl_printInt(m_end, value); }
  void Real(double value) { m_end = utl_printDouble(m_end, value); }
  void Comma() {
    std::memcpy(m_end, ", ", 2);
    m_end += 2;
  }
  void EndLine() { *m_end++ = '\n'; }
  std::size_t Size() const { return static_cast<std::size_t>(m_end - m_buffer.data()); }
  const char* Data() const { return m_buffer.data(); }

private:
  std::vector<char> m_buffer;
  char* m_end = nullptr;
};

class Writer {
public:
  Writer(const std::filesystem::path& model, const std::filesystem::path& deck, int threads)
      : m_model(model), m_file(deck), m_threads(threads) {}

  LimitCounts Run() {
    LimitStore store(m_model, LimitStore::Mode::Read);
    const LimitCounts counts = store.ReadCounts();
    m_nodeLabels = ReadLabels(store, LimitArray::NodeLabels);
    m_elementLabels = ReadLabels(store, LimitArray::ElementLabels);
    WriteText("*HEADING\nA cube of bricks\n*NODE\n");
    LimitCounts written;
    written.nodes = WriteRows(LimitArray::Coordinates, 3 * sizeof(double));
    WriteText("*ELEMENT, TYPE=C3D8, ELSET=CUBE\n");
    written.elements =
        WriteRows(LimitArray::Connectivity, limitNodesPerBrick * sizeof(std::int32_t));
    m_file.Close();
    if (written.nodes != counts.nodes || written.elements != counts.elements)
      throw std::runtime_error("the model does not hold what it says");
    return counts;
  }

private:
  std::vector<std::int32_t> ReadLabels(LimitStore& store, LimitArray array) {
    std::vector<std::int32_t> labels;
    for (std::size_t position = 0;; ++position) {
      const std::span<const std::byte> bytes = store.ReadChunk(array, position);
      if (bytes.empty()) return labels;
      const std::size_t had = labels.size();
      labels.resize(had + bytes.size() / sizeof(std::int32_t));
      std::memcpy(labels.data() + had, bytes.data(), bytes.size());
    }
  }

  void WriteText(std::string_view text) { m_file.Write(text.data(), text.size()); }

  // Every thread reads chunks through a connection of its own, prints them and writes in turn.
  std::int64_t WriteRows(LimitArray array, std::size_t rowBytes) {
    std::atomic<std::size_t> nextChunk{0};
    std::atomic<std::int64_t> rowsWritten{0};
    LimitTurns turns;
    limitRunThreads(m_threads, [&] {
      LimitStore store(m_model, LimitStore::Mode::Read);
      Text text;
      try {
        while (true) {
          const std::size_t chunk = nextChunk++;
          const std::span<const std::byte> bytes = store.ReadChunk(array, chunk);
          if (bytes.empty()) return;
          const std::size_t rows = bytes.size() / rowBytes;
          Print(array, bytes, chunk * (limitChunkBytes / rowBytes), rows, text);
          turns.Wait(chunk);
          WriteText({text.Data(), text.Size()});
          turns.Pass();
          rowsWritten += static_cast<std::int64_t>(rows);
        }
      } catch (...) {
        turns.Abandon();
        throw;
      }
    });
    return rowsWritten;
  }

  void Print(LimitArray array, std::span<const std::byte> bytes, std::size_t firstRow,
             std::size_t rows, Text& text) const {
    text.Start(rows);
    if (array == LimitArray::Coordinates)
      PrintNodes(bytes.data(), firstRow, rows, text);
    else
      PrintElements(bytes.data(), firstRow, rows, text);
  }

  void PrintNodes(const std::byte* bytes, std::size_t firstRow, std::size_t rows,
                  Text& text) const {
    for (std::size_t row = 0; row < rows; ++row) {
      double place[3];
      std::memcpy(place, bytes + row * sizeof place, sizeof place);
      text.Integer(m_nodeLabels[firstRow + row]);
      for (double value : place) {
        text.Comma();
        text.Real(value);
      }
      text.EndLine();
    }
  }

  void PrintElements(const std::byte* bytes, std::size_t firstRow, std::size_t rows,
                     Text& text) const {
    for (std::size_t row = 0; row < rows; ++row) {
      std::int32_t nodes[limitNodesPerBrick];
      std::memcpy(nodes, bytes + row * sizeof nodes, sizeof nodes);
      text.Integer(m_elementLabels[firstRow + row]);
      for (std::int32_t node : nodes) {
        text.Comma();
        text.Integer(m_nodeLabels[static_cast<std::size_t>(node)]);
      }
      text.EndLine();
    }
  }

  std::filesystem::path m_model;
  utl_OutputFile m_file;
  int m_threads;
  std::vector<std::int32_t> m_nodeLabels;
  std::vector<std::int32_t> m_elementLabels;
};

} // namespace

LimitCounts limitWrite(const std::filesystem::path& model, const std::filesystem::path& deck,
                       int threads) {
  return Writer(model, deck, threads).Run();
}
