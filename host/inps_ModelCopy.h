#pragma once

#include "base/utl_FileUnderWay.h"
#include "database/eds_ModelPlace.h"
#include <filesystem>
#include <functional>
#include <memory>

class inps_Input;
class KvoObjDocument;
struct inps_Session;

// What changes a finished model changes a copy of it beside the target, which takes the target's
// name at the end. The base is never changed itself; it may be what is replaced.
class inps_ModelCopy {
public:
  // Failures call the copy by the name that people know the target by. Throws utl_FileException,
  // and what opening the base throws.
  inps_ModelCopy(const inps_Input& base, const std::filesystem::path& target, inps_Session& session,
                 const cow_String& targetName);
  ~inps_ModelCopy();
  inps_ModelCopy(const inps_ModelCopy&) = delete;
  inps_ModelCopy& operator=(const inps_ModelCopy&) = delete;

  // The copy is open while the work runs, and closed behind it. Damage that shows meanwhile is told
  // of the base.
  void Change(const std::function<void(KvoObjDocument& copy)>& work);
  void BecomeTarget(bool force);

private:
  using Path = std::filesystem::path;
  void Copy() const;

  const inps_Input& m_base;
  Path m_target;
  Path m_path;
  Path m_journal; // left by a store that failed
  std::unique_ptr<eds_ModelPlace> m_place;
  utl_FileUnderWay m_underWay{m_path};
  utl_FileUnderWay m_journalUnderWay{m_journal};
};
