import { element, shown, signed, table } from "./dom.mjs";
import { contribution } from "./score.mjs";

const shownRows = 25;

// What each preference gave a run, by preference.
function partsOf(run, data) {
  const parts = new Map();
  run.slack.forEach((slack, i) => {
    const preference = run.preference[i];
    const value = contribution(slack, data.weights[preference], data.penalties[preference]);
    parts.set(preference, { value, slack, actual: run.actual[i] + (run.carried.has(i) ? " (an earlier run's)" : "") });
  });
  return parts;
}

function differences(a, b, data) {
  const [left, right] = [partsOf(a, data), partsOf(b, data)];
  const none = { value: 0, slack: NaN, actual: "–" };
  return data.preferences.map((preference, i) => {
    const [one, other] = [left.get(i) ?? none, right.get(i) ?? none];
    return { preference, one, other, difference: one.value - other.value };
  }).filter(({ difference }) => difference !== 0).sort((x, y) => Math.abs(y.difference) - Math.abs(x.difference));
}

function sentence(a, b, found) {
  const lead = a.score - b.score;
  if (found.length === 0) return `${a.name} and ${b.name} got the same from every preference.`;
  const [ahead, behind, way] = lead >= 0 ? [a, b, 1] : [b, a, -1];
  const start = lead === 0 ? `${a.name} and ${b.name} score the same` :
    `${ahead.name} is ahead of ${behind.name} by ${shown(Math.abs(lead))}`;
  const for_it = found.find(({ difference }) => difference * way > 0);
  const against = found.find(({ difference }) => difference * way < 0);
  const part = (entry, words) => (entry ? `${words} ${entry.preference.name} (${signed(entry.difference * way)})` : "");
  return `${start}${part(for_it, "; most comes from")}${part(against, "; most against it from")}.`;
}

function bar(difference, largest) {
  const made = element("div", { class: difference < 0 ? "bar below" : "bar above" });
  const wide = (50 * Math.abs(difference)) / largest;
  made.style.width = `max(2px, ${wide}%)`;
  made.style.marginLeft = `${difference < 0 ? 50 - wide : 50}%`;
  return made;
}

export function compare(section, data) {
  const choice = (label, first) => element("select", { "aria-label": label, onchange: update },
    ...data.order.map((run, i) => element("option", { value: i, selected: i === first }, `${i + 1}. ${run.name}`)));
  const [left, right] = [choice("First run", 0), choice("Second run", Math.min(1, data.order.length - 1))];
  const shownPart = element("div", { "aria-live": "polite" });

  function update() {
    const [a, b] = [data.order[left.value], data.order[right.value]];
    const found = differences(a, b, data);
    const largest = Math.abs(found[0]?.difference);
    const cell = (text) => element("td", { class: "n" }, text);
    const rows = found.slice(0, shownRows).map(({ preference, one, other, difference }) => element("tr", {},
      element("th", { scope: "row", title: preference.name }, preference.name),
      cell(one.actual), cell(other.actual), cell(shown(one.value)), cell(shown(other.value)), cell(signed(difference)),
      element("td", { class: "barcell" }, bar(difference, largest))));
    const rest = found.slice(shownRows);
    const sum = rest.reduce((total, { difference }) => total + difference, 0);
    if (rest.length > 0)
      rows.push(element("tr", {}, element("th", { scope: "row" }, `${rest.length} smaller ones`), cell(""), cell(""),
        cell(""), cell(""), cell(signed(sum)), element("td")));
    rows.push(element("tr", { class: "total" }, element("th", { scope: "row" }, "Score"), cell(""), cell(""),
      cell(shown(a.score)), cell(shown(b.score)), cell(signed(a.score - b.score)), element("td")));
    shownPart.replaceChildren(element("p", { class: "lead" }, sentence(a, b, found)), table("Contributions",
      [["Preference"], [`${a.name} actual`, "n"], [`${b.name} actual`, "n"], [a.name, "n"], [b.name, "n"],
        ["Difference", "n"], ["", "barcell"]], rows));
  }

  section.append(element("p", { class: "tools" }, left, "against", right), shownPart);
  update();
}
