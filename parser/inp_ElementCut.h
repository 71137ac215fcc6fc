#pragma once

#include "parser/inp_BulkDecode.h"
#include "parser/inp_DataPieces.h"

// Fields of an element behind its label, at most.
inline long long inp_mostFields(const inp_ElementForm& form) {
  return static_cast<long long>(form.maxNodes) + form.extraFields;
}

// Where the lines of elements may be cut: never within an element.
class inp_ElementCut final : public inp_CutRule {
public:
  explicit inp_ElementCut(const inp_ElementForm& form) : m_mostFields(inp_mostFields(form)) {}

  const char* Cut(const inp_TextRange& range, const char* from, const char* wanted) const override;
  bool IsOpenBehind(const inp_TextRange& range, bool openBefore) const override;

private:
  const char* WalkTo(const inp_TextRange& range, const char* from, const char* wanted) const;

  long long m_mostFields;
};
