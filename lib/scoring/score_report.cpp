#include "scoring/score_report.h"

#include "context/message_line.h"
#include "context/messages.h"
#include "scoring/preference_name.h"
#include "scoring/preference_weights.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {
namespace {

void WriteRunHeading(const ResultsMap& prfResults, UT_STREAM& file) {
  file << "index,iteration,";
  UT_STROBJ cells;
  int n = 0;
  for (const auto& [name, result] : prfResults) {
    ++n;
    file << cells.str_format("Actual %d%s,PS %d,", n, result.unit.getstring(), n).getstring();
  }
  file << "Perf Score,timing score\n";
}

void WriteRunRows(const PSScoreInfo* scores, int count, const int* order, UT_STREAM& file) {
  UT_STROBJ row;
  for (int rank = 1; rank <= count; ++rank) {
    const PSScoreInfo& run = scores[order[rank - 1]];
    if (run.csvText.empty()) continue;
    row.str_format("%d,%s,%s\n", rank, run.csvText.getstring(), run.timingScore.getstring());
    file << row.getstring();
  }
}

}  // namespace

void OutputReport(PSScoreInfo* scores, ParScoreVal* results, int count, int* order, UT_STROBJ& reportPath,
                  const DARRAY_UT_STROBJ& csvLabels, const ResultsMap& prfResults, WeightsMap& weights, int) {
  const ut_stream_handle file = ut_open_stream(reportPath.getstring(), UT_ACCESS_WRITE);
  if (!file) {
    _ut_status(AboutFile("Unable to write report file", reportPath).getstring(1));
    return;
  }
  *file << "---- Vostrand Report File ----\n";
  if (count <= 0) return;
  OutputRptHead(prfResults, weights, file.get());
  *file << "\n";
  WriteRunHeading(prfResults, *file);
  sortscore(scores, results, count, order);
  WriteRunRows(scores, count, order, *file);
  *file << "\n" << ut_element(csvLabels, static_cast<unsigned long>(order[0])).getstring() << " is the best.";
}

void OutputRptHead(const ResultsMap& prfResults, WeightsMap& weights, UT_STREAM* stream) {
  // Spelled as the programs that read the file expect it.
  *stream << ",prefrence,,,,,,,constraint,weight,penalty\n";
  UT_STROBJ row;
  int n = 0;
  for (const auto& [name, result] : prfResults) {
    const WPValue own = GetWPByPrfName(name, result.type, weights);
    row.str_format("constraint %d,%s,,,,,,,%s,%.3f,%.3f\n", ++n,
                   GetRegularItemName(result.prefText).getstring(), result.constraintText.getstring(),
                   static_cast<double>(own.weight), static_cast<double>(own.penalty));
    *stream << row.getstring();
  }
}

}  // namespace orlo::vostrand_lib
