// Elements are only ever made of text: what a name in the data holds cannot become markup.
export function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) made.addEventListener(name.slice(2), value);
    else if (value === true) made.setAttribute(name, "");
    else if (value !== false && value != null) made.setAttribute(name, value);
  }
  made.append(...children.map((child) => (child instanceof Node ? child : String(child))));
  return made;
}

// As the page's tables show numbers: a true minus sign, "–" for what is none.
export function shown(value, decimals = 3) {
  if (!Number.isFinite(value)) return "–";
  const size = Math.abs(value);
  const fits = size < 1e6 && (size === 0 || size >= 0.5 * 10 ** -decimals);
  return (value < 0 ? "−" : "") + (fits ? size.toFixed(decimals) : size.toPrecision(4));
}

export const signed = (value) => (value > 0 ? "+" : "") + shown(value);

// A table that scrolls on its own, also by keyboard.
export function table(label, headings, rows) {
  const head = headings.map(([text, look]) => element("th", { scope: "col", class: look }, text));
  const made = element("table", {}, element("thead", {}, element("tr", {}, ...head)), element("tbody", {}, ...rows));
  return element("div", { class: "scroll", tabindex: 0, role: "region", "aria-label": label }, made);
}
