#pragma once

#include "base/cow_Value.h"
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;
class eds_Engine;

// A name of the schema as the engine takes it, whatever words it reserves.
inline cow_String eds_sqlName(std::string_view name) {
  return '"' + cow_String(name) + '"';
}

// One prepared statement, prepared at its first use and again after the file was reopened. Bound
// text and bytes are not copied: they stay valid until Run or Reset.
class eds_Statement {
public:
  eds_Statement(eds_Engine& engine, cow_String sql) : m_engine(&engine), m_sql(std::move(sql)) {}
  ~eds_Statement() { Finalize(); }
  eds_Statement(const eds_Statement&) = delete;
  eds_Statement& operator=(const eds_Statement&) = delete;

  // Parameters count from 1.
  void Bind(int parameter, int64_t value);
  void Bind(int parameter, double value);
  void BindText(int parameter, std::string_view value);
  void BindBytes(int parameter, std::span<const std::byte> value);
  void BindNull(int parameter);

  bool Step(); // true: a row is there
  void Run();  // to its end, and ready for the next
  void Reset();
  void Finalize();

  // The row's columns count from 0.
  enum class Type { Int, Real, Text, Bytes, Null };
  Type ColumnType(int column) const;
  int64_t Int(int column) const;
  double Real(int column) const;
  std::string_view Text(int column) const;
  std::span<const std::byte> Bytes(int column) const;

private:
  void Prepare();
  void Begin(); // a run of the statement
  void Check(int code) const;
  void SetNull(int parameter, bool isNull);

  eds_Engine* m_engine;
  cow_String m_sql;
  sqlite3_stmt* m_statement = nullptr;
  bool m_runs = false;
  std::vector<bool> m_isNull; // of its parameters, which keep their values from run to run
};

enum class eds_OpenMode { New, ReadOnly, Durable, Memory };

// One open file of the engine, and the one place where its error codes become exceptions.
//
// Logical commits (one per keyword) are gathered into one physical commit every few milliseconds. A
// physical transaction is opened by the first write and holds whole logical ones only.
class eds_Engine {
public:
  eds_Engine() = default;
  ~eds_Engine();
  eds_Engine(const eds_Engine&) = delete;
  eds_Engine& operator=(const eds_Engine&) = delete;

  void Open(const std::filesystem::path& file, eds_OpenMode mode);
  // For writing, put back to its last whole transaction and without a journal.
  void OpenRecovered(const std::filesystem::path& file);
  void Close();
  // Before anything is in a new file: its pages shall end with a checksum.
  void ReserveChecksums();
  // Journals and syncs as the mode asks; the file has been found to be ours.
  void ApplyMode();
  bool IsOpen() const { return m_database != nullptr; }
  const std::filesystem::path& File() const { return m_file; }
  // How long, from the next opening on, to wait for others who read or write the file.
  void SetPatience(std::chrono::milliseconds time) { m_patience = time; }
  void SetShownFile(const std::filesystem::path& file) { m_shown = file; } // in messages
  eds_OpenMode Mode() const { return m_mode; }

  bool HasMoved() const; // the open file has its name no more

  void Execute(const char* sql);
  int64_t QueryInt(const char* sql);
  eds_Statement& Prepare(cow_String sql); // owned by the engine

  void RequireWorking() const; // throws when a write has failed
  void BeginWrite();           // opens the physical transaction if none is open
  // A place inside the physical transaction to come back to: whole logical ones stand before it.
  void SetMark();
  void BackToMark();
  bool GatherCommit(); // ends the mark; true: it is time for a physical one
  static bool Gathers() { return s_gatherTime.count() > 0; }
  void CommitPhysical();
  void RollbackPhysical();
  // How long logical commits are gathered, for all engines; 0: each one becomes physical.
  static void SetGatherTime(std::chrono::milliseconds time) { s_gatherTime = time; }
  bool InPhysical() const { return m_inPhysical; }
  // A write failed: what is in memory and on disk may differ, so nothing more is written.
  bool HasFailed() const { return m_failed; }
  void MarkFailed() { m_failed = true; }

  [[noreturn]] void Fail(int code);

private:
  friend class eds_Statement;
  using Clock = std::chrono::steady_clock;

  static std::chrono::milliseconds s_gatherTime;

  static int Watch(void* engine) noexcept;
  void LimitWork();

  sqlite3* m_database = nullptr;
  std::filesystem::path m_file;
  std::filesystem::path m_shown;
  eds_OpenMode m_mode = eds_OpenMode::Memory;
  std::chrono::milliseconds m_patience{0};
  std::deque<eds_Statement> m_statements;
  Clock::time_point m_physicalSince;
  int64_t m_mostWork = 0; // of one statement, in looks of Watch; 0: no limit
  int64_t m_work = 0;
  bool m_inPhysical = false;
  bool m_holdsCommits = false; // logical ones, not yet physical
  bool m_hasMark = false;
  eds_Statement* m_mark = nullptr;
  eds_Statement* m_release = nullptr;
  bool m_failed = false;
};
