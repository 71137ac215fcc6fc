#pragma once

#include "base/bcu_ResourceMonitor.h"
#include "base/cow_Value.h"
#include <optional>

// The marks that the host's resource monitor is given within a step, around what is printed of one
// subject on end: the step and its procedure, contact, conditions and loads, contact interferences,
// output requests. The keywords stand in the order of the deck, so a subject may come up again.
class inpS_StepMarks {
public:
  void Enter(std::string_view keyword); // what is printed next; one of no subject goes along
  void BeginStep() { Mark("Task"); }
  void EndStep() { m_open.reset(), m_tag = nullptr; }

private:
  void Mark(const char* tag);
  const char* m_tag = nullptr;
  std::optional<bcu_MarkScope> m_open;
};
