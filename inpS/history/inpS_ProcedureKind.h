#pragma once

#include "database/KvoSimDataRecord.h"
#include "database/eds_ModelReader.h"
#include <optional>

// What the history asks of a kind of procedure: its family, and where its values stand.
struct inpS_ProcedureKind {
  enum class Family : unsigned char { None, Time, Modes, Ranges };
  enum class Registration : unsigned char { Step, Task, Event }; // as StepRegistration
  Family family = Family::None;
  Registration registration = Registration::Step;
  bool hasSolver = false; // it solves equations that SOLVER of *STEP is for

  // Fields of the record; -1: it has none of that name.
  int initial = -1, period = -1, minimum = -1, maximum = -1;
  int direct = -1, directWord = -1, userControl = -1, userControlWord = -1;
  int isFixed = -1, incrementation = -1;
  int stabilize = -1, stabilizeFlag = -1, allsdtol = -1, keepDamping = -1, factor = -1;
  int steadyState = -1, end = -1, rate = -1, consolidation = -1;
  int deltmx = -1, mxdem = -1, cetol = -1, utol = -1, dcmax = -1, haftol = -1;
  int loadFactor = -1, count = -1;

  // Null: the kind is no procedure's.
  static const inpS_ProcedureKind* Of(eds_RecordKind kind);

  static std::optional<double> Real(const KvoSimDataRecord& record, int field);
  static bool Flag(const KvoSimDataRecord& record, int field);
  static bool HasWord(const KvoSimDataRecord& record, int field, std::string_view word);

  // beside: parameters of the record that have odd values, and are kept beside it: they are there.
  bool IsFixed(eds_RecordKind kind, const KvoSimDataRecord& record,
               std::string_view beside = {}) const;
  // Of explicit dynamics: the solver chooses the increments, by the elements, be they fixed or not.
  bool IsByElements(eds_RecordKind kind, const KvoSimDataRecord& record,
                    std::string_view beside = {}) const;
  bool IsSteady(const KvoSimDataRecord& record, std::string_view beside = {}) const;
  bool IsNoStop(const KvoSimDataRecord& record) const;
};
