#pragma once

// The bare limit: the least work that turns a mesh deck into the arrays of a model file, and back.
// It knows only the decks of mesh_generator, keeps no model and explains no fault: what it costs is
// what nobody can save. The program `inps` is measured against it.

#include "parser/inp_StretchFinder.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <span>
#include <stdexcept>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

enum class LimitArray { NodeLabels = 1, Coordinates, ElementLabels, Connectivity };

struct LimitCounts {
  std::int64_t nodes = 0;
  std::int64_t elements = 0;
};

constexpr int limitNodesPerBrick = 8;
constexpr std::size_t limitChunkBytes = (std::size_t{1} << 20) / 96 * 96; // whole rows of any array

// ---- limit_fields: text to numbers -------------------------------------------------------------

// The rows of one block of data lines: a label and, per row, three reals or eight integers.
struct LimitRows {
  std::vector<std::int32_t> labels;
  std::vector<double> reals;
  std::vector<std::int32_t> integers;
  inp_StretchFinder finder; // room to work in, as is
  std::vector<int> fields;
  std::size_t rows = 0;
  const char* stoppedAt = nullptr; // the keyword line that ended the block, or the block's end
};

enum class LimitSection { Nodes, Elements };

// Decodes the lines of [begin, end), which starts at a line and ends behind a line end. `textBegin`
// is the start of the whole mapped text: bytes from there on may be looked at. False when a line is
// not one of the section.
bool limitDecode(LimitSection section, const char* textBegin, const char* begin, const char* end,
                 LimitRows& rows);
void limitUseScalarDecoder(); // the portable loops even where the machine can do better
const char* limitDecoderName();

// ---- limit_store: chunks in an SQLite file -----------------------------------------------------

class LimitStore {
public:
  enum class Mode { Create, Read };
  LimitStore(const std::filesystem::path& path, Mode mode);
  ~LimitStore();
  LimitStore(const LimitStore&) = delete;
  LimitStore& operator=(const LimitStore&) = delete;

  void WriteChunk(LimitArray array, std::size_t position, std::span<const std::byte> bytes);
  void WriteCounts(const LimitCounts& counts);
  void Finish();

  LimitCounts ReadCounts();
  // The bytes of a chunk, valid until the next call; empty behind the last one.
  std::span<const std::byte> ReadChunk(LimitArray array, std::size_t position);

private:
  sqlite3* m_database = nullptr;
  sqlite3_stmt* m_chunk = nullptr;
};

// ---- the two directions ------------------------------------------------------------------------

LimitCounts limitConvert(const std::filesystem::path& deck, const std::filesystem::path& model,
                         int threads);
LimitCounts limitWrite(const std::filesystem::path& model, const std::filesystem::path& deck,
                       int threads);

// The last keyword's lines of "label or name, integer, real": their fields decoded, and printed
// again, in memory.
struct LimitColumns {
  std::int64_t rows = 0;
  double decodeSeconds = 0; // the best of several
  double printSeconds = 0;
};
LimitColumns limitColumns(const std::filesystem::path& deck, int threads);

// Runs work() on so many threads, the calling one among them; the first exception comes back.
void limitRunThreads(int threads, const std::function<void()>& work);

// Lets the owners of blocks 0, 1, 2, … pass one after the other.
class LimitTurns {
public:
  void Wait(std::size_t block);
  void Pass();
  void Abandon(); // something failed: nobody waits any longer

private:
  static constexpr std::size_t abandoned = static_cast<std::size_t>(-1);
  std::atomic<std::size_t> m_turn{0};
};
