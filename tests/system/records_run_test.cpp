// The records of a real sweep: all of them tell what the library told, and keep to their schemas.
#include <fcntl.h>
#include <sys/stat.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "common/host_run.h"

namespace {

class RecordsRunTest : public HostTest {
 protected:
  QJsonObject ReadJson(const std::string& name) const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(Read(name))).object();
  }
  // Empty when the file keeps to the schema.
  std::string Invalid(const std::string& schema, const std::string& file,
                      const QStringList& more = {}) const {
    QProcess validator;
    validator.setProcessChannelMode(QProcess::MergedChannels);
    validator.start(VOSTRAND_SOURCE_DIR "/tests/system/validate_records.py",
                    QStringList{VOSTRAND_SOURCE_DIR "/docs/schemas/" + QString::fromStdString(schema),
                                QString::fromStdString(Path(file))} +
                        more);
    validator.waitForFinished();
    return validator.readAll().toStdString() + (validator.exitCode() == 0 ? "" : "!");
  }
};

}  // namespace

TEST_F(RecordsRunTest, TellWhatTheLibraryTold) {
  Write("w/behave/5_4", "exit 9\n");
  // A later run's report that lists one preference less: the value of the run before stands.
  std::string report = Read("w/prepared/5_2.twr");
  const std::size_t begin = report.find("INPUT_SETUP");
  const std::size_t end = report.find("|     2\n", begin);
  ASSERT_NE(end, std::string::npos);
  report.erase(begin, report.rfind('\n', end) - begin);
  Write("w/prepared/5_2.twr", report);
  EXPECT_EQ(Sweep({"--retries", "1", "--json", "r.json", "--events", "e.jsonl", "--junit", "j.xml", "--trace",
                   "t.json"}),
            4);
  EXPECT_EQ(Invalid("result.schema.json", "r.json"), "");
  EXPECT_EQ(Invalid("event.schema.json", "e.jsonl", {"--lines"}), "");

  const QJsonObject result = ReadJson("r.json");
  const QJsonArray runs = result["runs"].toArray();
  std::string order;
  for (const auto& index : result["order"].toArray())
    order += runs[index.toInt()].toObject()["name"].toString().toStdString() + " ";
  EXPECT_EQ(order, CsvOrder());
  for (const auto& value : runs) {
    const QJsonObject run = value.toObject();
    SCOPED_TRACE(run["name"].toString().toStdString());
    EXPECT_EQ(run["score"].isNull(), run["status"].toInt() != 0);
    float score = 0;
    for (const auto& part : run["preferences"].toArray())
      score += static_cast<float>(part.toObject()["contribution"].toDouble());
    EXPECT_EQ(score, static_cast<float>(run["score"].toDouble())) << "the library's sum, to the bit";
    EXPECT_EQ(run["tries"].toArray().size(), 2) << "two steps, or one tried twice";
  }
  const QJsonArray second = runs[1].toObject()["preferences"].toArray();
  EXPECT_FALSE(second[0].toObject()["carried_over"].toBool());
  EXPECT_TRUE(second[1].toObject()["carried_over"].toBool());
  for (const auto& file : result["promoted"].toArray())
    EXPECT_EQ(file.toObject()["state"].toString(), "equal")
        << file.toObject()["path"].toString().toStdString();
  EXPECT_EQ(result["exit_code"].toInt(), 4);
  EXPECT_NE(Read("j.xml").find("tests=\"4\" failures=\"0\" errors=\"1\""), std::string::npos)
      << Read("j.xml");
  EXPECT_TRUE(ReadJson("t.json")["traceEvents"].isArray());
}

TEST_F(RecordsRunTest, OnesThatCannotBeWrittenAreMissing) {
  mkfifo(Path("pipe").c_str(), 0600);
  const int reader = open(Path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(Sweep({"--events", "pipe", "--json", "/dev/full", "--trace", "t.json"}), 6) << err;
  EXPECT_NE(out.find("missing: cannot write /dev/full"), std::string::npos) << out;
  EXPECT_TRUE(Exists("t.json"));
  char text[65536];
  const ssize_t length = read(reader, text, sizeof text);
  close(reader);
  EXPECT_NE(std::string(text, static_cast<std::size_t>(length)).find("\"sweep_finished\""),
            std::string::npos);
}

// What a script relies on: 2 is misuse, 1 is that nothing could be shown, and the page is the one of the
// sweep.
TEST_F(RecordsRunTest, ViewTellsMisuseFromFailure) {
  ASSERT_EQ(Sweep({"--json", "r.json", "--html", "r.html"}), 0);
  const auto view = [&](const QStringList& arguments) {
    process.start(QString(VOSTRAND_PROGRAM) + "-view", arguments);
    return Wait();
  };
  EXPECT_EQ(view({"page", "r.json", "again.html"}), 0) << err;
  EXPECT_TRUE(Read("again.html") == Read("r.html") && Read("r.html").size() > 1000);
  for (const QStringList& misuse : {QStringList{}, {"show"}, {"look"}, {"explain", "r.json", "5_9"}})
    EXPECT_TRUE(view(misuse) == 2 && out.empty() && err.starts_with("vostrand-view: ")) << err;
  for (const QStringList& failure : {QStringList{"show", "w"},
                                     {"explain", "w/top.prf"},
                                     {"status", "w/prepared"},
                                     {"status", "w/top.prf"},
                                     {"page", "r.json", "none/page"},
                                     {"page", "w/top.prf", "page"}})
    EXPECT_TRUE(view(failure) == 1 && out.empty() && err.starts_with("vostrand-view: ")) << err;
  EXPECT_FALSE(Exists("page"));
}
