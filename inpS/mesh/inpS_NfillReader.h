#pragma once

#include "inpS/mesh/inpS_GeneratingReader.h"

// *NFILL: nodes between two bounding node sets, whose members are paired in the order of the sets.
// Fields: first set, second set, number of intervals, label increment (absent or 0: 1).
class inpS_NfillReader : public inpS_GeneratingReader {
public:
  // Where the middle node of the interval pair at a singularity goes.
  enum class Singular { None, First, Last };

  inpS_NfillReader(double bias, bool twoStep, Singular singular, bool threeDimensional,
                   inpS_KnownNodes& known, inp_Visitor& messages)
      : inpS_GeneratingReader(known, messages, threeDimensional), m_bias(bias), m_twoStep(twoStep),
        m_singular(singular) {}

  // The bounding sets go into the collection too.
  void Read(const inp_Keyword& keyword, const inpS_NodeSink& sink, inpS_SetDefinition* collection);

private:
  bool HasBothEnds(long long row);
  void ReadLine(long long irow);
  bool Divide(long long row, long long intervals);
  void Biased(const cow_List<inpS_NodeValues>& a, const cow_List<inpS_NodeValues>& z,
              const inpS_KnownNodes::Set& first, long long increment);

  double m_bias;
  bool m_twoStep;
  Singular m_singular;
  cow_List<double> m_ratios; // the way of the inner nodes from the first set to the second
  double m_sum = 1;          // the whole of it
};
