#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "inpS/inpS_Export.h"
#include <functional>
#include <limits>
#include <optional>
#include <unordered_map>

// What acts in a step, as a reader of decks knows it: rows of one keyword that are in force
// together.
struct inpS_ActingDescription {
  cow_String excitation; // its name
  cow_String keyword;    // without the star
  // Whom it is about: a set or surface, a node or element, or what the rows of the keyword say.
  cow_String region;
  const char* regionKind = nullptr; // "node set", "element set", "surface"; null: no region
  cow_String instance;
  std::optional<long long> target;  // label of the node or element
  std::optional<long long> members; // nodes or elements that are left of the region; none: all
  const char* memberKind = "row";   // "node", "element", "face"; "row": the keyword names none
  bool isWhole = false;             // about the whole model
  long long firstRow = 0;           // of the keyword, from 0
  long long rows = 1;

  cow_String field;
  cow_String label;
  cow_String components;
  cow_String restraint;
  std::optional<double> magnitude; // none: a restraint, or rows that differ
  cow_String amplitude;
  bool hasAmplitudeEnded = false; // it was that of an earlier step, over its step time
  cow_String filmAmplitude;       // of a film's coefficient
  bool hasFilmAmplitudeEnded = false;
  cow_String base;           // that a base motion moves; empty: the primary one, or none
  bool isFixed = false;      // holds what the step before left
  bool isByUser = false;     // a routine of the user has the values
  bool isOfSubmodel = false; // a global analysis has them
  std::optional<long long> globalStep, globalIncrement;
  bool isTimeScaled = false;
  std::optional<double> scale;   // of a motion of the base, and of what a global analysis has
  cow_String property;           // of an impedance, or of an incident wave
  bool isAlongLocalAxes = false; // its nodes are transformed
  long long fromStep = 0;        // 0: before the first
  const char* how = "given";     // "carried", "held"
  cow_String loadCase;
  std::optional<long long> loadCaseNumber; // that LOAD CASE= gives
  std::optional<long long> cyclicMode;     // of a load on a sector
  bool isImaginary = false;
};

// Reads the excitations and relays of a model once, then tells of any step.
class INPS_EXPORT inpS_InForceDescription {
public:
  explicit inpS_InForceDescription(const KvoObjDocument& document);

  // In the order of their keywords. `step`: a record HistoryStep. `isWanted` is asked for each, in
  // turn, whether it is to be described at all: it costs much more than to count it.
  using Wanted = std::function<bool(const cow_String& keyword)>;
  void ForAllIn(const KvoSimPosition& step, const Wanted& isWanted,
                const std::function<void(const inpS_ActingDescription&)>& take);

private:
  struct Excitation {
    KvoSimPosition record;
    int kind;
    long long step;
    bool isHeld; // in perturbation steps, too
  };
  struct Relay {
    KvoSimPosition record;
    std::size_t excitation;
    long long firstStep;
    long long lastStep;
  };

  inpS_ActingDescription Describe(const Relay& relay, long long number, bool isPerturbation);
  void DescribeOrigin(const KvoSimDataRecord& excitation, inpS_ActingDescription& to);
  void DescribeGiven(const KvoSimPosition& given, bool runs, inpS_ActingDescription& to);
  void DescribeRegion(const KvoSimDataRecord& relay, const KvoSimDataRecord& excitation, int kind,
                      inpS_ActingDescription& to);
  const cow_String& NameOf(const KvoSimPosition& object);

  static constexpr long long kNever = std::numeric_limits<long long>::max();
  long long m_firstGeneral = kNever; // step in which amplitudes run that stand before the steps
  cow_List<Excitation> m_excitations;
  cow_List<Relay> m_relays;
  std::unordered_map<unsigned long long, cow_String> m_names;
};
