import { annotations } from "./annotations.mjs";
import { scoresOf } from "./data.mjs";
import { element, shown, signed, table } from "./dom.mjs";
import { flips } from "./flips.mjs";
import { contribution, ranked } from "./score.mjs";

const firstRows = 12;

// How far apart a preference sets the runs: those that matter most come first.
function influence(data) {
  const low = data.preferences.map(() => Infinity);
  const high = data.preferences.map(() => -Infinity);
  for (const run of data.runs)
    run.slack.forEach((slack, i) => {
      const preference = run.preference[i];
      const part = contribution(slack, data.weights[preference] || 1, data.penalties[preference] || 1);
      low[preference] = Math.min(low[preference], part);
      high[preference] = Math.max(high[preference], part);
    });
  return low.map((value, i) => high[i] - value);
}

export function whatIf(section, data) {
  const chosen = { weight: data.weights.slice(), penalty: data.penalties.slice() };
  const ranking = element("div");
  const flipList = element("ul", { class: "flips" });
  const text = element("textarea", { readonly: true, rows: 5, "aria-label": "Annotations", spellcheck: "false" });
  const said = element("span", { role: "status" });
  const rows = data.preferences.map((preference, i) => ({ row: null, preference, i }));
  const spread = influence(data);
  rows.sort((a, b) => spread[b.i] - spread[a.i]);
  const sliders = table("Weights and penalties", [["Preference"], ["Weight"], ["Penalty"]], []);
  const filter = element("input", { type: "search", placeholder: "Find a preference", "aria-label": "Find a preference",
    oninput: list });
  const all = element("button", { type: "button", onclick: () => list(all.dataset.all = "yes") });
  let pending = 0;

  function control(kind, i) {
    const value = chosen[kind][i];
    const unit = Math.abs(data.preferences[i][`default_${kind}`]) || 1;
    const max = Math.max(10 * unit, 2 * value);
    const label = `${kind} of ${data.preferences[i].name}`;
    const set = (from, to) => {
      if (!(from.valueAsNumber >= 0)) return;
      to.value = from.value;
      chosen[kind][i] = from.valueAsNumber;
      pending ||= requestAnimationFrame(update);
    };
    const slider = element("input", { type: "range", min: 0, max, step: unit / 20, value, "aria-label": label,
      oninput: () => set(slider, number) });
    const number = element("input", { type: "number", min: 0, step: "any", value: +value.toPrecision(7),
      "aria-label": `${label}, number`, oninput: () => set(number, slider) });
    return element("td", { class: "control" }, slider, number);
  }

  function list() {
    const wanted = rows.filter(({ preference }) => preference.name.toLowerCase().includes(filter.value.toLowerCase()));
    const some = all.dataset.all ? wanted : wanted.slice(0, firstRows);
    for (const entry of some)
      entry.row ??= element("tr", {}, element("th", { scope: "row", title: entry.preference.name },
        entry.preference.name), control("weight", entry.i), control("penalty", entry.i));
    sliders.querySelector("tbody").replaceChildren(...some.map(({ row }) => row));
    all.hidden = some.length === wanted.length;
    all.textContent = `Show all ${wanted.length}`;
  }

  function update() {
    pending = 0;
    const scores = scoresOf(data, chosen.weight, chosen.penalty);
    const order = ranked(data.runs, scores);
    showRanking(order, scores);
    showFlips(flips(order, scores, chosen.weight, chosen.penalty));
    text.value = annotations(data.preferences, chosen.weight, chosen.penalty);
    said.textContent = "";
  }

  function showRanking(order, scores) {
    const move = (run, place) => data.order.indexOf(run) - place;
    ranking.replaceChildren(table("Ranking for these weights",
      [["Rank", "n"], ["Run"], ["Score", "n"], ["Was", "n"], ["Moved", "n"]], order.map((run, place) => {
        const moved = move(run, place);
        const arrow = moved === 0 ? "" : moved > 0 ? `▲ ${moved}` : `▼ ${-moved}`;
        return element("tr", { "data-run": run.index, class: place === 0 && "best" },
          element("td", { class: "n" }, place + 1), element("th", { scope: "row" }, run.name),
          element("td", { class: "n" }, shown(scores[run.index])), element("td", { class: "n" }, shown(run.score)),
          element("td", { class: moved > 0 ? "n good" : "n bad" }, arrow));
      })));
  }

  function showFlips(found) {
    const line = ({ kind, preference, value, to, share, place, ahead, behind }) => element("li", {},
      `${behind.name} overtakes ${ahead.name} (place ${place}) when the ${kind} of `,
      element("code", {}, data.preferences[preference].name), ` goes from ${shown(value)} to ${shown(to)} `,
      `(${signed(share * 100).replace(/\.?\d\d$/, "")} %)`);
    const shortest = found.slice(0, 6).sort((a, b) => a.place - b.place);
    flipList.replaceChildren(...shortest.map(line));
    if (found.length === 0)
      flipList.append(element("li", {}, "No two neighbours change places when one weight or penalty changes by 25 %."));
  }

  function reset() {
    chosen.weight.set(data.weights);
    chosen.penalty.set(data.penalties);
    for (const entry of rows) entry.row = null;
    list();
    update();
  }

  async function copy() {
    text.select();
    const done = document.execCommand("copy");
    said.textContent = done ? "Copied." : "Selected: copy it with your keyboard.";
  }

  section.append(element("p", { class: "lead" }, "Change weights and penalties: the runs are ranked again by the program's own formula."),
    element("div", { class: "pair" },
      element("div", {}, element("p", { class: "tools" }, filter, all,
        element("button", { type: "button", onclick: reset }, "Reset")), sliders), ranking),
    element("h3", {}, "Small changes that change the ranking"), flipList,
    element("h3", {}, "As annotations"),
    element("p", {}, "The comments for the preference file, each behind its statement there. Blanks in names do not count."),
    text, element("p", { class: "tools" }, element("button", { type: "button", onclick: copy }, "Copy as annotations"), said));
  list();
  update();
}
