#include "observe/progress_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <filesystem>

#include "observe/eta.h"
#include "result/odds.h"

namespace vostrand {
namespace {

constexpr const char* plain = "";
constexpr const char* red = "31";
constexpr const char* green = "32";
constexpr const char* dim = "2";

std::string Painted(const std::string& text, const char* colour, bool wanted) {
  return wanted && *colour ? "\x1b[" + std::string(colour) + "m" + text + "\x1b[0m" : text;
}

std::string Decimals(double value, int decimals) {
  char text[64];
  const auto done = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  return done.ec == std::errc() ? std::string(text, done.ptr) : "?";
}

// "1:12" or "1:02:03".
std::string ClockText(double seconds) {
  const long all = std::lround(std::clamp(seconds, 0.0, 1e9));
  const auto two = [](long number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  const long minutes = all / 60;
  const std::string head =
      minutes < 60 ? std::to_string(minutes) : std::to_string(minutes / 60) + ":" + two(minutes % 60);
  return head + ":" + two(all % 60);
}

// Takes the first character off the text; gives what is shown for it and how many cells that takes.
std::pair<std::string, std::size_t> TakeCharacter(std::string_view& text) {
  std::mbstate_t state{};
  wchar_t character = 0;
  const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
  const bool is_bad = length > text.size();
  const std::string_view taken = text.substr(0, is_bad ? 1 : std::max<std::size_t>(length, 1));
  text.remove_prefix(taken.size());
  if (is_bad) return {"?", 1};
  const int cells = character == 0 ? -1 : wcwidth(character);
  if (cells < 0) return {" ", 1};
  return {std::string(taken), static_cast<std::size_t>(cells)};
}

std::size_t Cells(std::string_view text) {
  std::size_t cells = 0;
  while (!text.empty()) cells += TakeCharacter(text).second;
  return cells;
}

// A piece of a line. Where there is no room for all, the piece with the highest `dispensable` goes first.
struct Part {
  Part(std::string part_text, int how_dispensable, const char* part_colour, int part_group)
      : text(std::move(part_text)), dispensable(how_dispensable), colour(part_colour), group(part_group) {}
  std::string text;
  int dispensable;
  const char* colour;
  int group;  // A comma stands between parts of the same.
};

std::string Fitted(std::vector<Part> parts, const char* between_groups, const Screen& screen) {
  for (;;) {
    std::string bare;
    std::string line;
    int group = parts[0].group;
    for (const Part& part : parts) {
      const std::string separator = bare.empty() ? "" : part.group == group ? ", " : between_groups;
      bare += separator + part.text;
      line += separator + Painted(part.text, part.colour, screen.colour);
      group = part.group;
    }
    if (Cells(bare) <= screen.width) return line;
    if (parts.size() == 1) return Painted(Shown(bare, screen.width), parts[0].colour, screen.colour);
    parts.erase(std::max_element(parts.begin(), parts.end(),
                                 [](const Part& a, const Part& b) { return a.dispensable < b.dispensable; }));
  }
}

std::string BestText(const SweepState& state) {
  const Verdict& verdict = state.best_verdict;
  return "best " + Shown(state.names[*state.best]) +
         (verdict.score && std::isfinite(*verdict.score) ? " " + Decimals(*verdict.score, 3)
                                                         : " meets timing");
}

std::string RunLine(const SweepState& state, const SweepState::Running& run, double now,
                    std::size_t name_cells, const Screen& screen) {
  const std::string name = Shown(state.names[run.run]);
  const std::string program = run.step < state.programs.size() ? " " + Shown(state.programs[run.step]) : "";
  std::vector<Part> parts;
  parts.emplace_back(name + std::string(name_cells - Cells(name), ' '), 0, plain, 0);
  parts.emplace_back(std::to_string(run.step + 1) + "/" + std::to_string(state.steps) + program, 1, dim, 1);
  parts.emplace_back(ClockText(now - run.since), 2, dim, 2);
  if (!run.place.empty() || run.waits)
    parts.emplace_back(
        run.waits ? "waits" + (run.place.empty() ? "" : ": " + Shown(run.place)) : Shown(run.place),
        run.waits ? 0 : 2, dim, 4);
  if (run.try_number > 1) parts.emplace_back("try " + std::to_string(run.try_number), 3, plain, 3);
  return Fitted(std::move(parts), "  ", screen);
}

std::string StatusLine(const SweepState& state, double now, const Screen& screen) {
  std::vector<Part> parts;
  const auto add_count = [&](std::size_t count, const char* what, int dispensable, const char* colour) {
    if (count > 0) parts.emplace_back(std::to_string(count) + what, dispensable, colour, 0);
  };
  parts.emplace_back(std::to_string(state.Finished()) + " finished", 0, plain, 0);
  add_count(state.running.size() - state.Queued(), " running", 7, plain);
  add_count(state.Queued(), " queued", 8, plain);
  add_count(state.failed, " failed", 1, red);
  add_count(state.cancelled, " cancelled", 4, plain);
  add_count(state.Waiting(), state.stopping ? " not started" : " waiting", 8, plain);
  if (state.stopping) parts.emplace_back("stopping: " + Shown(state.stopped_because), 5, plain, 1);
  if (state.best) parts.emplace_back(BestText(state), 3, state.best_verdict.met == true ? green : plain, 2);
  parts.emplace_back(ClockText(now), 6, dim, 3);
  const double left = SecondsLeft(state, now).value_or(0);  // Below a second nobody knows.
  if (left >= 1) parts.emplace_back("about " + ClockText(left) + " left", 2, plain, 3);
  return Fitted(std::move(parts), " | ", screen);
}

}  // namespace

std::vector<std::string> ProgressText(const SweepState& state, double now, const Screen& screen) {
  const std::string odds = state.Finished() < 2 ? "" : OddsOf(state.verdicts).Sentence();
  const std::size_t below = odds.empty() ? 1 : 2;
  const std::size_t room = screen.height > below ? screen.height - below : 0;
  const std::size_t all = state.running.size();
  const std::size_t shown = all <= room ? all : room - std::min<std::size_t>(room, 1);

  std::vector<std::string> lines;
  std::size_t name_cells = 0;
  for (std::size_t i = 0; i < shown; ++i)
    name_cells = std::max(name_cells, Cells(Shown(state.names[state.running[i].run])));
  for (std::size_t i = 0; i < shown; ++i)
    lines.push_back(RunLine(state, state.running[i], now, name_cells, screen));
  if (shown < all && room > 0)
    lines.push_back(Shown("and " + std::to_string(all - shown) + " more", screen.width));
  lines.push_back(StatusLine(state, now, screen));
  if (!odds.empty()) lines.push_back(Painted(Shown(odds, screen.width), dim, screen.colour));
  return lines;
}

std::string EndedText(const std::string& name, const Event& event, double since, bool colour) {
  const double seconds = event.at_seconds - since;
  std::string text = Shown(name);
  if (event.kind == Event::Kind::run_restored) {
    text += " kept from before";
  } else {
    const std::string failed = "failed with " + std::to_string(event.status);
    text += event.status == 0                  ? " finished"
            : event.status == cancelled_status ? " cancelled"
                                               : " " + Painted(failed, red, colour);
    text += " after " + (seconds < 59.95 ? Decimals(seconds, 1) + " s" : ClockText(seconds));
  }
  if (event.verdict.score) text += ", score " + Decimals(*event.verdict.score, 3);
  if (event.verdict.met)
    text += *event.verdict.met ? ", " + Painted("timing met", green, colour) : ", timing not met";
  return text;
}

std::string SignOfLife(const SweepState& state, double now) {
  std::string text = std::to_string(std::lround(now / 60)) + " min: " + std::to_string(state.Finished()) +
                     " of " + std::to_string(state.names.size()) + " runs finished, " +
                     std::to_string(state.running.size() - state.Queued()) + " running";
  if (state.Queued() > 0) text += ", " + std::to_string(state.Queued()) + " queued";
  if (state.failed > 0) text += ", " + std::to_string(state.failed) + " failed";
  return state.best ? text + ", " + BestText(state) : text;
}

std::string Shown(std::string_view text, std::size_t cells) {
  wchar_t ignored = 0;
  std::mbstate_t state{};
  const bool utf8 = std::mbrtowc(&ignored, "\u2026", 3, &state) == 3;
  const std::size_t ellipsis_cells = utf8 ? 1 : 3;
  std::string shown;
  std::size_t width = 0;
  std::size_t cut = 0;  // Where an ellipsis still fits behind.
  while (!text.empty()) {
    const auto [character, character_cells] = TakeCharacter(text);
    if (width + character_cells > cells) return shown.substr(0, cut) + (utf8 ? "\u2026" : "...");
    width += character_cells;
    shown += character;
    if (width + ellipsis_cells <= cells) cut = shown.size();
  }
  return shown;
}

}  // namespace vostrand
