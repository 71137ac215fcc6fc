#pragma once

#include "database/KvoObjSurface.h"
#include "host/inps_FacePressures.h"
#include "host/inps_NodalConditions.h"
#include "inpS/history/inpS_ActingConditions.h"

// What acts in one step, for looking at: on nodes as arrays, pressures on faces. Magnitudes are as
// given, without their amplitudes. What acts in load cases, and imaginary parts, are left out.
class inps_StepConditions {
public:
  // `step`: the number of one in the history.
  inps_StepConditions(const inps_FlatMesh& mesh, const KvoObjDocument& document, int step);

  bool IsEmpty() const { return m_nodes.IsEmpty() && m_pressures.empty() && m_leftOut.empty(); }
  const inps_NodalConditions& Nodes() const { return m_nodes; }
  // By the surface.
  cow_Map<cow_String, inps_FacePressures>& Pressures() { return m_pressures; }
  // What has no array: "*DLOAD, GRAV", and how often.
  const cow_Map<cow_String, int64_t>& LeftOut() const { return m_leftOut; }

private:
  using Acting = inpS_ActingConditions::Acting;
  // What the keyword says of all of its rows.
  struct Given {
    KvoSimPosition record;
    cow_String keyword;
    cow_String type;
    int64_t variable = 1;
    bool isHeld = false; // whatever the values are
    bool isZero = false;
    cow_String unknown;  // why its values are none to show; empty: they are
  };
  void Read(const Acting& acting);
  void Add(const Acting& acting);
  bool AddToNodes(const Acting& acting);
  bool AddPressure(const Acting& acting);

  cow_List<cow_String> m_keywords; // by their numbers
  Given m_given;                   // of the rows that come
  inps_NodalConditions m_nodes;
  cow_Map<cow_String, inps_FacePressures> m_pressures;
  cow_Map<cow_String, int64_t> m_leftOut;
};
