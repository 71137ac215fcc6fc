#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "inpS/inpS_Export.h"
#include <memory>

class KvoObjDocument;
class utl_Stream;

// Writes a keyword deck from a simulation database: fixed order of blocks, model data before
// history.
class INPS_EXPORT inpS_Sim2Inp {
public:
  // threads: how many threads print bulk blocks, 0 all. verbose: name every block on the diagnostic
  // stream. name: written as the deck's first comment when not empty. comment: a second comment
  // line, may be null.
  inpS_Sim2Inp(const KvoObjDocument& document, int threads, bool verbose, const cow_String& name,
               const char* comment, aio_ostream& diagnostics);
  ~inpS_Sim2Inp();

  void Print(utl_Stream& out);

  struct Impl;

private:
  std::unique_ptr<Impl> m_impl;
};
