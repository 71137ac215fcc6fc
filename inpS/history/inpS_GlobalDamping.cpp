#include "inpS/history/inpS_GlobalDamping.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDataRecord.h"

void inpS_SetGlobalDamping(const KvoSimPosition& step, const KvoSimPosition& procedure,
                           std::span<const double, 6> damping, cow_List<cow_String>& messages) {
  static constexpr const char* names[] = {"RAYLEIGH ALPHA", "RAYLEIGH BETA", "STRUCTURAL"};
  for (std::size_t n = 0; n < 3; ++n)
    if (damping[2 * n] < 0 || damping[2 * n + 1] < 0)
      messages.push_back(cow_String("YOU HAVE ENTERED A NEGATIVE GLOBAL ") + names[n] +
                         " DAMPING. TRELVO ALLOWS NON-PHYSICAL DATA; HOWEVER, MOST APPLICATIONS "
                         "EXPECT A POSITIVE GLOBAL " +
                         names[n] + " DAMPING.");
  const KvoSimPosition& task = procedure;
  if (task.IsNull()) utl_assertionFailed("!task.IsNull()");
  KvoSimPosition held = task.Follow(eds_Member::Damping);
  if (held.IsNull()) {
    held = task.CreateDataRecord(eds_RecordKind::ProcedureDamping);
    held.DataRecord().SetReference(eds_ProcedureDamping_Owner, task);
    held.DataRecord().SetReference(eds_ProcedureDamping_Step, step);
    task.SetPosition(eds_Member::Damping, held);
  } else {
    messages.push_back("YOU HAVE ENTERED MULTIPLE *GLOBAL DAMPING OPTIONS; IN SUCH CASES, DAMPING "
                       "VALUES ARE ADDITIVE.");
  }
  KvoSimDataRecord record = held.DataRecord();
  for (int n = 0; n < 6; ++n) {
    const int field = eds_ProcedureDamping_Alpha + n;
    record.SetDouble(field, record.GetDouble(field) + damping[static_cast<std::size_t>(n)]);
  }
}
