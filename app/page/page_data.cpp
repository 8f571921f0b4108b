#include "page/page_data.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace vostrand {
namespace {

// The shortest digits from which a script gets the 32-bit value back, which it reads as 64 bits first.
QString Digits(const QJsonValue& number) {
  if (!number.isDouble()) return "NaN";
  const auto value = static_cast<float>(number.toDouble());
  char text[40];
  *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
  double read = 0;
  std::from_chars(text, text + sizeof text, read);
  if (static_cast<float>(read) != value)
    *std::to_chars(text, text + sizeof text - 1, number.toDouble()).ptr = '\0';
  return QString::fromLatin1(text);
}

QJsonObject Columns(const QJsonArray& preferences) {
  QJsonArray index;
  QStringList slacks;
  QJsonArray actual;
  QJsonArray carried_over;
  bool all_in_turn = true;
  for (const QJsonValue value : preferences) {
    const QJsonObject entry = value.toObject();
    if (entry["carried_over"].toBool()) carried_over.append(index.size());
    all_in_turn = all_in_turn && entry["preference"].toInt() == index.size();
    index.append(entry["preference"]);
    slacks.append(Digits(entry["slack_ns"]));
    const QString unit = entry["unit"].toString().remove('(').remove(')');
    actual.append((entry["actual"].toString() + ' ' + unit).trimmed());
  }
  QJsonObject columns{{"slack_ns", slacks.join(' ')}, {"actual", actual}, {"carried_over", carried_over}};
  if (!all_in_turn) columns["preference"] = index;
  return columns;
}

}  // namespace

QByteArray PageData(QJsonObject result) {
  QJsonArray runs;
  for (const QJsonValue value : result["runs"].toArray()) {
    QJsonObject run = value.toObject();
    run["columns"] = Columns(run.take("preferences").toArray());
    runs.append(run);
  }
  result["runs"] = runs;
  QJsonArray preferences;
  for (const QJsonValue value : result["preferences"].toArray()) {
    QJsonObject preference = value.toObject();
    const QJsonValue text = preference.take("text");
    if (!text.toString().isEmpty()) preference["name"] = text;
    preferences.append(preference);
  }
  result["preferences"] = preferences;
  // No text can end the script element, or begin a comment in it.
  return QJsonDocument(result).toJson(QJsonDocument::Compact).replace('<', "\\u003c");
}

}  // namespace vostrand
