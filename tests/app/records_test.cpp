// What is written for other programs: read back, on pipes, and with names that nobody should have chosen.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QXmlStreamReader>
#include <cmath>
#include <csignal>

#include "common/scratch.h"
#include "records/event_log.h"
#include "records/junit.h"
#include "records/result_json.h"
#include "records/trace.h"
#include "records/write_file.h"

using namespace vostrand;

namespace {

using Kind = Event::Kind;
const std::string hostile = "5_1 \"<&]]>'\n</script>\x01\xff\xc3\xa9";

// A finished run, one that failed twice, one that misses timing and one that never started.
SweepResult Rich() {
  SweepResult result;
  result.started = "2026-11-23T01:18:20Z";
  result.tool_arguments = {hostile};
  result.inputs.emplace_back().modified_ns = 1795396700123456789;
  result.preferences.emplace_back().penalty = std::numeric_limits<float>::infinity();
  result.promoted.emplace_back().state = PromotedFile::State::differs;
  result.odds.chances = {{5, 0.5, 0.1, 0.9}};
  result.odds.best = {{1, 0.25}};
  result.runs.resize(4);
  for (RunResult& run : result.runs) {
    run.record.name = hostile;
    run.record.status = 0;
    run.record.started = true;
    run.steps = {{"/opt/par", hostile}, {}, {"sorv"}};
  }
  result.runs[0].score = -1.0F / 3;
  result.runs[0].preferences.resize(1);
  result.runs[0].preferences[0].slack_ns = 1e-45F;
  result.runs[0].preferences[0].contribution = -0.0F;
  result.runs[1].record.name = "5_2";
  result.runs[1].record.status = 9;
  TryRecord attempt;
  attempt.started_seconds = 0.1 + 1.0 / 3;
  attempt.ended_seconds = 11.7;
  attempt.outcome.exit_code = 139;
  result.runs[1].record.tries = {attempt, attempt};
  result.runs[1].record.tries[1].number = 2;
  result.runs[2].has_row = true;
  result.runs[2].timing_score = 318;
  result.runs[2].score = std::nanf("");
  result.runs[3].record.status = cancelled_status;
  result.runs[3].record.started = false;
  result.order = {0, 2};
  return result;
}

std::string ReadAll(int file) {
  std::string text;
  char piece[4096];
  for (ssize_t count; (count = read(file, piece, sizeof piece)) > 0;)
    text.append(piece, static_cast<std::size_t>(count));
  return text;
}

class RecordsTest : public ScratchTest {
 protected:
  RecordsTest() {
    std::signal(SIGPIPE, SIG_IGN);
    mkfifo(pipe.c_str(), 0600);
    header.started = "2026-11-23T01:18:20Z";
    header.runs = {hostile};
  }
  int argc = 0;
  QCoreApplication app{argc, nullptr};
  const std::string pipe = Path("pipe");
  EventHeader header;
};

}  // namespace

TEST_F(RecordsTest, TheResultIsReadBackAndWrittenTheSame) {
  const QByteArray json = ResultJson(Rich());
  WriteFile("sample_result.json", json);  // Held against its schema by the test "schemas".
  SweepResult read;
  std::string why;
  ASSERT_TRUE(ReadResult(json, read, why)) << why;
  EXPECT_EQ(ResultJson(read), json);
  EXPECT_EQ(read.runs[1].record.tries[0].started_seconds, 0.1 + 1.0 / 3);
  EXPECT_EQ(read.runs[0].preferences[0].slack_ns, 1e-45F);
  EXPECT_EQ(read.runs[0].steps[2], std::vector<std::string>{"sorv"});
  EXPECT_EQ(read.inputs[0].modified_ns, 1795396700123456789);
  EXPECT_FALSE(read.runs[2].score || read.runs[3].record.started || read.runs[3].has_row);

  const auto refusal = [&](const char* before, const char* after) {
    EXPECT_FALSE(ReadResult(QByteArray(json).replace(before, after), read, why));
    return why;
  };
  EXPECT_EQ(refusal("\"version\": 1,", "\"version\": 2,"), "is of another version than 1");
  EXPECT_EQ(refusal("        2\n", "        4\n"), "cannot be read: order[1]: is out of range");
  EXPECT_EQ(refusal("\"exit_code\": 139", "\"exit_code\": 0.5"),
            "cannot be read: runs[1].tries[0].exit_code: is not a whole number in range");
  EXPECT_EQ(refusal("\"preference\": 0", "\"preference\": 1"),
            "cannot be read: runs[0].preferences[0].preference: is out of range");
  EXPECT_EQ(refusal("differs", "fine"), "cannot be read: promoted[0].state: \"fine\" is not known");
  for (const char* text : {"", "[]", "{", "null"}) EXPECT_FALSE(ReadResult(text, read, why)) << text;
}

TEST_F(RecordsTest, EveryEventIsALineThatIsReadBack) {
  EventLog log(Path("events"));
  log.Begin(header);
  std::string lines = JsonLine(ToJson(header)).toStdString();
  for (int kind = 0; kind <= static_cast<int>(Kind::sweep_finished); ++kind) {
    Event event(static_cast<Kind>(kind));
    event.at_seconds = 0.1 * kind;
    event.slot = 1;
    event.callback = event.kind == Kind::step_started;
    event.outcome.message = event.message = hostile;
    event.verdict.score = 0.1F;
    log.On(event);
    const QJsonObject written = ToJson(event, hostile);
    lines += JsonLine(written).toStdString();
    Event read(Kind::stopping);
    ASSERT_TRUE(FromJson(written, read));
    EXPECT_EQ(read.kind, event.kind);
    EXPECT_EQ(ToJson(read, hostile), written);
  }
  EXPECT_EQ(Read("events"), lines);
  WriteFile("sample_events.jsonl", lines.c_str());  // Held against its schema by the test "schemas".
}

TEST_F(RecordsTest, AReaderOfEventsNeverHoldsUpTheSweep) {
  EXPECT_EQ(EventLog(pipe).Message(), "cannot write " + pipe + ": nobody reads this pipe");
  const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  EventLog log(pipe);
  log.Begin(header);
  Event event(Kind::run_finished);
  event.message.assign(3000, 'x');
  for (int i = 0; i < 500; ++i) log.On(event);  // 1.5 MB: more than the pipe and the buffer hold.
  std::string text;
  for (std::string piece; !(piece = ReadAll(reader)).empty(); app.processEvents()) text += piece;
  const auto lines = QByteArray::fromStdString(text).trimmed().split('\n');
  EXPECT_GT(lines.size(), 300) << "the event loop writes on";
  for (const QByteArray& line : lines)
    EXPECT_TRUE(QJsonDocument::fromJson(line).isObject()) << "torn: " << line.left(80).data();
  EXPECT_EQ(log.Message(),
            std::to_string(501 - lines.size()) + " events are not in " + pipe + ": its reader was too slow");
  close(reader);
  log.On(event);
  EXPECT_EQ(log.Message(), "cannot write " + pipe + ": its reader has gone");
}

TEST_F(RecordsTest, JUnitAndTraceHoldAnyName) {
  SweepResult result = Rich();
  EXPECT_EQ(JUnit(result).find("misses"), std::string::npos);
  result.options.require_timing = true;
  const std::string report = JUnit(result);
  QXmlStreamReader xml(QString::fromStdString(report));
  while (!xml.atEnd()) xml.readNext();
  EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
  EXPECT_NE(report.find("/script&gt;\ufffd\ufffd\u00e9"), std::string::npos) << report;
  for (const char* verdict : {"failures=\"2\" errors=\"1\" skipped=\"1\"", "has no place-and-route result",
                              "failed with 9", "misses timing by 318 ps", "not started"})
    EXPECT_NE(report.find(verdict), std::string::npos) << verdict;

  const auto bars = QJsonDocument::fromJson(TraceJson(result))["traceEvents"].toArray();
  EXPECT_EQ(bars.last()["name"].toString(), "5_2 par (try 2) failed");
  EXPECT_EQ(bars.at(bars.size() - 2)["name"].toString(), "5_2 par retried");
  EXPECT_EQ(bars.last()["ts"].toInteger(), 433333);
  EXPECT_EQ(bars.last()["dur"].toInteger(), 11700000 - 433333);
}

TEST_F(RecordsTest, AFileIsReplacedWholeAndAPipeWrittenTo) {
  EXPECT_EQ(WriteFile(Write("old", "old"), "new"), "");
  EXPECT_EQ(Read("old"), "new");
  EXPECT_EQ(WriteFile(Path("caf\xe9"), "x"), "");
  EXPECT_EQ(Read("caf\xe9"), "x") << "under the very bytes of its name";
  EXPECT_EQ(WriteFile(pipe, "x"), "cannot write " + pipe + ": nobody reads this pipe");
  const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(WriteFile(pipe, "whole"), "");
  EXPECT_EQ(ReadAll(reader), "whole");
  close(reader);
  EXPECT_NE(WriteFile("/dev/full", "x").find("/dev/full: No space left"), std::string::npos);
}
