#include "inpS/properties/inpS_BulkShellSections.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/KvoSrvBulkShellLayers.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/properties/inpS_SectionData.h"
#include "inpS/properties/inpS_SectionInventory.h"

namespace {

using Kind = eds_RecordKind;

// What a layer has where its line gives no number of points, or none above 0: three for Simpson's
// rule, two for Gauss'; a shell of one layer five and three.
long long pointsOf(const KvoSimDataRecord& record, int field, bool isGauss, bool isComposite) {
  const long long given = record.IsMemberNull(field) ? 0 : record.GetInt64(field);
  if (given > 0) return given;
  return isComposite ? (isGauss ? 2 : 3) : (isGauss ? 3 : 5);
}

class Writer {
public:
  explicit Writer(const KvoObjDocument& document) : m_document(document) {}

  void Write(const KvoSimPosition& section, const KvoSimPosition& owner) {
    const Kind kind = section.Object().RecordKind();
    const char* const thickness = ThicknessOf(kind);
    const bool composite = kind == eds_FormKind::ShellSectionComposite ||
                           kind == eds_FormKind::ShellGeneralSectionComposite;
    if (!composite && !thickness) return;
    const KvoSimDataRecord record = section.DataRecord();
    const auto field = [&](std::string_view column) { return eds_formField(kind, column); };
    auto made = KvoSrvShellSection::Create(
        m_document.Context(),
        inpS_SectionInventory::GetSectionName(owner, record.GetReference(field("elset")),
                                              record.GetReference(field("elset_instance"))),
        composite);
    const bool isIntegrated = kind == eds_FormKind::ShellSectionComposite ||
                              kind == eds_FormKind::ShellSectionHomogeneous;
    const bool isGauss =
        isIntegrated && record.ReturnString(field("section_integration")) == "GAUSS";
    made.SetIntegration(isGauss ? KvoSectionIntegration::Gauss : KvoSectionIntegration::Simpson);
    if (composite) made.SetSymmetric(record.GetBool(field("symmetric")));
    std::vector<KvoShellPly> plies;
    if (composite)
      for (const KvoSimPosition& line : section.GetVector(eds_Member::Lines))
        plies.push_back(PlyOf(line.DataRecord(), isGauss));
    else
      plies.push_back({{},
                       record.GetDouble(field(thickness)),
                       isIntegrated ? static_cast<int>(pointsOf(record, field("points"), isGauss,
                                                                false))
                                    : 1, // a membrane, or integrated beforehand
                       record.GetReference(field("material")),
                       record.GetReference(field("orientation")),
                       0});
    KvoSrvBulkShellLayers::Create(made, plies);
  }

private:
  // The column of a section of one layer; null: it is none.
  static const char* ThicknessOf(Kind kind) {
    if (kind == eds_FormKind::MembraneSection) return "membrane";
    const bool isShell = kind == eds_FormKind::ShellSectionHomogeneous ||
                         kind == eds_FormKind::ShellGeneralSectionMaterial;
    return isShell ? "thickness" : nullptr;
  }

  static KvoShellPly PlyOf(const KvoSimDataRecord& line, bool isGauss) {
    const auto field = [](std::string_view column) {
      return eds_formField(eds_FormKind::SectionPly, column);
    };
    return {line.ReturnString(field("name")),
            line.GetDouble(field("thickness")),
            static_cast<int>(pointsOf(line, field("points"), isGauss, true)),
            line.GetReference(field("material")),
            line.GetReference(field("angle_orientation")),
            line.GetDouble(field("angle"))};
  }

  const KvoObjDocument& m_document;
};

} // namespace

void inpS_writeBulkShellSections(const KvoObjDocument& document) {
  KvoSimTransaction transaction(document.ContextID());
  for (const Kind kind : {Kind::BulkShellLayers, Kind::ShellSection})
    for (KvoSimPosition& old : document.Context().GetRecords(kind)) old.Remove();
  Writer writer(document);
  for (const KvoSimPosition& owner : inpS_SectionData::SectionOwners(document))
    for (const KvoSimPosition& section : owner.GetVector(eds_Member::Sections))
      writer.Write(section, owner);
  transaction.Commit();
}
