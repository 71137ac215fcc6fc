#include "database/eds_ModelPlace.h"

#include "database/eds_Exception.h"
#include "database/engine/eds_Engine.h"
#include "database/engine/eds_Journal.h"

namespace fs = std::filesystem;

namespace {

// Two that replace one model at once take turns; who holds it for long is not waited for.
constexpr std::chrono::seconds patience{2};

} // namespace

eds_ModelPlace::eds_ModelPlace(const fs::path& file) : m_file(file) {
  eds_requireOwnJournals(file);
  if (!utl_isTaken(file)) {
    eds_removeJournal(file); // of a model that is gone
    return;
  }
  m_held = std::make_unique<eds_Engine>();
  try {
    m_held->SetPatience(patience);
    m_held->OpenRecovered(file);
    Hold();
  } catch (const eds_InUseException&) {
    throw;
  } catch (const eds_MemoryException&) {
    throw;
  } catch (const eds_Exception&) {
    m_held.reset(); // no model, a damaged one, or one that nobody may write
  }
}

eds_ModelPlace::~eds_ModelPlace() = default;

void eds_ModelPlace::Hold() {
  m_held->Execute("BEGIN IMMEDIATE");
}

void eds_ModelPlace::RequireSame() const {
  if (m_held->HasMoved())
    throw eds_InUseException("\"" + utl_pathText(m_file) +
                             "\" was replaced by another process meanwhile");
}

void eds_ModelPlace::HoldAgain() {
  if (m_held == nullptr) return;
  m_held->Execute("ROLLBACK");
  Hold();
  RequireSame();
}

void eds_ModelPlace::GiveTo(const fs::path& model, utl_IfExists ifExists) {
  if (m_held != nullptr) RequireSame();
#ifdef _WIN32
  m_held.reset(); // an open file keeps its name there
#endif
  if (m_held == nullptr) eds_requireOwnJournals(m_file); // may have come meanwhile
  eds_removeJournal(m_file);                             // of what was no model
  utl_renameFile(model, m_file, ifExists);
  m_held.reset();
}
