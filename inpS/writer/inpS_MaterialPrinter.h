#pragma once

#include "database/KvoSrvFsmFTable.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordEnm.h"
#include <functional>

class KvoObjModel;
class utl_Stream;
struct inpS_Form;

// Materials, gasket behaviours and physical constants as keywords: each property by the row that it
// was read by.
class inpS_MaterialPrinter {
public:
  // Prints the keywords kept as text that belong to an object and stand behind another one (the
  // owner itself: before all that it holds); behind null: those that are left.
  using Texts = std::function<void(const KvoSimPosition& owner, const KvoSimPosition& behind)>;
  inpS_MaterialPrinter(utl_Stream& out, const inpS_KeptParts& parts, Texts texts)
      : m_out(out), m_parts(parts), m_texts(std::move(texts)) {}

  void PrintMaterials(const KvoObjModel& model);
  void PrintGasketBehaviors(const KvoObjModel& model);
  void PrintPhysicalConstants(const KvoObjModel& model);

private:
  void PrintNamed(const KvoSimPosition& owner, inp_KeywordEnm keyword);
  void PrintProperty(const KvoSimPosition& property);
  void PrintKeyword(const KvoSimPosition& property, const inpS_Form& behavior);
  void PrintTable(const KvoSimPosition& property);
  void PrintIsotropicHardening(const KvoSimPosition& property, const inpS_Form& behavior);
  void PrintRows(const KvoSrvFsmFTable& table, const cow_List<double>& run);
  void PrintSuboptions(const KvoSimPosition& property);

  utl_Stream& m_out;
  const inpS_KeptParts& m_parts;
  Texts m_texts;
  cow_List<KvoSimPosition> m_potentials; // of the material at hand
};
