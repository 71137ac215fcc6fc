#include "database/engine/eds_Journal.h"

#include "base/utl_File.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_PageChecksums.h"
#include <cstring>
#include <fstream>
#include <optional>
#include <sqlite3.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr unsigned char magic[] = {0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};
constexpr std::size_t headerBytes = 28; // of a journal, at the begin of its first sector
constexpr std::size_t pagesAt = 28;     // in the file's header: how many there are
constexpr std::size_t counterAt = 24; // in the first page of a file: changes with its transactions
constexpr uint32_t mostSector = 65536;

bool read(std::ifstream& stream, std::vector<unsigned char>& bytes) {
  return static_cast<bool>(stream.read(reinterpret_cast<char*>(bytes.data()),
                                       static_cast<std::streamsize>(bytes.size())));
}

// Every 200th byte from the page's end on, as the engine adds them up.
uint32_t sumOf(const unsigned char* page, uint32_t size, uint32_t nonce) {
  uint32_t sum = nonce;
  for (int64_t at = int64_t{size} - 200; at > 0; at -= 200) sum += page[at];
  return sum;
}

// Whether our engine made a file of this name, as its first bytes tell. Without any it was about
// to; those of a journal are zeros while its content is on the way to the disk. Logs it never
// writes.
bool isEngines(const fs::path& journal, std::string_view ending) {
  if (ending != "-journal") return ending != "-wal";
  std::ifstream stream(journal, std::ios::binary);
  unsigned char begin[sizeof magic] = {};
  stream.read(reinterpret_cast<char*>(begin), sizeof begin);
  if (stream.gcount() == 0) return !stream.bad();
  if (stream.gcount() < static_cast<std::streamsize>(sizeof begin)) return false;
  constexpr unsigned char zeros[sizeof magic] = {};
  return std::memcmp(begin, magic, sizeof magic) == 0 ||
         std::memcmp(begin, zeros, sizeof zeros) == 0;
}

// What a journal says of the file that it belongs to.
struct Before {
  uint32_t pages = 0;      // that the file had before the transaction
  bool unsynced = false;   // made without waiting for the disk
  bool hasCounter = false; // the first page is in it
  uint32_t counter = 0;    // that the file had
};

// Nothing when the journal is idle: the engine leaves the file as it is.
std::optional<Before> readJournal(const fs::path& journal) {
  std::ifstream stream(journal, std::ios::binary);
  std::vector<unsigned char> header(headerBytes);
  if (!read(stream, header) || std::memcmp(header.data(), magic, sizeof magic) != 0) return {};
  const uint32_t records = eds_bigEndian(&header[8]);
  const uint32_t nonce = eds_bigEndian(&header[12]);
  const uint32_t sector = eds_bigEndian(&header[20]);
  const uint32_t pageSize = eds_bigEndian(&header[24]);
  if (sector > mostSector || pageSize < 512 || pageSize > 65536) return {};
  Before before;
  before.pages = eds_bigEndian(&header[16]);
  before.unsynced = records == 0xffffffff;
  stream.seekg(sector);
  std::vector<unsigned char> record(std::size_t{pageSize} + 8); // number, page, sum
  for (uint32_t n = 0; n < records && !before.hasCounter && read(stream, record); ++n) {
    const unsigned char* page = &record[4];
    if (eds_bigEndian(page + pageSize) != sumOf(page, pageSize, nonce)) break;
    before.hasCounter = eds_bigEndian(&record[0]) == 1;
    before.counter = eds_bigEndian(page + counterAt);
  }
  return before;
}

// A transaction moves the file's counter on by one, or not at all when it is not the first one of
// its process, and never takes pages away.
bool canBelong(const Before& before, uint32_t counter, uint32_t pages) {
  if (pages < before.pages) return false;
  return !before.hasCounter || counter == before.counter || counter == before.counter + 1;
}

// Read as it stands, the journal left alone; false too for what cannot be read so.
bool isFinished(const fs::path& file) {
  cow_String name = "file:";
  for (const char c : utl_pathText(fs::absolute(file).generic_string())) {
    if (c == '%' || c == '?' || c == '#') {
      constexpr char digits[] = "0123456789ABCDEF";
      name += {'%', digits[c >> 4], digits[c & 15]};
    } else {
      name += c;
    }
  }
  name += "?immutable=1";
  sqlite3* database = nullptr;
  sqlite3_stmt* rows = nullptr;
  constexpr const char* sql = "SELECT 1 FROM meta WHERE key = 'finished' AND value = '1'";
  const bool finished =
      sqlite3_open_v2(name.c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                      eds_checksummedFiles()) == SQLITE_OK &&
      sqlite3_prepare_v2(database, sql, -1, &rows, nullptr) == SQLITE_OK &&
      sqlite3_step(rows) == SQLITE_ROW;
  sqlite3_finalize(rows);
  sqlite3_close(database);
  return finished;
}

} // namespace

fs::path eds_journalOf(const fs::path& file) {
  fs::path journal = file;
  journal += "-journal";
  return journal;
}

void eds_removeJournal(const fs::path& file) {
  const fs::path journal = eds_journalOf(file);
  if (utl_isTaken(journal) && !utl_removeFile(journal))
    throw eds_FileAccessException("cannot remove \"" + utl_pathText(journal) +
                                  "\": " + utl_fileFailure());
}

void eds_requireOwnJournals(const fs::path& file) {
  for (const char* ending : {"-journal", "-wal", "-shm"}) {
    fs::path journal = file;
    journal += ending;
    std::error_code ignored;
    const auto refuse = [&](const char* why) {
      throw eds_FileAccessException("cannot open \"" + utl_pathText(file) + "\": \"" +
                                    utl_pathText(journal.filename()) + "\" beside it " + why);
    };
    if (!utl_isTaken(journal)) continue;
    if (!fs::is_regular_file(journal, ignored)) refuse("is no regular file");
    if (!isEngines(journal, ending))
      refuse(
          "has the name of its journal and is none; it would be removed, so give it another name");
  }
  const fs::path journal = eds_journalOf(file);
  if (!utl_exists(journal)) return;
  const std::optional<Before> before = readJournal(journal);
  std::vector<unsigned char> head(pagesAt + 4);
  std::ifstream stream(file, std::ios::binary);
  if (!before || !read(stream, head)) return; // an empty file has nothing to lose
  // Only who makes a model does not wait for the disk, and its last transaction does.
  if (!canBelong(*before, eds_bigEndian(&head[counterAt]), eds_bigEndian(&head[pagesAt])) ||
      (before->unsynced && isFinished(file)))
    throw eds_FileAccessException("cannot open \"" + utl_pathText(file) + "\": \"" +
                                  utl_pathText(journal.filename()) +
                                  "\" beside it belongs to another model; remove it if this one "
                                  "was put there later");
}
