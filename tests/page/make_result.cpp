// Sweeps of random runs for the page's tests, with timing reports and weights as files, so that scores and
// orders are the library's own. `make_result FOLDER` writes NAME.json, NAME.html and NAME.tries.json (other
// weights, with the scores and the order that the library gives for them); `make_result FILE.prf` shows the
// weights read from a file.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <cstring>
#include <random>

#include "page/report_page.h"
#include "records/result_json.h"
#include "scoring/performance_score.h"
#include "scoring/preference_file.h"
#include "scoring/preference_name.h"
#include "scoring/preference_weights.h"

using namespace orlo::vostrand_lib;
using vostrand::SweepResult;

namespace {

struct Sweep {
  const char* name;
  int runs;
  int preferences;
  int jobs;
  bool hostile = false;
  bool failures = false;
  bool timing = true;
};

std::mt19937 engine(20261123);

double Random(double from, double to) {
  return std::uniform_real_distribution<>(from, to)(engine);
}

std::string Format(const char* form, auto... values) {
  char text[400];
  return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, form, values...))};
}

void Write(const std::string& path, const QByteArray& text) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) std::exit(1);
}

WeightsMap KindDefaults() {
  return {{"PERIOD", {1, 1}}, {"FREQUENCY", {3, 1}}, {"INPUT_SETUP", {1, 7}}, {"CLOCK_TO_OUT", {0, 1}}};
}

struct Statement {
  std::string text;
  bool frequency;
  double constraint;  // ns
  double usual;       // Slack, ns.
  double varies;
};

Statement RandomStatement(const Sweep& sweep, int i) {
  constexpr const char* hostile[] = {
      "</script><script>alert(1)</script>", "<img/src=x/onerror=alert(1)>", "<!--&amp;'", "\xFF\xFE",
      "a_net_with_a_name_that_is_very_long/and/deep/in/the/hierarchy/till_nobody/can/read/it"};
  const std::string net =
      sweep.hostile ? std::string(hostile[i % 5]) + hostile[4] : Format("core%d/bus_%d", i % 7, i);
  const bool frequency = i % 4 == 0;
  const double constraint = frequency ? 1000 / (50 + 10 * (i % 9)) : 2 + i % 6;
  const char* const kinds[] = {"FREQUENCY", "INPUT_SETUP", "CLOCK_TO_OUT", "PERIOD"};
  const std::string value = frequency ? Format("%.6f MHz", 1000 / constraint) : Format("%.6f ns", constraint);
  const double usual = i % 11 == 5 ? Random(-1.5, -0.9) : Random(-0.2, 1.2);
  return {std::string(kinds[i % 4]) + " NET \"" + net + "\" " + value + " ", frequency, constraint, usual,
          Random(0.05, 0.5)};
}

std::string Row(const std::string& text, const std::string& constraint, const std::string& actual) {
  return Format("%-40s|%13s|%13s|%6s\n", text.c_str(), constraint.c_str(), actual.c_str(), "");
}

QByteArray TimingReport(const std::vector<Statement>& statements, double luck) {
  std::string text = "Preference                              |   Constraint|       Actual|Levels\n-----\n";
  for (const Statement& statement : statements) {
    const double chance = Random(0, 1);
    if (chance < 0.02) continue;  // Carried over from an earlier run.
    const double actual = statement.constraint - statement.usual - luck - Random(-1, 1) * statement.varies;
    const char* const unit = statement.frequency ? "%.3f MHz" : "%.3f ns";
    const auto shown = [&](double ns) { return Format(unit, statement.frequency ? 1000 / ns : ns); };
    std::string rest = statement.text + ";";
    for (; rest.size() > 40; rest.erase(0, 40)) text += Row(rest.substr(0, 40), "", "");
    text += Row(rest, shown(statement.constraint), chance < 0.04 ? "-" : shown(std::max(actual, 0.01)));
    text += Row("", "", "").substr(0, 69) + "\n";
  }
  return QByteArray::fromStdString(text + "-----\nScore: 0\n");
}

// How the run went: times, tries, and for some sweeps failures.
void Happen(const Sweep& sweep, int index, std::vector<double>& free, vostrand::RunResult& run) {
  vostrand::RunRecord& record = run.record;
  record.name = "5_" + std::to_string(index + 1);
  run.steps = {{"par", "a.ncd"}, {"sorv", "a.ncd"}};
  record.status = 0;
  if (sweep.failures && index % 5 == 3) record.status = 9;
  if (sweep.failures && index >= sweep.runs - 4) record.status = vostrand::cancelled_status;
  record.started = !(sweep.failures && index >= sweep.runs - 2);
  if (!record.started) return;
  record.restored = sweep.failures && index < 2;
  record.slot = static_cast<std::size_t>(std::min_element(free.begin(), free.end()) - free.begin());
  double& now = free[record.slot];
  record.started_seconds = now;
  for (const std::size_t step : {0U, 0U, 1U}) {
    if (!record.tries.empty() && step == 0 && (!sweep.failures || index % 3 > 0)) continue;
    vostrand::TryRecord& attempt = record.tries.emplace_back();
    attempt.step = step;
    attempt.number = static_cast<int>(record.tries.size() - step);
    attempt.started_seconds = now;
    now += Random(5, 9) / static_cast<double>(1 + 3 * step);
    attempt.ended_seconds = now;
    attempt.outcome.cpu_seconds = (now - attempt.started_seconds) * Random(0.7, 0.98);
    attempt.outcome.peak_kib = static_cast<long>(Random(120000, 240000));
  }
  record.ended_seconds = now;
}

struct Made {
  SweepResult result;
  std::vector<std::string> reports;  // Of the finished runs, with their indices beside.
  std::vector<int> finished;
  std::vector<ParScoreVal> rows;
};

// Scores all finished runs with these weights; fills in the result when it is given.
QJsonObject Score(Made& made, const WeightsMap& weights, SweepResult* result) {
  ResultsMap preferences;
  std::vector<PSScoreInfo> scores(made.rows.size());
  std::vector<int> order = made.finished;
  std::map<UT_STROBJ, std::size_t>
      index;  // By the first run that lists a preference, as no reader may rely on.
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto run = static_cast<std::size_t>(order[i]);
    for (auto& [name, listed] : preferences) listed.prefText = "";
    scores[run] = GetPSScore(made.reports[i].c_str(), preferences, weights);
    if (result == nullptr) continue;
    result->runs[run].score = scores[run].score;
    WeightsMap copy = weights;
    for (const auto& [name, listed] : preferences) {
      const WPValue own = GetWPByPrfName(name, listed.type, copy);
      const WPValue kind = KindDefaults()[listed.type];
      const auto [at, added] = index.try_emplace(name, index.size());
      if (added)
        result->preferences.push_back({name.getstring(), GetRegularItemName(listed.prefText).getstring(),
                                       listed.type.getstring(), listed.constraintText.getstring(), own.weight,
                                       own.penalty, kind.weight, kind.penalty});
      vostrand::PreferenceScore& part = result->runs[run].preferences.emplace_back();
      part.preference = at->second;
      part.actual = listed.actualText.getstring();
      part.unit = listed.unit.getstring();
      part.constraint_ns = listed.constraintPeriod;
      part.actual_ns = listed.actualPeriod;
      part.slack_ns = listed.constraintPeriod - listed.actualPeriod;
      part.carried_over = listed.prefText.empty();
    }
  }
  const auto count = static_cast<int>(order.size());
  if (made.result.timing)
    sortscore(scores.data(), made.rows.data(), count, order.data());
  else
    sortscore(made.rows.data(), count, order.data());
  if (result != nullptr) result->order.assign(order.begin(), order.end());
  QJsonArray values;
  QJsonArray places;
  QJsonArray used;
  for (const PSScoreInfo& score : scores) values.append(static_cast<double>(score.score));
  for (const int run : order) places.append(run);
  WeightsMap copy = weights;
  for (const vostrand::Preference& preference : made.result.preferences) {
    const WPValue own = GetWPByPrfName(preference.name.c_str(), preference.kind.c_str(), copy);
    used.append(QJsonArray{static_cast<double>(own.weight), static_cast<double>(own.penalty)});
  }
  return {{"weights", used}, {"scores", values}, {"order", places}};
}

void Make(const Sweep& sweep, const std::string& folder) {
  Made made;
  SweepResult& result = made.result;
  result.program_version = "0.1.0";
  result.host_name = "workbench";
  result.work_dir = "/home/me/designs";
  result.tool_arguments = {sweep.hostile ? "</title><b>top" : "top"};
  result.started = "2026-11-23T01:18:20Z";
  result.timing = sweep.timing;
  for (const char* const role : {"design", "preferences"}) {
    vostrand::FileRecord& file = result.inputs.emplace_back();
    file.role = role;
    file.path = sweep.hostile ? "<a>.ncd" : "/home/me/designs/top.ncd";
    file.sha256 = "9f86d081884c7d659a2feaa0c55ad015a3bf4f1b2b0b822cd15d6c15b0f00a08";
  }
  std::vector<Statement> statements;
  QByteArray preferences;
  for (int i = 0; i < sweep.preferences; ++i) {
    statements.push_back(RandomStatement(sweep, i));
    preferences += statements.back().text + (i % 3 == 0 ? Format("; # w %.2f p 4\n", Random(0, 3)) : ";\n");
  }
  const std::string stem = folder + "/" + sweep.name;
  Write(stem + ".prf", preferences);
  WeightsMap weights = KindDefaults();
  GetWPFromPrf((stem + ".prf").c_str(), weights);

  std::vector<double> free(static_cast<std::size_t>(sweep.jobs));
  std::vector<vostrand::Verdict> verdicts;
  made.rows.resize(static_cast<std::size_t>(sweep.runs));
  for (int i = 0; i < sweep.runs; ++i) {
    vostrand::RunResult& run = result.runs.emplace_back();
    Happen(sweep, i, free, run);
    if (run.record.status > 0) continue;
    const double luck = Random(-0.25, 0.25);
    made.finished.push_back(i);
    made.reports.push_back(stem + ".twr");  // One after the other in one file.
    made.reports.back() += std::to_string(i);
    Write(made.reports.back(), TimingReport(statements, luck));
    ParScoreVal& row = made.rows[static_cast<std::size_t>(i)];
    row.valid = run.has_row = i % 7 != 6;
    row.score = run.timing_score = luck > 0.12 ? 0 : static_cast<long>((0.12 - luck) * 4000);
  }
  Score(made, weights, &result);
  for (const int i : made.finished) {
    vostrand::RunResult& run = result.runs[static_cast<std::size_t>(i)];
    vostrand::Verdict& verdict = verdicts.emplace_back();
    if (run.has_row) verdict.met = run.timing_score == 0;
    verdict.score = run.score;
    if (sweep.timing) continue;
    verdict.score = run.score = {};
    run.preferences.clear();
  }
  if (!sweep.timing) result.preferences.clear();
  result.odds = vostrand::OddsOf(verdicts);
  result.elapsed_seconds = *std::max_element(free.begin(), free.end()) + 0.4;
  if (sweep.failures) result.missing = {"top.ncd differs from the best run's"};
  if (sweep.failures) result.stopped_because = "3 runs meet timing";

  QJsonArray tries;
  for (int i = 0; i < 5 && sweep.timing; ++i) {
    WeightsMap tried = weights;
    WeightsMap copy = weights;
    for (const vostrand::Preference& preference : result.preferences) {
      WPValue& own = tried[preference.name.c_str()];
      own = GetWPByPrfName(preference.name.c_str(), preference.kind.c_str(), copy);
      // The first try moves one slider only.
      if (i == 0 && &preference != &result.preferences.front()) continue;
      own.weight = i == 0 ? 6 : static_cast<float>(Random(0, 5));
      if (i > 0) own.penalty = static_cast<float>(Random(0, 5));
    }
    tries.append(Score(made, tried, nullptr));
  }
  const QByteArray json = ResultJson(result);
  std::string why;
  const QByteArray page = vostrand::ReportPage(json, why);
  if (page.isEmpty()) std::printf("%s: %s\n", sweep.name, why.c_str());
  Write(stem + ".json", json);
  Write(stem + ".html", page);
  Write(stem + ".tries.json", QJsonDocument(tries).toJson());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const std::string path = arguments[1];
  std::string why;
  if (!vostrand::ReportPage("{\"format\":", why).isEmpty() || why.empty()) return 3;
  if (path.ends_with(".prf")) {
    WeightsMap weights = KindDefaults();
    GetWPFromPrf(path.c_str(), weights);
    QJsonObject read;
    for (const auto& [name, own] : weights)
      read[name.getstring()] = QJsonArray{static_cast<double>(own.weight), static_cast<double>(own.penalty)};
    std::puts(QJsonDocument(read).toJson().constData());
    return 0;
  }
  Make({"three", 3, 8, 1, true}, path);
  Make({"twelve", 12, 9, 2}, path);
  Make({"many", 99, 500, 8}, path);
  Make({"failures", 24, 30, 4, false, true}, path);
  Make({"untimed", 6, 3, 2, false, false, false}, path);
  Make({"nothing", 0, 0, 1}, path);
  return 0;
}
