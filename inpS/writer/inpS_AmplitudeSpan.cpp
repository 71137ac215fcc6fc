#include "inpS/writer/inpS_AmplitudeSpan.h"
#include "database/eds_ModelReader.h"
#include <algorithm>

bool inpS_isOverTotalTime(const KvoSimPosition& amplitude) {
  constexpr int totalTime = 1; // of the vocabulary TimeSpan
  const eds_RecordInfo* info = eds_ModelReader::Info(amplitude.Object().RecordKind());
  if (!info) return false;
  const auto span = std::ranges::find(info->fields, "time_span", &eds_FieldInfo::column);
  return span != info->fields.end() &&
         amplitude.DataRecord().GetSymb(static_cast<int>(span - info->fields.begin())) == totalTime;
}
