// The commands of the program, one function each. What goes wrong is thrown: Failure, UsageError or
// host::DatabaseError.
#pragma once

#include "cli/CommandLine.h"
#include "cli/Output.h"
#include "common/Text.h"

namespace tavlo::cli {

struct Run {
  const Globals& globals;
  Output& output;
};

// One line: the text as it is, or JSON; an absent one as "(null)" or null.
void answerText(const Text& text, const Run& run);

void execute(const Help& command, const Run& run);
void execute(const MakeRequest& command, const Run& run);
void execute(const GetIdentifier& command, const Run& run);
void execute(const SetIdentifier& command, const Run& run);
void execute(const ShowIdentifiers& command, const Run& run);
void execute(const TransformTexts& command, const Run& run);
void execute(const PrintContract& command, const Run& run);
void execute(const AddEvent& command, const Run& run);
void execute(const ListEvents& command, const Run& run);
void execute(const ClearEvents& command, const Run& run);
void execute(const RecordUse& command, const Run& run);
void execute(const Demo& command, const Run& run);
void execute(const LookUpInCache& command, const Run& run);
void execute(const FetchBanners& command, const Run& run);
void execute(const ExplainUrl& command, const Run& run);
void execute(const ListCacheEntries& command, const Run& run);
void execute(const PrintCachedList& command, const Run& run);
void execute(const PutCachedList& command, const Run& run);
void execute(const SortList& command, const Run& run);
void execute(const DeleteCached& command, const Run& run);
void execute(const ClearCache& command, const Run& run);
void execute(const Locate& command, const Run& run);
void execute(const ShowImage& command, const Run& run);
void execute(const ShowLog& command, const Run& run);
void execute(const ExportLog& command, const Run& run);
void execute(const Examine& command, const Run& run);

}  // namespace tavlo::cli
