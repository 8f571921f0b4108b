import { element } from "./dom.mjs";

// Headings become buttons that sort by their column; what has no value stays at the end.
export function makeSortable(table) {
  const body = table.tBodies[0];
  for (const heading of table.querySelectorAll("th[scope=col]"))
    heading.replaceChildren(element("button", { type: "button", onclick: () => sortBy(heading) }, heading.textContent));

  function sortBy(heading) {
    const before = heading.getAttribute("aria-sort") ?? (heading.dataset.first ? "ascending" : "descending");
    const down = before === "ascending";
    const value = (row) => row.cells[heading.cellIndex].dataset.v ?? row.cells[heading.cellIndex].textContent;
    const compare = (a, b) => (a === "" || b === "" ? (a === "") - (b === "")
      : (down ? -1 : 1) * (Number(a) - Number(b) || a.localeCompare(b)));
    body.append(...[...body.rows].sort((a, b) => compare(value(a), value(b))));
    for (const other of table.querySelectorAll("[aria-sort]")) other.removeAttribute("aria-sort");
    heading.setAttribute("aria-sort", down ? "descending" : "ascending");
  }
}
