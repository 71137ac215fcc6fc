#pragma once

#include "base/cow_Value.h"
#include "database/KvoObjDocument.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include <filesystem>
#include <memory>

class inps_Input;
class inps_ReadFiles;
class inps_Reporter;
class inps_Run;

// One deck on its way into a model. Messages go to the reporter, which is that of this thread.
class inps_Conversion {
public:
  // Throws utl_FileException when the deck cannot be read at all.
  inps_Conversion(const inps_Input& deck, inps_Reporter& reporter);
  ~inps_Conversion();

  // Reads the deck up to where it can be converted; false: it cannot, and the messages say why.
  bool Prepare();
  void SetSalvage(bool salvage) { m_driver->SetSalvage(salvage); } // once it is prepared
  bool Convert(const KvoObjDocument& document);
  bool ConvertRestart(const KvoObjDocument& document); // into a model that exists

  // What the model will be, by the text that goes into it; once it is prepared.
  KvoSize ExpectedSize() const;

  // The deck, its includes and data files, and what kept keywords name, once it is prepared.
  void TellFiles(inps_ReadFiles& read) const;
  // The keyword with which the deck itself says that it goes on from another model, or null.
  const inp_Keyword* RestartKeyword() const;
  // What was kept as text; empty before a conversion.
  const cow_List<inpS_NotModelled>& NotModelled() const { return m_notModelled; }
  // Whether errors of the mesh left it out of the model as a whole.
  bool IsMeshLeftOut() const { return m_driver->IsMeshLeftOut(); }

private:
  template <class Work> bool Run(const KvoObjDocument& document, Work work);

  std::filesystem::path m_deck;
  cow_String m_name; // of standard input; else empty: the path
  inps_Reporter& m_reporter;
  long long m_errorsBefore;
  long long m_warningsBefore;
  std::unique_ptr<inpS_Inp2Sim> m_driver;
  cow_List<inpS_NotModelled> m_notModelled;
};

// A model, or a deck converted in memory; messages as above, and warnings of a model that does not
// hold all of its deck. Null when the deck has faults that keep it from being converted at all. The
// files that were read are added to `read` if it is given.
KvoObjDocument inps_openModelOrDeck(const inps_Input& input, inps_Run& run,
                                    inps_ReadFiles* read = nullptr);
