#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Schema.h"
#include "tests/host/ProgramRun.h"

// Gives a model a step that is kept as text, as one has whose procedure no record can hold: behind
// so many of its steps. The vocabulary has no such procedure, files may.
inline void addStepAsText(const std::filesystem::path& file, const cow_String& step,
                          const cow_String& inIt, std::size_t behind) {
  {
    KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadWrite);
    KvoSimTransaction transaction(document.ContextID());
    const KvoSimPosition model = document.GetModel().Position();
    const auto steps = model.GetVector(eds_Member::Steps);
    constexpr int inStep = 4;
    constexpr int block = 29;
    int position = 0;
    for (const KvoSimPosition& text :
         document.Context().GetRecords(eds_RecordKind::VerbatimKeyword))
      if (text.DataRecord().GetInt(eds_VerbatimKeyword_Block) == block) ++position;
    const auto keep = [&](const cow_String& line, int level) {
      KvoSimDataRecord record =
          model.CreateDataRecord(eds_RecordKind::VerbatimKeyword).DataRecord();
      record.SetString(eds_VerbatimKeyword_Keyword, line.substr(1, line.find_first_of(",\n") - 1));
      record.SetSymb(eds_VerbatimKeyword_Level, level);
      record.SetReference(eds_VerbatimKeyword_Owner, model);
      record.SetInt(eds_VerbatimKeyword_Block, block);
      record.SetInt(eds_VerbatimKeyword_Position, position++);
      record.SetString(eds_VerbatimKeyword_Text, line);
      if (behind > 0) record.SetReference(eds_VerbatimKeyword_Behind, steps[behind - 1]);
    };
    keep(step, 0);
    keep(inIt, inStep);
    keep("*END STEP\n", 0);
    transaction.Commit();
    document.Finish();
  }
  const ProgramRun derived({"derive", utl_pathText(file)});
  EXPECT_EQ(derived.exitCode, 0) << derived.err;
}
