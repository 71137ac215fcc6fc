#include "host/inps_Outcome.h"

#include "base/utl_Number.h"
#include "database/KvoObjDocument.h"
#include "host/inps_Reporter.h"

namespace {

int64_t countIn(const cow_String& text) {
  const utl_Field field = utl_classifyField(text);
  return field.kind == utl_FieldKind::Integer && field.integer > 0 ? field.integer : 0;
}

} // namespace

bool inps_Outcome::IsMeshLeftOut() const {
  return ("; " + leftOut + ";").find("; mesh;") != cow_String::npos;
}

bool inps_Outcome::IsRestartMeshLeftOut() const {
  return ("; " + leftOut + ";").find("; mesh of a restart;") != cow_String::npos;
}

cow_String inps_Outcome::Text() const {
  cow_String text = inps_counted(errors, "error") + ", " + inps_counted(warnings, "warning");
  if (!leftOut.empty()) text += "; left out: " + leftOut;
  return text;
}

inps_Outcome inps_outcomeOf(const KvoObjDocument& document) {
  const cow_String errors = document.GetMeta("errors");
  return {!errors.empty(), countIn(errors), countIn(document.GetMeta("warnings")),
          document.GetMeta("left_out")};
}
