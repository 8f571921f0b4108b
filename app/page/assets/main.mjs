import { compare } from "./compare.mjs";
import { readData } from "./data.mjs";
import { makeSortable } from "./sort_table.mjs";
import { whatIf } from "./what_if.mjs";

document.querySelectorAll("table.sortable").forEach(makeSortable);

// A cell of the matrix tells its row and column, also where it is too small for its number.
document.querySelector(".matrix")?.addEventListener("mouseover", ({ target }) => {
  if (target.tagName !== "TD") return;
  const run = target.closest("table").tHead.rows[0].cells[target.cellIndex].textContent;
  target.title = `${target.parentElement.cells[0].title}\n${run}: ${target.textContent} ns`;
});

if (document.getElementById("whatif")) {
  const data = readData(document.getElementById("data").textContent);
  whatIf(document.getElementById("whatif"), data);
  compare(document.getElementById("compare"), data);
  for (const part of document.querySelectorAll("section[hidden], nav [hidden]")) part.hidden = false;
}
