#include "host/inps_OpenModel.h"

#include "database/eds_CheckRecords.h"

KvoObjDocument inps_openModel(const std::filesystem::path& file) {
  KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  eds_checkRecords(document);
  return document;
}
