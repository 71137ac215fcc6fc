#include "inpS/sets/inpS_ScopedField.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <cstdlib>

long long inpS_ScopedField::Label() const {
  return std::atoll(name.c_str());
}

inpS_ScopedField inpS_scopedField(std::string_view asWritten) {
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  const bool isLabel = inp_Utils::IsScopedSetId(parts);
  if (!isLabel && !inp_Utils::IsScopedSetName(parts))
    return {{}, inp_Utils::Fold(asWritten), false, {}};
  inpS_ScopedField field{
      parts[parts.size() - 2], parts.back(), isLabel && !asWritten.ends_with('"'), {}};
  for (std::size_t n = 0; n + 2 < parts.size(); ++n) field.dropped += (n > 0 ? "." : "") + parts[n];
  return field;
}

void inpS_reportDropped(const inp_Keyword& keyword, long long row, int col,
                        const inpS_ScopedField& field, inp_Visitor& messages) {
  const inp_Scope& scope = keyword.Scope();
  const bool isAssembly = scope.kind == inp_Scope::Kind::Assembly && field.dropped == scope.name;
  if (field.dropped.empty() || isAssembly) return;
  const cow_String text = "Only the name in front of the last dot says where to look (" +
                          field.instance + "); \"" + field.dropped + "\" is not used.";
  messages.AddWarning(row < 0 ? inp_Utils::MessageInKeyword(keyword, text)
                              : inp_Utils::MessageAtField(keyword, row, col, text));
}
