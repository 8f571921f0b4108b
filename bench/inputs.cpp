#include "work.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "results/par_result.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t block_size = 1UL << 20;

std::ofstream Create(const std::string& path) {
  if (std::ofstream file(path, std::ios::binary); file) return file;
  throw std::runtime_error("cannot write " + path);
}

template <typename... Values>
std::string Text(const char* format, Values... values) {
  char text[1024];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

// About `bytes` bytes of lines, made by `line` from a running number: one block of them again and again.
template <typename Line>
void Fill(std::ofstream& file, std::size_t bytes, Line line) {
  std::string block;
  for (unsigned i = 0; block.size() < std::min(bytes, block_size); ++i) block += line(i * 2654435761U);
  for (std::size_t written = 0; written < bytes; written += block.size()) file << block;
}

std::string PathDetail(unsigned n) {
  constexpr const char* forms[] = {
      "Passed: The following path meets requirements by %u.%03uns\n\n",
      " Logical Details:  Cell type  Pin type       Cell/ASIC name  (clock net +/-)  %u %u\n\n",
      "   Source:         FF         Q              SLICE_%u_reg[%u]  (from clk_c +)\n",
      "   Destination:    FF         Data in        core/alu/Sum_%u_%u  (to clk_c +)\n",
      "   Delay:  %u.%03uns  (45.1%% logic, 54.9%% route), 7 logic levels.\n",
      "ROUTE  3  0.412  R%uC%uA.Q0 to  R7C31D.A1 core/alu/sum_17 (to clk_c)\n"};
  return Text(forms[n / 65536 % std::size(forms)], n % 97, n % 1000);
}

std::string LogLine(unsigned n) {
  constexpr const char* forms[] = {
      "Level %u, iteration %u\n", "%u(0.%02u%%) conflicts; 12(3%%) untouched conns; 0 (nbr) score;\n",
      "Estimated worst slack/total negative slack<setup>: %u.%03uns/0.000ns; real time: 7 secs\n",
      "Placing comp SLICE_%u at R%uC12D. Level/Cost 100\n"};
  return Text(forms[n / 65536 % std::size(forms)], n % 97, n % 1000);
}

std::string PreferenceName(int n, std::size_t length) {
  std::string name = Text("FREQUENCY NET \"core_%d/clk", n);
  while (name.size() + 16 < length) name += "_domain";
  return name + Text("\" %d.000000 MHz ", 100 + n % 50);
}

void WriteTable(std::ofstream& file, int preferences, std::size_t name_length, int mhz) {
  const std::string rule(75, '-');
  const std::string separator = Text("%-40s|%13s|%13s|\n", "", "", "");
  file << "Preference                              |   Constraint|       Actual|Levels\n";
  file << rule << '\n' << separator;
  for (int n = 0; n < preferences; ++n) {
    const std::string name = PreferenceName(n, name_length) + ";";
    for (std::size_t at = 0; at < name.size(); at += 40) {
      const bool last = at + 40 >= name.size();
      const std::string constraint = last ? Text("%d.000 MHz", 100 + n % 50) : "";
      const std::string actual = last ? Text("%d.%03d MHz", mhz + n % 30, n % 1000) : "";
      file << Text("%-40s|%13s|%13s|%6s\n", name.substr(at, 40).c_str(), constraint.c_str(), actual.c_str(),
                   last ? "4" : "");
    }
    file << separator;
  }
  file << rule << "\n\n";
}

}  // namespace

void WriteTimingReport(const std::string& path, std::size_t bytes, int preferences, std::size_t name_length,
                       int mhz) {
  std::ofstream file = Create(path);
  WriteTable(file, preferences, name_length, mhz);
  const auto table = static_cast<std::size_t>(file.tellp());
  if (table < bytes) Fill(file, bytes - table, PathDetail);
  file << "\nTiming summary (Setup):\nTiming errors: 0  Score: 0\n";
}

void WriteParResult(const std::string& path, std::size_t bytes, const std::string& name, int score) {
  std::ofstream file = Create(path);
  Fill(file, bytes, LogLine);
  for (const char* const heading : orlo::vostrand_lib::par_table_headings) file << heading << '\n';
  file << Text("%-13s0            0.150        %-13d0.286        0            02:13        Complete\n",
               (name + "   *").c_str(), score);
}

void WritePreferences(const std::string& path, int statements) {
  std::ofstream file = Create(path);
  file << "# preferences\n\n";
  for (int n = 0; n < statements; ++n) {
    const std::string name = PreferenceName(n, 40);
    const std::size_t quote = name.rfind('"') + 1;
    if (n % 10 == 0)
      file << name << Text("; # w %d.%d p %d\n", n % 7, n % 10, n % 5);
    else if (n % 10 == 1)
      file << name.substr(0, quote) << "  # by hand\n    " << name.substr(quote) << ";\n";
    else if (n % 10 == 2)
      file << "FREQUENCY\n# of this net\n  " << name.substr(10) << "\n;\n";
    else
      file << "LOCATE COMP \"" << n << "\" SITE \"R" << n % 40 << "C" << n % 60 << "\" ;\n";
  }
}

void WriteDesign(const std::string& folder, int runs, int preferences) {
  fs::create_directories(folder);
  Create(folder + "/top_map.ncd") << "design";
  Create(folder + "/top.p2t") << Text("-w\n-l 5\n-i 15\n-n %d\n-t 1\n-s 1\n-c 0\n-e 0\n", runs);
  std::ofstream file = Create(folder + "/top.prf");
  for (int n = 0; n < preferences; ++n) file << PreferenceName(n, 40) << "; # w 2 p " << n % 5 << '\n';
}

void WriteRunDirectory(const std::string& folder, const std::string& run, std::size_t bytes) {
  fs::create_directories(folder + "/" + run + ".dir");
  for (const char* const extension : {".ncd", ".pad", ".dly", ".icf"}) {
    const std::string path = folder + "/" + run + ".dir/" + run + extension;
    Create(path);
    fs::resize_file(path, bytes);
  }
}

void WriteRuns(const std::string& folder, int runs, int preferences, std::size_t report_bytes) {
  const std::string output = folder + "/top.dir";
  fs::create_directories(output);
  for (int n = 1; n <= runs; ++n) {
    const std::string name = "5_" + std::to_string(n);
    WriteTimingReport(output + "/" + name + ".twr", report_bytes, preferences, 40, 90 + n % 40);
    WriteParResult(output + "/" + name + ".par", 20000, name, n % 7);
    WriteRunDirectory(output, name, 100000);
  }
}

}  // namespace bench
