#pragma once

#include "database/KvoObjSurface.h"
#include "host/inps_FacePressures.h"
#include "host/inps_NodalConditions.h"
#include "inpS/history/inpS_ActingConditions.h"
#include "inpS/history/inpS_KeptValues.h"
#include <memory>
#include <optional>

// What acts in one step, for looking at: on nodes as arrays, pressures on faces. Magnitudes are as
// given, without their amplitudes. Imaginary parts are left out.
class inps_StepConditions {
public:
  // `step`: the number of one in the history.
  inps_StepConditions(const inps_FlatMesh& mesh, const KvoObjDocument& document, int step);

  // What acts together: in all of the step, or in one of its load cases, which keywords stand in or
  // give a number of.
  struct Part {
    cow_String loadCase; // its name or number, empty: none
    inps_NodalConditions nodes;
    cow_Map<cow_String, inps_FacePressures> pressures{}; // by the surface
  };
  bool IsEmpty() const;
  const inps_NodalConditions& Nodes() const { return m_parts.front()->nodes; }
  // The first one is of all of the step.
  const cow_List<std::unique_ptr<Part>>& Parts() const { return m_parts; }
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
    bool isFixed = false; // values are those of the steps before
    bool isZero = false;
    cow_String unknown; // why its values are none to show; empty: they are
  };
  void Read(const Acting& acting);
  Part* PartOf(const KvoSimPosition& loadCase, std::optional<int> number);
  void Add(const Acting& acting);
  bool AddToNodes(const Acting& acting);
  void AddKept(const Acting& acting, const eds_MemberSet& nodes);
  bool AddPressure(const Acting& acting);

  const inps_FlatMesh& m_mesh;
  const KvoObjDocument m_document;
  cow_List<cow_String> m_keywords;         // by their numbers
  Given m_given;                           // of the rows that come
  cow_List<std::unique_ptr<Part>> m_parts; // grids refer to them
  cow_Map<std::pair<unsigned long long, std::optional<int>>, Part*> m_ofLoadCases;
  Part* m_part = nullptr; // of the rows that come
  inpS_KeptValues m_kept;
  cow_Map<cow_String, int64_t> m_leftOut;
};
