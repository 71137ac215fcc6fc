#include "database/engine/eds_ReaderViews.h"
#include "database/engine/eds_Format.h"
#include <algorithm>

namespace {

using Kinds = std::span<const eds_RecordInfo* const>;

bool has(Kinds kinds, std::initializer_list<eds_RecordKind> wanted) {
  return std::ranges::all_of(wanted, [&](eds_RecordKind kind) {
    return std::ranges::find(kinds, kind, &eds_RecordInfo::kind) != kinds.end();
  });
}

cow_String nothing(std::initializer_list<const char*> columns) {
  cow_String sql;
  for (const char* column : columns)
    sql += (sql.empty() ? "\nSELECT NULL AS " : ", NULL AS ") + cow_String(column);
  return sql + " WHERE 0";
}

// Where the flat mesh has the labels of an owner: a run of them, or an array's.
cow_String labels(Kinds kinds) {
  if (!has(kinds, {eds_RecordKind::LabelSpace}))
    return nothing(
        {"kind", "owner_name", "flat_first", "first", "stride", "count", "few", "array"});
  return R"(
SELECT v.kind, v.owner_name, v.flat_first, ifnull(own.first, 0) AS first,
  ifnull(own.stride, 1) AS stride, v.count, NULL AS few, own.labels AS "array"
FROM v_label_space v JOIN label_space own ON own.id = ifnull(v.shares, v.id)
WHERE v.flat_first >= 0)";
}

cow_String flatNodes(Kinds kinds) {
  if (!has(kinds, {eds_RecordKind::NodeBlock})) return nothing({"flat_first", "coordinates"});
  return "\nSELECT flat_first, coordinates FROM node_block WHERE flat_first >= 0";
}

cow_String flatElements(Kinds kinds) {
  if (!has(kinds, {eds_RecordKind::ElementBlock}))
    return nothing({"type", "flat_first", "node_base", "connectivity"});
  return R"(
SELECT spec_name AS type, flat_first, ifnull(node_base, 0) AS node_base, connectivity
FROM v_element_block WHERE flat_first >= 0)";
}

// All members are a run as well: as many as there are now.
cow_String sets(Kinds kinds) {
  cow_String sql;
  for (const eds_RecordKind kind : {eds_RecordKind::NodeSet, eds_RecordKind::ElementSet}) {
    if (!has(kinds, {kind, eds_RecordKind::CSet, eds_RecordKind::Collection})) continue;
    const eds_RecordInfo& record = *eds_schemaRecord(kind);
    sql += sql.empty() ? "" : "\nUNION ALL";
    sql += "\nSELECT '" + cow_String(record.name) +
           R"(' AS kind, s.owner_kind, s.owner_name, s.name,
  ifnull(c.first, 0) AS first, ifnull(c.stride, 1) AS stride,
  CASE c.form WHEN 0 THEN (SELECT space FROM collection WHERE id = c.collection)
    ELSE ifnull(c.count, 0) END AS count, c.members AS few, c."array"
FROM v_)" + cow_String(record.table) +
           " s JOIN cset c ON c.id = s.membership";
  }
  return sql.empty() ? nothing({"kind", "owner_kind", "owner_name", "name", "first", "stride",
                                "count", "few", "array"})
                     : sql;
}

cow_String materialTables(Kinds kinds) {
  if (!has(kinds, {eds_RecordKind::Material, eds_RecordKind::PropertyTable, eds_RecordKind::Link}))
    return nothing({"material", "kind", "column_names", "few_values", "table_values"});
  return R"(
SELECT l.owner_name AS material, l.target_kind AS kind, t.column_names, t.few_values, t.table_values
FROM v_link l JOIN schema_record k ON k.name = l.target_kind
  JOIN property_table t ON t.property_kind = k.number AND t.property = l.target
WHERE l.owner_kind = 'Material' AND l.member_name = 'Properties')";
}

// Amplitudes over the total time, which go on from step to step.
cow_String totalAmplitudes(Kinds kinds) {
  cow_String sql;
  for (const eds_RecordInfo* kind : kinds) {
    const auto span = std::ranges::find(kind->fields, "time_span", &eds_FieldInfo::column);
    if (span == kind->fields.end()) continue;
    sql += sql.empty() ? "" : " UNION ALL ";
    sql += "SELECT '" + cow_String(kind->name) + "' AS kind, id FROM \"" + cow_String(kind->table) +
           "\" WHERE time_span = 1";
  }
  return sql.empty() ? "SELECT NULL AS kind, NULL AS id WHERE 0" : sql;
}

// What keywords say beside what an excitation has: of which base a motion is, how the coefficient
// of a film runs. Each kind is joined by itself: its records are found by their numbers.
struct Companions {
  cow_String joins;
  cow_String base = "coalesce(nullif(e.base, ''), NULL";
  cow_String film = "coalesce(NULL, NULL";
  cow_String goesOn = "EXISTS (SELECT 1 FROM total t WHERE 0";
};

Companions companions(Kinds kinds) {
  Companions all;
  for (const eds_RecordInfo* kind : kinds) {
    const auto hasField = [&](std::string_view column) {
      return std::ranges::find(kind->fields, column, &eds_FieldInfo::column) != kind->fields.end();
    };
    const bool hasBase = hasField("base_name");
    const bool hasFilm = hasField("film_amplitude");
    if (!hasBase && !hasFilm) continue;
    const cow_String own = "of_" + cow_String(kind->table);
    all.joins += "\n  LEFT JOIN \"v_" + cow_String(kind->table) + "\" " + own +
                 " ON e.given_kind = '" + cow_String(kind->name) + "' AND " + own + ".id = e.given";
    if (hasBase) all.base += ", " + own + ".base_name";
    if (!hasFilm) continue;
    all.film += ", " + own + ".film_amplitude_name";
    all.goesOn +=
        " OR (t.kind = " + own + ".film_amplitude_kind AND t.id = " + own + ".film_amplitude)";
  }
  for (cow_String* sql : {&all.base, &all.film, &all.goesOn}) *sql += ")";
  return all;
}

// A perturbation step has conditions and fields of the state it starts from, but none of its loads.
// Amplitudes of what stands before the steps run in the first one that is general.
cow_String inForce(Kinds kinds) {
  using Kind = eds_RecordKind;
  if (!has(kinds, {Kind::Excitation, Kind::Relay, Kind::HistoryStep}))
    return nothing({"step",           "step_name",
                    "excitation",     "keyword",
                    "field",          "components",
                    "restraint",      "label",
                    "region",         "instance",
                    "target",         "magnitude",
                    "amplitude",      "amplitude_ended",
                    "from_step",      "how",
                    "load_case",      "load_case_number",
                    "imaginary",      "fixed",
                    "given_kind",     "given",
                    "first_row",      "rows",
                    "members",        "base",
                    "film_amplitude", "film_amplitude_ended",
                    "user",           "submodel",
                    "global_step",    "global_increment",
                    "time_scale",     "scale",
                    "property",       "cyclic_mode"});
  const Companions also = companions(kinds);
  const cow_String isOwn =
      "(e.step = h.number OR (e.step < 1 AND h.number <= ifnull(first.number, h.number)))";
  const cow_String runs = isOwn + " OR " + also.goesOn;
  return "\nWITH total AS (" + totalAmplitudes(kinds) + ")" + R"(,
  first AS (SELECT min(number) AS number FROM v_history_step
    WHERE ifnull(perturbation, 0) = 0 AND ifnull(registration, '') <> 'REGISTERED_TASK')
SELECT h.number AS step, h.name AS step_name, e.name AS excitation, e.kind AS keyword, e.field,
  ifnull(r.components, e.components) AS components, e.restraint, e.label,
  r.region_name AS region, r.instance_name AS instance, r.label AS target,
  ifnull(r.magnitude, e.magnitude) AS magnitude,
)" + "  iif(" +
         isOwn + R"( OR total.id IS NOT NULL, e.amplitude_name, NULL) AS amplitude,
  iif()" +
         isOwn + R"( OR total.id IS NOT NULL, NULL, e.amplitude_name) AS amplitude_ended,
  e.step AS from_step,
  CASE WHEN e.step = h.number THEN 'given' WHEN h.perturbation = 1
    OR h.registration = 'REGISTERED_TASK' THEN 'held' ELSE 'carried' END
    AS how,
  iif(e.load_case IS NOT NULL, ifnull(nullif(e.load_case_name, ''), 'unnamed'), NULL) AS load_case,
  e.load_case_number, ifnull(e.imaginary, 0) AS imaginary,
  ifnull(e.fixed, 0) AS fixed, e.given_kind, e.given,
  r.first_row, ifnull(r.rows, 1) AS rows, r.members,
  )" + also.base +
         " AS base,\n  iif(" + runs + ", " + also.film + ", NULL) AS film_amplitude,\n  iif(" +
         runs + ", NULL, " + also.film + ") AS film_amplitude_ended" + R"(,
  ifnull(e.user, 0) AS user, ifnull(e.submodel, 0) AS submodel, e.global_step, e.global_increment,
  ifnull(e.time_scale, 0) AS time_scale, e.scale, e.property_name AS property,
  e.cyclic_mode
FROM v_history_step h JOIN first
  JOIN v_relay r ON r.first_step <= h.number AND h.number <= ifnull(r.last_step, h.number)
  JOIN v_excitation e ON e.id = r.excitation
  LEFT JOIN total ON total.kind = e.amplitude_kind AND total.id = e.amplitude)" +
         also.joins + R"(
WHERE (ifnull(h.perturbation, 0) = 0 AND ifnull(h.registration, '') <> 'REGISTERED_TASK') OR e.step = h.number OR e.kind IN ('BOUNDARY',
  'CONNECTOR MOTION', 'TEMPERATURE', 'FIELD', 'PRESSURE STRESS', 'MASS FLOW RATE', 'D EM POTENTIAL'))";
}

// The tasks of the history: how each is registered, its place in the sequence of steps, and what
// its results are collected over. While an arc is followed the total time stands still, for the
// length of an arc is no time; so it does in a step of a negative period, which nothing can take.
cow_String tasks(Kinds kinds) {
  if (!has(kinds, {eds_RecordKind::HistoryStep}))
    return nothing({"step", "name", "registration", "procedure_kind", "procedure", "place",
                    "collection", "begins", "ends", "least", "most", "items"});
  return R"(
SELECT number AS step, name,
  CASE registration WHEN 'REGISTERED_TASK' THEN 'task' WHEN 'REGISTERED_EVENT' THEN 'event'
    ELSE 'step' END AS registration,
  procedure_kind, procedure,
  iif(registration = 'REGISTERED_STEP', count(*) FILTER (WHERE registration = 'REGISTERED_STEP')
    OVER before, NULL) AS place,
  CASE WHEN procedure_kind = 'StaticRiks' AND period IS NOT NULL THEN 'arc length'
    WHEN procedure_kind = 'DirectCyclic' THEN 'cycle' WHEN ranges IS NOT NULL THEN 'frequency'
    WHEN procedure_kind GLOB 'Frequency*' OR procedure_kind GLOB 'Buckle*'
      OR procedure_kind = 'ComplexFrequency' THEN 'mode'
    WHEN period IS NOT NULL THEN 'time' END AS collection,
  iif(registration = 'REGISTERED_STEP', total(span) FILTER (WHERE registration = 'REGISTERED_STEP')
    OVER before - ifnull(span, 0), iif(period IS NULL, NULL, 0.)) AS begins,
  iif(registration = 'REGISTERED_STEP', total(span) FILTER (WHERE registration = 'REGISTERED_STEP')
    OVER before, span) AS ends,
  lowest_frequency AS least, highest_frequency AS most, ifnull(eigenvalues, ranges) AS items
FROM (SELECT *, iif(period < 0 OR (procedure_kind = 'StaticRiks' AND period > 0), 0., period) AS span
  FROM v_history_step WHERE procedure IS NOT NULL)
WINDOW before AS (ORDER BY number))";
}

cow_String incrementations(Kinds kinds) {
  if (!has(kinds, {eds_RecordKind::HistoryStep}))
    return nothing({"step", "name", "kind", "initial", "minimum", "maximum", "increments",
                    "no_stop", "load_factor", "temperature_change", "emissivity_change",
                    "creep_tolerance", "pressure_change", "concentration_change",
                    "half_increment_residual", "end_criterion"});
  return R"(
SELECT number AS step, name, iif(incrementation = 'INCREMENTS_FIXED', 'fixed', 'automatic')
    || iif(procedure_kind = 'StaticRiks', ' arc length', '') AS kind,
  initial_increment AS initial, minimum_increment AS minimum, maximum_increment AS maximum,
  ifnull(increments, 100) AS increments, ifnull(no_stop, 0) AS no_stop, load_factor,
  temperature_change, emissivity_change, creep_tolerance, pressure_change, concentration_change,
  half_increment_residual, end_criterion
FROM v_history_step WHERE incrementation IN ('INCREMENTS_AUTOMATIC', 'INCREMENTS_FIXED'))";
}

} // namespace

std::vector<eds_ReaderView> eds_readerViews(Kinds kinds) {
  return {{"v_labels", labels(kinds)},
          {"v_flat_nodes", flatNodes(kinds)},
          {"v_flat_elements", flatElements(kinds)},
          {"v_sets", sets(kinds)},
          {"v_material_tables", materialTables(kinds)},
          {"v_in_force", inForce(kinds)},
          {"v_task", tasks(kinds)},
          {"v_incrementation", incrementations(kinds)}};
}
