#include "page/report_page.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QRegularExpression>

#include "page/page_data.h"
#include "page/sections.h"
#include "records/result_json.h"

namespace vostrand {

// Joined from assets/ when the program is built.
extern const std::string_view page_style;
extern const std::string_view page_script;

namespace {

// How a content security policy names a script or style sheet within the page.
std::string Source(std::string_view text) {
  const QByteArray bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
  return "'sha256-" + QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toBase64().toStdString() +
         "'";
}

void WriteHead(Html& page, const SweepResult& result) {
  page << "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8><meta http-equiv=Content-Security-Policy "
          "content=\""
          "default-src 'none'; script-src "
       << Source(page_script) << "; style-src " << Source(page_style)
       << "; base-uri 'none'; form-action 'none'\">"
       << "<meta name=viewport content='width=device-width, initial-scale=1'><meta name=color-scheme "
          "content='light "
          "dark'><title>";
  if (!result.order.empty()) page << result.runs[result.order.front()].record.name << " is best – ";
  if (!result.tool_arguments.empty()) page << result.tool_arguments.front() << " – ";
  page << "vostrand</title><style>";
  page.Markup(page_style);
  page << "</style></head>";
}

// A link to every section, named as its heading.
void WriteContents(Html& page, const std::string& body) {
  static const QRegularExpression heading("<section id=(\\w+)( hidden)?><h2>([^<]*)");
  page << "<nav aria-label=Contents><ul>";
  for (const auto& match : heading.globalMatch(QString::fromStdString(body)))
    page << "<li" << match.captured(2).toStdString() << "><a href='#" << match.captured(1).toStdString()
         << "'>" << match.captured(3).toStdString() << "</a>";
  page << "</ul></nav>";
}

}  // namespace

QByteArray ReportPage(const QByteArray& result_json, std::string& why) {
  SweepResult result;
  if (!ReadResult(result_json, result, why)) return {};
  // Weights and contributions can only be played with where there are scores.
  const bool interactive = result.timing && !result.order.empty() && !result.preferences.empty();
  Html body;
  for (const auto write : {WriteRanking, WriteScores, WriteSlackMatrix, WriteSlackSpread, WriteMoreRuns})
    write(body, result);
  if (interactive)
    body << "<section id=whatif hidden><h2>What if</h2></section><section id=compare "
            "hidden><h2>Compare</h2></section>";
  for (const auto write : {WriteTimeline, WriteCost, WriteOrigin}) write(body, result);

  Html page;
  WriteHead(page, result);
  page << "<body>";
  WriteContents(page, body.Text());
  page << "<main>";
  WriteVerdict(page, result);
  page.Markup(body.Text());
  page << "</main><script type='application/json' id=data>";
  const QByteArray data = PageData(QJsonDocument::fromJson(result_json).object());
  page.Markup({data.data(), static_cast<std::size_t>(data.size())});
  page << "</script><script type=module>";
  page.Markup(page_script);
  page << "</script></body></html>\n";
  return QByteArray::fromStdString(page.Text());
}

}  // namespace vostrand
