#include "inpS/mesh/inpS_NcopyReader.h"
#include "base/utl_Assert.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cstdlib>

void inpS_NcopyReader::Read(const inp_Keyword& keyword, const inpS_NodeSink& sink) {
  Open(keyword, sink, nullptr);
  if (!ReadMap() || !LabelsFit()) return;
  if (m_options.changeNumber == 0)
    Messages().AddWarning(inp_Utils::MessageAtParameter(
        keyword, "changenumber", "With a change of 0 the nodes themselves move; none are copied."));
  const long long count = m_oldSet.ordinals.Size();
  cow_List<inpS_NodeValues> old;
  if (MayFallOnOld()) Gather(m_oldSet, old);
  for (long long n = 0; n < count; ++n) {
    const long long ordinal = m_oldSet.ordinals[n];
    inpS_NodeValues node = old.empty() ? ValuesOf(ordinal) : old[static_cast<std::size_t>(n)];
    m_map.Apply(node.value);
    if (node.hasNormal) m_map.ApplyToVector(node.value + 3);
    Emit(Known().LabelOf(ordinal) + m_options.changeNumber, node);
  }
  Close();
}

// A copy that overwrites one of the old nodes must not change what is still to be copied.
bool inpS_NcopyReader::MayFallOnOld() {
  int least = 0, most = 0;
  for (long long n = 0; n < m_oldSet.ordinals.Size(); ++n) {
    const int label = Known().LabelOf(m_oldSet.ordinals[n]);
    least = n == 0 ? label : std::min(least, label);
    most = n == 0 ? label : std::max(most, label);
  }
  return std::llabs(m_options.changeNumber) <= most - least;
}

bool inpS_NcopyReader::ReadMap() {
  if (m_options.shift) return ReadShift();
  if (m_options.pole) return ReadPole();
  return ReadReflection();
}

bool inpS_NcopyReader::LabelsFit() {
  for (long long n = 0; n < m_oldSet.ordinals.Size(); ++n) {
    const long long made = Known().LabelOf(m_oldSet.ordinals[n]) + m_options.changeNumber;
    if (IsLabel(made)) continue;
    Messages().AddError(
        inp_Utils::MessageInKeyword(Keyword(), InvalidLabel(made) + "; no nodes are copied."));
    return false;
  }
  return true;
}

bool inpS_NcopyReader::HasLine(long long row) {
  if (row < Keyword().Data().Rows() && !IsBlank(row)) return true;
  Messages().AddError(
      inp_Utils::MessageInKeyword(Keyword(), inpS_messageText(inpS_mesh_IncompleteData)));
  return false;
}

bool inpS_NcopyReader::ReadShift() {
  const long long rows = Keyword().Data().Rows();
  if (rows == 0) return HasLine(0);
  if (!ReadPoint(0, 0, m_map.shift)) return false;
  TellUnused(0, 3);
  TellUnused(1, 7);
  TellUnusedRows(2);
  if (rows < 2 || IsBlank(1)) return true;
  double a[3], b[3], angle = 0;
  if (!ReadPoint(1, 0, a) || !ReadPoint(1, 3, b) || !ReadReal(1, 6, 0.0, angle)) return false;
  inpS_AffineMap rotation;
  if (angle == 0) return true;
  angle *= static_cast<double>(m_options.multiple);
  if (!rotation.SetRotation(a, b, angle)) return Fails(1, "The two points of the axis coincide.");
  rotation.Follow(m_map);
  m_map = rotation;
  return true;
}

bool inpS_NcopyReader::ReadPole() {
  if (!HasLine(0)) return false;
  double pole[3];
  long long label = 0, ordinal = 0;
  if (!ReadInteger(0, 0, 0, label)) return false;
  if (label != 0) {
    if (!ReadNode(0, 0, ordinal)) return false;
    std::copy_n(Known().Point(ordinal), 3, pole);
  } else if (!ReadPoint(0, 1, pole)) {
    return false;
  }
  TellUnused(0, 4);
  TellUnusedRows(1);
  for (int i = 0; i < 3; ++i) m_map.matrix[i][i] = 2.0;
  m_map.Fix(pole);
  return true;
}

bool inpS_NcopyReader::ReadReflection() {
  const cow_String& reflect = m_options.reflect;
  if (reflect != "LINE" && reflect != "MIRROR" && reflect != "POINT")
    utl_assertionFailed("\"Unknown NCOPY option\" == 0");
  if (!HasLine(0)) return false;
  TellUnused(0, reflect == "POINT" ? 3 : 6);
  if (reflect == "MIRROR") TellUnused(1, 3);
  TellUnusedRows(reflect == "MIRROR" ? 2 : 1);
  TellMissing(0, reflect == "POINT" ? 3 : 6);
  if (reflect == "MIRROR" && Keyword().Data().Rows() > 1) TellMissing(1, 3);
  if (reflect == "LINE") return ReadLine();
  if (reflect == "MIRROR") return ReadMirror();
  double point[3];
  if (!ReadPoint(0, 0, point)) return false;
  for (int i = 0; i < 3; ++i) m_map.matrix[i][i] = -1.0;
  m_map.Fix(point);
  return true;
}

bool inpS_NcopyReader::ReadLine() {
  double a[3], along[3];
  if (!ReadPoint(0, 0, a) || !ReadPoint(0, 3, along)) return false;
  for (int i = 0; i < 3; ++i) along[i] -= a[i];
  // 2 d (d . x) / (d . d) - x: exact about lines like y = x, where a direction of unit length has
  // its digits cut off. That is for lengths whose squares leave the range.
  double square = along[0] * along[0] + along[1] * along[1] + along[2] * along[2];
  if (!(square > 1e-200 && square < 1e200)) {
    if (!ToUnitLength(along)) return Fails(0, "The two points of the line coincide.");
    square = 1;
  }
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      m_map.matrix[i][j] = 2 * along[i] * along[j] / square - (i == j ? 1 : 0);
  m_map.Fix(a);
  return true;
}

bool inpS_NcopyReader::ReadMirror() {
  double a[3], b[3], c[3];
  if (!HasLine(1) || !ReadPoint(0, 0, a) || !ReadPoint(0, 3, b) || !ReadPoint(1, 0, c))
    return false;
  double axes[3][3];
  if (!inpS_AffineMap::AxesOf(a, b, c, axes))
    return Fails(0, "The three points of the plane lie on a line.");
  const double* normal = axes[2];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m_map.matrix[i][j] = (i == j ? 1 : 0) - 2 * normal[i] * normal[j];
  m_map.Fix(a);
  return true;
}
