#include "inpS/sets/inpS_SurfaceLines.h"
#include "base/utl_Number.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "parser/inp_Utils.h"

namespace {

constexpr long long kMaxLabel = 999999999;
constexpr long long kMostMissingTold = 10; // one by one

bool isDigits(std::string_view text) {
  for (const char c : text)
    if (c < '0' || c > '9') return false;
  return !text.empty();
}

} // namespace

void inpS_SurfaceLines::ReadFaces() {
  m_kind = Kind::Elements;
  for (long long row = 0; row < m_data.Rows(); ++row) {
    std::string_view who, what;
    if (!SplitRow(row, who, what)) continue;
    eds_SurfaceFace face = eds_SurfaceFace::Whole;
    if (!inpS_readFace(what, face) && !inpS_readFace(inp_Utils::Fold(what), face)) {
      Fault(row, 1,
            "\"" + cow_String(what) +
                "\" is no face identifier (S1 to S6, SPOS, SNEG, E1 to E4, END1, END2, EDGE); "
                "the line is kept as it stands.");
      continue;
    }
    Take(row, 0, who, face, 1);
  }
  Finish();
}

void inpS_SurfaceLines::ReadNodes() {
  m_kind = Kind::Nodes;
  for (long long row = 0; row < m_data.Rows(); ++row) {
    std::string_view who, what;
    if (!SplitRow(row, who, what)) continue;
    double area = 1; // where the deck gives none, a node stands for a unit of area
    if (!what.empty()) {
      const utl_Field field = utl_classifyField(what);
      if (!field.IsNumber() || field.real < 0) {
        Fault(row, 1,
              "\"" + cow_String(what) + "\" is no area of a node; the line is kept as it stands.");
        continue;
      }
      area = field.real;
    }
    Take(row, 0, who, eds_SurfaceFace::Whole, area);
  }
  Finish();
}

void inpS_SurfaceLines::ReadElements(long long row) {
  m_kind = Kind::Elements;
  for (; row < m_data.Rows(); ++row)
    for (int col = 0, cols = m_data.Cols(row); col < cols; ++col)
      if (m_data.HasValue(row, col))
        Take(row, col, m_data.FieldText(row, col), eds_SurfaceFace::Whole, 1);
  Finish();
}

void inpS_SurfaceLines::ReadSurfaces(long long row, long long rows) {
  for (const long long end = std::min(row + rows, m_data.Rows()); row < end; ++row)
    for (int col = 0, cols = m_data.Cols(row); col < cols; ++col) {
      if (!m_data.HasValue(row, col)) continue;
      Piece& piece = m_pieces.emplace_back(); // looked up once all surfaces are known
      piece.row = row;
      piece.col = col;
    }
}

// False for a blank line and for one with a fault.
bool inpS_SurfaceLines::SplitRow(long long row, std::string_view& who, std::string_view& what) {
  const int cols = m_data.Cols(row);
  int filled = 0;
  for (int col = 0; col < cols; ++col)
    if (m_data.HasValue(row, col)) filled = col + 1;
  if (filled == 0) return false;
  who = m_data.FieldText(row, 0);
  what = cols > 1 ? m_data.FieldText(row, 1) : std::string_view();
  if (filled > 2) {
    m_isWhole = false;
    int col = 2;
    while (!m_data.HasValue(row, col)) ++col;
    m_visitor.AddWarning(inp_Utils::MessageAtField(
        m_keyword, row, col,
        cow_String(m_kind == Kind::Nodes
                       ? "A line of nodes takes a node or node set and an area"
                       : "A line of faces takes an element or element set and a face identifier") +
            "; what stands behind is kept, but not used."));
  }
  if (!who.empty()) return true;
  Fault(row, filled - 1,
        m_kind == Kind::Nodes
            ? "The node or node set is missing; the line is kept as it stands."
            : "The element or element set is missing; the line is kept as it stands.");
  return false;
}

void inpS_SurfaceLines::Take(long long row, int col, std::string_view who, eds_SurfaceFace face,
                             double area) {
  long long label = 0;
  inpS_SetVisitor::LabelSpace space;
  if (ReadLabel(row, col, who, label, space))
    TakeLabel(row, col, label, space, face, area);
  else
    TakeNamed(row, col, who, face, area);
}

const inpS_SetVisitor::LabelSpace& inpS_SurfaceLines::OwnSpace() {
  if (!m_hasOwnSpace) m_ownSpace = m_visitor.SpaceOf(m_kind);
  m_hasOwnSpace = true;
  return m_ownSpace;
}

// A label, alone or behind an instance's name and a dot.
bool inpS_SurfaceLines::ReadLabel(long long row, int col, std::string_view who, long long& label,
                                  inpS_SetVisitor::LabelSpace& space) {
  std::int64_t value = 0;
  const char* const end = who.data() + who.size();
  if (utl_readInt(who.data(), end, value) == end) {
    label = value;
    space = OwnSpace();
    return true;
  }
  if (const utl_Field number = utl_classifyField(who); number.IsWhole()) { // 3. or 3.0
    label = static_cast<long long>(number.real);
    space = OwnSpace();
    return true;
  }
  const std::size_t dot = who.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return false;
  const std::string_view digits = who.substr(dot + 1);
  if (!isDigits(digits) || digits.size() > 9) return false;
  if (who.substr(0, dot) != m_prefix) {
    const inpS_ScopedField field = inpS_scopedField(who);
    if (!field.isLabel) return false;
    inpS_reportDropped(m_keyword, row, col, field, m_visitor);
    m_prefix = who.substr(0, dot);
    m_prefixSpace = m_visitor.SpaceOf(m_kind, field.instance);
  }
  utl_readInt(digits.data(), digits.data() + digits.size(), value);
  label = value;
  space = m_prefixSpace;
  return true;
}

void inpS_SurfaceLines::TakeNamed(long long row, int col, std::string_view who,
                                  eds_SurfaceFace face, double area) {
  inpS_SetVisitor::Found found = m_visitor.FindField(m_kind, who);
  if (who.find('.') != who.npos)
    inpS_reportDropped(m_keyword, row, col, inpS_scopedField(who), m_visitor);
  if (found.set.IsNull()) {
    const cow_String name = inp_Utils::Fold(who);
    Fault(row, col,
          inpS_messageText(m_kind == Kind::Nodes ? inpS_mesh_NodeSetUnknown
                                                 : inpS_mesh_ElementSetUnknown,
                           {name}));
    return;
  }
  Piece& piece = m_pieces.emplace_back();
  piece.face = face;
  piece.named = found;
  piece.area = area;
  piece.row = row;
  piece.col = col;
}

void inpS_SurfaceLines::TakeLabel(long long row, int col, long long label,
                                  const inpS_SetVisitor::LabelSpace& space, eds_SurfaceFace face,
                                  double area) {
  const char* const noun = m_kind == Kind::Nodes ? "Node" : "Element";
  if (label > kMaxLabel || label < -kMaxLabel || space.occurrence < 0) {
    const cow_String asWritten = m_data.AsStringVerbatim(row, col);
    Fault(row, col,
          cow_String(noun) + " " + asWritten + " does not exist; the line is kept as it stands.");
    return;
  }
  int& listed = m_listed[static_cast<std::size_t>(face)];
  if (listed == 0) {
    Piece& piece = m_pieces.emplace_back();
    piece.face = face;
    piece.row = row;
    piece.col = col;
    listed = static_cast<int>(m_pieces.size());
  }
  const auto at = static_cast<std::size_t>(listed - 1);
  if (at != m_run.piece || space.occurrence != m_run.space.occurrence) Flush();
  if (m_run.labels.IsEmpty())
    m_run.prefix = space.occurrence == OwnSpace().occurrence ? std::string_view() : m_prefix;
  m_run.piece = at;
  m_run.space = space;
  m_run.labels.Append(static_cast<int>(label));
  m_pieces[at].rows.Append(static_cast<int>(row));
  if (m_kind == Kind::Nodes) m_pieces[at].areas.Append(area);
}

// Looks the labels of the run up; those that nobody has are told and left out.
void inpS_SurfaceLines::Flush() {
  if (m_run.labels.IsEmpty()) return;
  Piece& piece = m_pieces[m_run.piece];
  const std::size_t count = m_run.labels.Size();
  const std::size_t first = piece.ordinals.Size();
  int* const ordinals = piece.ordinals.AppendSpace(count);
  const long long unknown = m_visitor.LabelerOf(m_kind).ConvertInstanceLabels(
      m_run.space.occurrence, m_run.labels, {ordinals, count});
  const int offset = static_cast<int>(m_run.space.offset);
  if (unknown == 0) {
    for (std::size_t n = 0; n < count; ++n) ordinals[n] += offset;
    m_run.labels.Clear();
    return;
  }
  std::size_t kept = first;
  for (std::size_t n = 0; n < count; ++n) {
    const long long row = piece.rows[first + n];
    if (ordinals[n] < 0) {
      if (m_visitor.IsInText(m_kind, m_run.space, m_run.labels[n])) {
        if (!m_run.prefix.empty()) m_asText += cow_String(m_run.prefix) + '.';
        m_asText += std::to_string(m_run.labels[n]) + ',';
        if (piece.face != eds_SurfaceFace::Whole)
          m_asText += ' ' + cow_String(inpS_faceName(piece.face));
        m_asText += '\n';
        continue;
      }
      if (m_missing++ < kMostMissingTold)
        Fault(row, 0,
              inp_Utils::Format("%s %d does not exist; the line is kept as it stands.",
                                m_kind == Kind::Nodes ? "Node" : "Element", m_run.labels[n]));
      continue;
    }
    piece.ordinals[kept] = ordinals[n] + offset;
    piece.rows[kept] = static_cast<int>(row);
    if (m_kind == Kind::Nodes) piece.areas[kept] = piece.areas[first + n];
    ++kept;
  }
  piece.ordinals.Resize(kept);
  piece.rows.Resize(kept);
  if (m_kind == Kind::Nodes) piece.areas.Resize(kept);
  m_run.labels.Clear();
}

void inpS_SurfaceLines::Finish() {
  Flush();
  if (m_missing > kMostMissingTold)
    m_visitor.AddError(inp_Utils::MessageInKeyword(
        m_keyword,
        inp_Utils::Format(
            "%lld more %s of this surface do not exist; their lines are kept as they stand.",
            m_missing - kMostMissingTold, m_kind == Kind::Nodes ? "nodes" : "elements")));
  std::erase_if(m_pieces, [](const Piece& piece) {
    return piece.named.set.IsNull() && piece.ordinals.IsEmpty();
  });
}

void inpS_SurfaceLines::Fault(long long row, int col, cow_String text) {
  m_visitor.AddError(inp_Utils::MessageAtField(m_keyword, row, col, std::move(text)));
  m_isWhole = false;
}
