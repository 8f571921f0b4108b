#include "results/par_summary.h"

#include "context/message_line.h"
#include "context/messages.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {

void OutputParRpt(ParScoreVal* results, int count, int* order, const UT_STROBJ& path) {
  const ut_stream_handle file = ut_open_stream(path.getstring(), UT_ACCESS_WRITE);
  if (!file) {
    _ut_status(AboutFile("Unable to write summary par file", path).getstring(1));
    return;
  }
  *file << "VOSTRAND: MultiPar and Trace Run Manager Tool\n\n";
  for (const char* const heading : par_table_headings) file->writeline(heading);
  for (int i = 0; i < count; ++i) {
    const UT_STROBJ& row = results[order[i]].line;
    if (!row.empty()) file->writeline(row.getstring());
  }
  *file << "\n* : Design saved.\n\npar done!\n";
}

}  // namespace orlo::vostrand_lib
