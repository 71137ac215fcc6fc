#include "host/inps_ModelCopy.h"

#include "base/utl_File.h"
#include "base/utl_MappedFile.h"
#include "base/utl_OutputFile.h"
#include "database/KvoObjDocument.h"
#include "database/eds_Exception.h"
#include "host/inps_Input.h"
#include "host/inps_OpenModel.h"
#include "host/inps_Session.h"

namespace {

struct Closing {
  KvoObjDocument& document;
  ~Closing() {
    try {
      document.Close();
    } catch (const std::exception&) { // told already, by what brought us here
    }
  }
};

} // namespace

inps_ModelCopy::inps_ModelCopy(const inps_Input& base, const Path& target, inps_Session& session,
                               const cow_String& targetName)
    : m_base(base), m_target(target), m_path(utl_temporaryBeside(target)), m_journal(m_path) {
  m_journal += "-journal";
  // Ours from now on: two changes of one base would each lose what the other adds.
  if (utl_isTaken(target)) m_place = std::make_unique<eds_ModelPlace>(target);
  // Held open while it is copied, so that nobody writes it meanwhile.
  const KvoObjDocument held = inps_openModel(base);
  if (!held.IsFinished())
    throw eds_DamagedFileException("\"" + utl_pathText(base.File()) +
                                   "\" is not finished: the conversion that made it did not end");
  try {
    Copy();
    if (m_place) m_place->HoldAgain(); // the base may be what is replaced
    // The store knows the copy's name, people know the target's.
    session.ShowAs(m_path, targetName);
  } catch (const utl_FileException& failure) {
    utl_removeFile(m_path);
    if (failure.Path() != m_path) throw;
    throw utl_FileException("cannot write", target, failure.Reason());
  } catch (...) {
    utl_removeFile(m_path);
    throw;
  }
}

inps_ModelCopy::~inps_ModelCopy() { // gone already once it has taken the target's name
  utl_removeFile(m_path);
  utl_removeFile(m_journal);
}

// By ourselves: the library's own copying tells a full disk as a fault of reading.
void inps_ModelCopy::Copy() const {
  const Path& base = m_base.File();
  const utl_MappedFile from(base);
  utl_OutputFile to(m_path, utl_OutputFile::Mode::CreateNew);
  try {
    to.Write(from.Text().data(), from.Text().size());
  } catch (const utl_FileException&) {
    // The system itself reads the pages here, and blames the writing for what it finds.
    std::error_code ignored;
    if (std::filesystem::file_size(base, ignored) >= from.Size()) throw;
    throw utl_FileException("cannot read", base, "it was cut short while it was read");
  }
  to.Close();
}

void inps_ModelCopy::Change(const std::function<void(KvoObjDocument&)>& work) {
  try {
    KvoObjDocument document = KvoObjDocument::Open(m_path, KvoAccess::ReadWrite);
    const Closing closing{document}; // others hold it too, and an open copy may not be removed
    work(document);
    document.Close();
  } catch (const eds_DamagedFileException& damage) { // of what was copied
    cow_String text = damage.what();
    const cow_String name = utl_pathText(m_path);
    if (const size_t at = text.find(name); at != cow_String::npos)
      text.replace(at, name.size(), m_base.Name());
    throw eds_DamagedFileException(text);
  }
}

void inps_ModelCopy::BecomeTarget(bool force) {
  if (!m_place) m_place = std::make_unique<eds_ModelPlace>(m_target);
  m_place->GiveTo(m_path, force ? utl_IfExists::Replace : utl_IfExists::Refuse);
  utl_syncFolderOf(m_target);
}
