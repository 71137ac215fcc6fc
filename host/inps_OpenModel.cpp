#include "host/inps_OpenModel.h"

#include "base/utl_File.h"
#include "database/eds_CheckRecords.h"
#include "host/inps_Session.h"
#include <ostream>

KvoObjDocument inps_openModel(const std::filesystem::path& file) {
  KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  eds_checkRecords(document);
  return document;
}

KvoObjDocument inps_openModel(const std::filesystem::path& file, inps_Session& session) {
  KvoObjDocument document = inps_openModel(file);
  if (!document.IsFinished())
    session.err << "inps: warning: the conversion that made " << utl_pathText(file)
                << " did not finish; it may hold a part of its deck only\n";
  return document;
}
