// The files that the library reads.
#include <memory>

#include "common.h"
#include "profile/profile_file.h"
#include "results/par_result.h"
#include "scoring/performance_score.h"
#include "scoring/preference_file.h"

using namespace orlo::vostrand_lib;

// What is found is in the file.
void par_result(std::string_view in) {
  const UT_STROBJ file(InMemory(in));
  ParScoreVal result;
  result.name = "5_1";
  const bool found = GetParResult(file, result);
  Check(found == result.valid && found != result.line.empty() && in.find(result.line.view()) != in.npos);
}

// Every annotation counts, and has a place of its own or another's.
void preference_file(std::string_view in) {
  const UT_STROBJ file(InMemory(in));
  WeightsMap weights{{"PERIOD", {1, 2}}, {"FREQUENCY", {3, 4}}};
  const int count = GetWPFromPrf(file, weights);
  const std::size_t known = weights.size();
  Check(count >= 0 && known <= 2 + 2 * static_cast<std::size_t>(count));
  Check(GetWPFromPrf(file, weights) == count && weights.size() == known);
}

// The score is the same again.
void timing_report(std::string_view in) {
  const UT_STROBJ file(InMemory(in));
  const WeightsMap weights{{"PERIOD", {1, 2}}, {"FREQUENCY", {3, 4}}, {"INPUT_SETUP", {5, 6}}};
  ResultsMap results;
  const UT_STROBJ score = GetPrfResultVal(file, results);
  const PSScoreInfo first = GetPSScore(file, results, weights);
  const PSScoreInfo second = GetPSScore(file, results, weights);
  Check(first.csvText == second.csvText && first.timingScore == score.trimmed());
}

// Buffers are of exactly the size that is told, so that one byte too many is found out.
void profile_file(std::string_view in) {
  FuzzedDataProvider parts = Parts(in);
  const std::size_t size = parts.ConsumeIntegralInRange<std::size_t>(1, 400);
  const unsigned nulls = parts.ConsumeIntegral<unsigned char>();
  std::string texts[3];
  for (std::string& text : texts) text = parts.ConsumeRandomLengthString();
  const auto text = [&](unsigned i) { return nulls & (1U << i) ? nullptr : texts[i].c_str(); };
  const char* const file = "a.ini";
  const Scratch scratch;
  scratch.Write(file, parts.ConsumeRemainingBytesAsString());

  const auto buffer = std::make_unique<char[]>(size);
  char* const out = buffer.get();
  const std::size_t count = GetPrivateProfileString(text(0), text(1), text(2), out, size, file);
  Check(count < size && out[count] == '\0');
  const std::size_t entries = GetPrivateProfileSection(texts[0].c_str(), out, size, file);
  Check(entries < size && out[entries] == '\0');
  GetPrivateProfileInt(text(0), text(1), 7, file);
  if (size > 1)
    for (const char* s = texts[2].c_str(); s;) s = stptok(s, out, size, texts[1].c_str());
  for (const auto trim : {rmlead, rmtrail}) trim(std::string(texts[2]).data());
  for (const auto remove : {rmquotes, rmbrackets}) remove(std::string(texts[2]).data());
  WritePrivateProfileString(text(0), text(1), text(2), file);
}
