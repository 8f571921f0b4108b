// The program vostrand-view: shows what vostrand has written.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <iostream>

#include "page/report_page.h"
#include "records/result_json.h"
#include "records/write_file.h"
#include "view/explain.h"
#include "view/show.h"
#include "view/status.h"

namespace {

using namespace vostrand;

struct Request {
  std::string file = ".";
  std::vector<std::string> runs;
  std::string page;
};

// Of standard output; 0 when that is no terminal.
std::size_t Width() {
  winsize size = {};
  if (isatty(STDOUT_FILENO) == 0) return 0;
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col >= 20 ? size.ws_col : 80;
}

QByteArray ReadAll(const std::string& path) {
  // Opened by hand: a name need not be text.
  const int opened = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (opened < 0) throw std::runtime_error(path + ": " + std::strerror(errno));
  QFile file;
  if (!file.open(opened, QFile::ReadOnly, path == "-" ? QFile::DontCloseHandle : QFile::AutoCloseHandle))
    throw std::runtime_error(path + ": " + file.errorString().toStdString());
  const QByteArray data = file.readAll();
  if (file.error() != QFile::NoError) throw std::runtime_error(path + ": cannot be read");
  return data;
}

SweepResult Read(const std::string& path, const QByteArray& json) {
  SweepResult result;
  std::string why;
  if (!ReadResult(json, result, why)) throw std::runtime_error(path + ": " + why);
  return Printable(result);
}

void Explain(const Request& request) {
  const SweepResult result = Read(request.file, ReadAll(request.file));
  std::vector<std::size_t> runs;
  const std::string why = ChooseRuns(result, request.runs, runs);
  if (!why.empty()) throw CLI::ValidationError(request.file, why);
  std::cout << ExplainText(result, runs, Width());
}

void Status(const Request& request) {
  const std::string file = FindJournal(request.file);
  if (file.empty()) throw std::runtime_error(request.file + ": there is no sweep in this folder");
  const bool locked = IsLocked(file);  // Asked first: a sweep that ends meanwhile has ended in the journal.
  Screen screen;
  screen.width = Width() > 0 ? Width() : 1000;
  screen.height = 1000;  // It may scroll.
  const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
  const std::string text = StatusText(ReadAll(file).toStdString(), locked, now, screen);
  if (text.empty()) throw std::runtime_error(file + ": is no journal");
  std::cout << text;
}

void WritePage(const Request& request) {
  const QByteArray json = ReadAll(request.file);
  Read(request.file, json);  // Says best what is wrong with it.
  std::string why;
  const QByteArray page = ReportPage(json, why);
  if (why.empty()) why = WriteFile(request.page, page);
  if (!why.empty()) throw std::runtime_error(why);
}

void AddCommands(CLI::App& parser, Request& request) {
  CLI::App* const show = parser.add_subcommand("show", "The ranking, and what did not finish");
  CLI::App* const explain = parser.add_subcommand("explain", "Why one run beats another");
  CLI::App* const status = parser.add_subcommand("status", "How far a sweep has come");
  CLI::App* const page = parser.add_subcommand("page", "The report page, as vostrand --html writes it");
  for (CLI::App* command : {show, explain, page})
    command->add_option("RESULT", request.file, "What vostrand --json wrote; -: standard input")->required();
  explain->add_option("RUN", request.runs, "One or two finished runs (default: the best and the second)");
  status->add_option("JOURNAL", request.file, "Its journal, or the folder it runs in (default: this one)");
  page->add_option("FILE", request.page, "Where to write it")->required();
  show->callback([&] { std::cout << ShowText(Read(request.file, ReadAll(request.file)), Width()); });
  explain->callback([&] { Explain(request); });
  status->callback([&] { Status(request); });
  page->callback([&] { WritePage(request); });
  parser.require_subcommand(1);
  parser.footer(
      "Examples:\n"
      "  vostrand-view explain top.json 5_3 5_7    why is one ranked before the other?\n"
      "  vostrand-view status                      is the sweep in this folder still at work?\n");
}

int Fail(int code, const std::string& why) {
  std::cerr << "vostrand-view: " << Shown(why) << "\n";
  return code;
}

int Run(int argc, char** argv) {
  CLI::App parser("Shows what vostrand has written.", "vostrand-view");
  Request request;
  AddCommands(parser, request);
  try {
    parser.parse(argc, argv);
  } catch (const CLI::CallForHelp& help) {
    parser.exit(help);
  } catch (const CLI::ParseError& error) {
    return Fail(2, error.what());
  }
  return std::cout.flush() ? 0 : Fail(1, "cannot write to standard output");
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication app(argc, argv);
  std::setlocale(LC_NUMERIC, "C");  // Qt has set the user's; numbers are the same everywhere.
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    return Fail(1, error.what());
  }
}
