#pragma once

#include "database/KvoSimDataRecord.h"
#include "database/KvoSimPosition.h"
#include "database/schema/eds_Form.h"
#include "inpS/history/inpS_NamedTargets.h"
#include <cstdint>
#include <memory>

// How the rows of one form become excitations, as inpS_excitations.def has it.
struct inpS_ExcitationKind {
  enum class Key : uint8_t { Degrees, Degree, Label, Variable, One, Words };
  enum class Twice : uint8_t { Add, Later, First };
  enum class Lasting : uint8_t { Carried, Held, OwnStep };

  eds_RecordKind form;
  int number; // in the vocabulary ExcitationKind
  Key key;
  std::string_view field;
  Twice twice;
  Lasting lasting;
  const eds_FormInfo* info; // of the form

  // Of the parameters; -1: the form has none.
  int op = -1;
  struct Amplitude {
    std::string_view parameter;
    int field;
    bool isOfMagnitude; // else of a coefficient behind it
  };
  cow_List<Amplitude> amplitudes;
  int imaginary = -1;
  int fixed = -1;
  int type = -1;
  int variable = -1;
  int remove = -1;
  int user = -1;
  int submodel = -1;
  int file = -1;
  int loadCase = -1;
  int cyclicMode = -1;
  int variables = -1; // how many a routine gives
  static constexpr long long kMostVariables = 1000;
  int degree = -1; // as a parameter
  int baseName = -1;
  int scale = -1;
  int globalStep = -1; // of a submodel
  int globalIncrement = -1;
  int timeScale = -1;
  int property = -1;     // that a parameter names
  int lineSurface = -1;  // rows are lines of their own: the surface of each,
  int lineInstance = -1; // and its instance
  // Of the bulk columns.
  int target = -1;
  int first = -1; // or the only degree
  int last = -1;
  int label = -1;
  int value = -1;
  bool isValueOptional = false; // none given is none, and not 0
  // Of a keyword that does not tell what it names: those of its rows that are about this type.
  std::shared_ptr<const inpS_NamedTargets> named;
  inpS_NamedTargets::Type namedType = inpS_NamedTargets::Type::Surface;

  // The number of the field variable: each is a kind of its own. 0: the form has none.
  long long VariableOf(const KvoSimDataRecord& record) const; // the first one
  // How many from that one on: a routine may give several at once.
  long long VariablesOf(const KvoSimDataRecord& record) const;
  // What tells keywords of the kind apart that do not meet: the imaginary part from the real one,
  // motions of one base and degree from those of others.
  cow_String PartOf(const KvoSimDataRecord& record) const;
  // Of a line that gives none; 0: that line prescribes nothing.
  uint64_t BlankDegrees(const KvoSimDataRecord& record) const;
  // The one under which magnitudes run; null: none is given.
  KvoSimPosition AmplitudeOf(const KvoSimDataRecord& record) const;
  // Values are those of a routine, or of another analysis, whatever the lines say.
  bool IsGivenElsewhere(const KvoSimDataRecord& record, std::string_view label) const;
  // What rows of the label are about: of flows VELXNU prescribes what VELX does.
  cow_String Prescribed(std::string_view label) const;
  // As of the rows that are about one type of targets.
  inpS_ExcitationKind OfType(inpS_NamedTargets::Type type,
                             std::shared_ptr<const inpS_NamedTargets> targets) const;
  bool NamesSurfaces() const;
  // Whether rows are about nodes; without a target, as what a file maps between sets, about all.
  bool IsOfNodes() const;
  // Acts although the keyword has no line: a file has the values.
  bool ActsWithoutRows(const KvoSimDataRecord& record) const;

  static const inpS_ExcitationKind* Of(eds_RecordKind form); // null: its rows are none
  static const cow_List<inpS_ExcitationKind>& All();
};

// Whether the label stands for values of a routine, as P1NU and VELXNU do, and not for the
// turbulent viscosity.
bool inpS_isOfRoutine(std::string_view label);

// The degrees of freedom of a row as bits: 1 to 30, then what some restraints hold.
namespace inpS_Degrees {
constexpr int kMost = 30;
constexpr uint64_t Bit(int degree) {
  return uint64_t{1} << (degree - 1);
}
// 0: none of them is one.
uint64_t Of(long long first, long long last);
// What a restraint of the vocabulary RestraintType holds.
uint64_t OfRestraint(int restraint);

// Degrees that one excitation can prescribe together: parts of a vector, temperatures, or one
// alone.
struct Group {
  uint64_t degrees;
  cow_String field; // with that kind's base before it
  int firstDegree;  // of component 1
};
// Those that a transform of their node turns.
constexpr uint64_t kTurned = (uint64_t{1} << 6) - 1;
// `degrees` in their groups.
cow_List<Group> Groups(uint64_t degrees, const inpS_ExcitationKind& kind, std::string_view type);
// "C_1 C_3" for degrees of a group, the numbers of the components from 0 on for temperatures, ""
// for a field of one number.
cow_String Components(uint64_t degrees, int firstDegree);
} // namespace inpS_Degrees
