#include "inpS/mesh/inpS_NfillReader.h"
#include "base/utl_Assert.h"
#include "inpS/messages/inpS_LocatedText.h"
#include <algorithm>
#include <cmath>

void inpS_NfillReader::Read(const inp_Keyword& keyword, const inpS_NodeSink& sink,
                            inpS_SetDefinition* collection) {
  Open(keyword, sink, collection);
  TellNoLines();
  for (long long row = 0; row < keyword.Data().Rows(); ++row)
    if (!IsBlank(row) && HasBothEnds(row)) ReadLine(row);
  Close();
}

bool inpS_NfillReader::HasBothEnds(long long row) {
  return Keyword().Data().Cols(row) > 1 ||
         Fails(row, inpS_messageText(inpS_mesh_IncompleteData) + " Line ignored.");
}

void inpS_NfillReader::ReadLine(long long irow) {
  const inp_DataArray& data = Keyword().Data();
  utl_ASSERT(data.Cols(irow) > 1);
  inpS_KnownNodes::Set first, last;
  long long intervals = 0, increment = 1;
  if (!ReadNodes(irow, 0, first) || !ReadNodes(irow, 1, last) ||
      !ReadInteger(irow, 2, 0, intervals) || !ReadInteger(irow, 3, 1, increment))
    return;
  if (increment == 0) increment = 1;
  TellUnused(irow, 4);
  if (intervals <= 0) {
    Fails(irow, 2, inpS_messageText(inpS_mesh_IntervalsNotPositive));
    return;
  }
  if (m_singular != Singular::None && intervals % 2 != 0) {
    Fails(irow, 2, inpS_messageText(inpS_mesh_IntervalsNotEven));
    return;
  }
  if (!ArePairs(irow, first, last)) return;
  for (long long n = 0; n < first.ordinals.Size(); ++n)
    if (!LabelsFit(irow, Known().LabelOf(first.ordinals[n]), increment, intervals - 1)) return;
  if (!CountFits(irow, first.ordinals.Size() * (intervals - 1)) || !Divide(irow, intervals)) return;
  cow_List<inpS_NodeValues> a, z;
  Gather(first, a);
  Gather(last, z);
  Collect(first);
  Biased(a, z, first, increment);
  Flush(); // the next line may look at these nodes
  Collect(last);
}

// The first interval has length 1 and each further one that of the one before divided by the bias;
// in two steps the division is left out behind every other interval, so that they come in pairs.
//
// A singular fill is one of elements with middle nodes, each over two intervals. Around a crack tip
// or another point where the strain is singular as the inverse square root of the distance, the
// middle node belongs at a quarter of the element's length from it (Henshell and Shaw, Barsoum,
// 1975/76): the two intervals at the end in question become one and three quarters of their sum.
bool inpS_NfillReader::Divide(long long row, long long intervals) {
  const auto m = static_cast<std::size_t>(intervals);
  m_ratios.resize(m);
  double length = 1.0, sum = 0.0;
  for (std::size_t k = 0; k < m; ++k) {
    m_ratios[k] = sum += length;
    if (!m_twoStep || k % 2 != 0) length /= m_bias;
  }
  if (!std::isfinite(sum))
    return Fails(row, 2, "The bias is too small for so many intervals; line ignored.");
  if (m_singular == Singular::First) m_ratios[0] = 0.25 * m_ratios[1];
  if (m_singular == Singular::Last) {
    const double before = m > 2 ? m_ratios[m - 3] : 0.0;
    m_ratios[m - 2] = sum - 0.25 * (sum - before);
  }
  m_sum = sum;
  m_ratios.pop_back(); // the last set itself
  return true;
}

// Nodes of a plane have z = 0 at both ends and so in between: the planar fill is this one as well.
void inpS_NfillReader::Biased(const cow_List<inpS_NodeValues>& a,
                              const cow_List<inpS_NodeValues>& z, const inpS_KnownNodes::Set& first,
                              long long increment) {
  for (std::size_t n = 0; n < a.size(); ++n) {
    inpS_NodeValues node;
    node.hasNormal = a[n].hasNormal && z[n].hasNormal;
    long long label = Known().LabelOf(first.ordinals[static_cast<long long>(n)]);
    for (const double r : m_ratios) {
      for (int i = 0; i < 6; ++i)
        node.value[i] = inpS_between(a[n].value[i], z[n].value[i], r, m_sum);
      Emit(label += increment, node);
    }
  }
}
