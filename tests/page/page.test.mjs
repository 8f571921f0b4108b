import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { after, before, test } from "node:test";
import { chromium } from "playwright-core";

import { readData, scoresOf } from "../../app/page/assets/data.mjs";
import { ranked } from "../../app/page/assets/score.mjs";

const { MAKE_RESULT: makeResult, SCREENSHOTS: screenshots } = process.env;
const axe = readFileSync(new URL("node_modules/axe-core/axe.min.js", import.meta.url), "utf8");
const folder = mkdtempSync(`${tmpdir()}/vostrand-page-`);
let browser;

before(async () => {
  execFileSync(makeResult, [folder], { stdio: "inherit" });
  browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
});
after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true });
});

// Opens a sweep's page. Whatever the page asks for but itself, and whatever it complains about, fails the test.
async function open(t, name, { look = {}, scripts = true, bypassCSP = false } = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, javaScriptEnabled: scripts,
    bypassCSP, ...look });
  const page = await context.newPage();
  const trouble = [];
  page.on("request", (request) => request.url() === `file://${folder}/${name}.html` || trouble.push(request.url()));
  page.on("console", (message) => trouble.push(message.text()));
  page.on("pageerror", (error) => trouble.push(String(error)));
  page.on("dialog", (dialog) => trouble.push(dialog.message()) && dialog.dismiss());
  t.after(async () => {
    await context.close();
    assert.deepEqual(trouble, []);
  });
  await page.goto(`file://${folder}/${name}.html`);
  return page;
}

const json = (name) => JSON.parse(readFileSync(`${folder}/${name}.json`, "utf8"));
const runsIn = (page, table) => page.$$eval(`${table} tbody tr`, (rows) => rows.map((row) => Number(row.dataset.run)));

test("scores and orders are the library's, bit for bit", () => {
  for (const name of ["three", "twelve", "many", "failures"]) {
    const html = readFileSync(`${folder}/${name}.html`, "utf8");
    const data = readData(html.match(/id=data>(.*?)<\/script>/s)[1]);
    assert.deepEqual(scoresOf(data, data.weights, data.penalties).filter((score) => score !== undefined),
      json(name).runs.map((run) => run.score).filter((score) => score !== null));
    for (const tried of json(`${name}.tries`)) {
      const [weights, penalties] = [0, 1].map((i) => Float32Array.from(tried.weights, (pair) => pair[i]));
      const scores = scoresOf(data, weights, penalties);
      for (const run of data.runs) assert.equal(scores[run.index], tried.scores[run.index]);
      assert.deepEqual(ranked(data.runs, scores).map((run) => run.index), tried.order);
    }
  }
});

test("runs without a score, and without a place-and-route result, rank as the library ranks them", () => {
  const runs = [[0, null], [1, -1], [2, 7], [3, 3], [4, 3]].map(([index, timingScore]) => ({ index, timingScore }));
  assert.deepEqual(ranked(runs, [5, 5, 5, 5, 5]).map((run) => run.index), [3, 4, 2, 1, 0]);
  assert.deepEqual(ranked(runs, [1, 2, NaN, 3, 4]).map((run) => run.index), [1, 0, 2, 4, 3]);
});

test("sorts by any column, by keyboard too", async (t) => {
  const page = await open(t, "failures");
  const { order, runs } = json("failures");
  assert.deepEqual((await runsIn(page, "#ranking")).slice(0, order.length), order);
  await page.locator("#ranking th button", { hasText: "Time" }).focus();
  await page.keyboard.press("Enter");
  const elapsed = (await runsIn(page, "#ranking")).map((i) => runs[i].elapsed_seconds);
  assert.deepEqual(elapsed, elapsed.toSorted((a, b) => a - b));
  await page.click("#ranking th button:text('Score')");
  const scores = (await runsIn(page, "#ranking")).map((i) => runs[i].score).filter((score) => score !== null);
  assert.deepEqual(scores, scores.toSorted((a, b) => b - a));
  assert.equal(await page.getAttribute("#ranking th:has-text('Score')", "aria-sort"), "descending");
});

test("a slider ranks as the library does, and the annotations say so to it", async (t) => {
  const page = await open(t, "twelve");
  const { preferences, order } = json("twelve");
  const [tried] = json("twelve.tries");
  const slider = page.getByLabel(`weight of ${preferences[0].text}`, { exact: true });
  await slider.fill(String(tried.weights[0][0]));
  await page.waitForFunction(() => /[▲▼]/.test(document.querySelector("#whatif").textContent));
  const ranking = "#whatif .pair > div:last-child";
  assert.deepEqual(await runsIn(page, ranking), tried.order);
  assert.notDeepEqual(tried.order, order);
  assert.match(await page.textContent(".flips"), /overtakes .* when the (weight|penalty) of/);

  const number = page.getByLabel(`penalty of ${preferences[1].text}, number`);
  const before = await page.inputValue("textarea");
  await number.fill("0.0012345678");
  await page.waitForFunction((old) => document.querySelector("textarea").value !== old, before);
  writeFileSync(`${folder}/copied.prf`, await page.inputValue("textarea"));
  const read = JSON.parse(execFileSync(makeResult, [`${folder}/copied.prf`]));
  preferences.forEach(({ name, kind, weight, penalty, default_weight }, i) => {
    const wanted = [i === 0 ? tried.weights[0][0] : weight, i === 1 ? Math.fround(0.0012345678) : penalty];
    const got = read[name] ?? read[kind];
    assert.equal(got[0], default_weight === 0 ? 0 : wanted[0]);
    assert.ok(Math.abs(got[1] - wanted[1]) <= wanted[1] * 1e-7, `${name}: ${got[1]} for ${wanted[1]}`);
  });
  await page.click("#whatif button:text('Reset')");
  assert.deepEqual(await runsIn(page, ranking), order);
});

test("compares two runs part by part", async (t) => {
  const page = await open(t, "many");
  const { runs, order } = json("many");
  await page.selectOption("#compare select >> nth=1", "98");
  const [a, b] = [runs[order[0]], runs[order[98]]];
  assert.match(await page.textContent("#compare .lead"), new RegExp(`^${a.name} is ahead of ${b.name} by `));
  const cells = await page.$$eval("#compare tbody tr", (rows) => rows.map((row) => row.cells[5].textContent));
  const numbers = cells.map((text) => Number(text.replace("−", "-")));
  const total = numbers.pop();
  assert.ok(Math.abs(total - (a.score - b.score)) < 0.001);
  assert.ok(Math.abs(numbers.reduce((sum, part) => sum + part) - total) < 0.05);
});

test("a large sweep is small; how fast it opens", async (t) => {
  assert.ok(statSync(`${folder}/many.html`).size < 3e6);
  const page = await open(t, "many");
  let ready = Infinity; // The best of three: other tests may be running.
  for (let i = 0; i < 3; ++i) {
    await page.reload();
    ready = Math.min(ready, await page.evaluate(() => performance.getEntriesByType("navigation")[0].loadEventEnd));
  }
  t.diagnostic(`99 runs x 500 preferences: ready after ${Math.round(ready)} ms`);
});

const looks = { light: {}, dark: { colorScheme: "dark" }, narrow: { viewport: { width: 390, height: 844 } } };
for (const [name, kinds] of [["three", ["light", "narrow"]], ["twelve", ["light", "dark", "narrow"]],
  ["failures", ["light", "dark"]], ["many", ["light", "dark"]], ["untimed", ["light"]], ["nothing", ["light"]]])
  for (const kind of kinds)
    test(`${name}, ${kind}: nothing is fetched, nothing runs, everybody can read it`, async (t) => {
      const page = await open(t, name, { look: looks[kind], bypassCSP: true });
      await page.screenshot({ path: `${screenshots}/${name}-${kind}.png`, fullPage: true });
      assert.equal(await page.$$eval("img, b, iframe", (all) => all.length), 0);
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), "scrolls sideways");
      await page.addScriptTag({ content: axe });
      const { violations } = await page.evaluate(() => window.axe.run({ exclude: ["tbody tr:nth-child(n + 9)"] }, { runOnly: ["wcag2a", "wcag2aa", "wcag21aa"] }));
      assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes[0].html}`), []);
    });

test("prints, and reads without scripts", async (t) => {
  const page = await open(t, "failures", { scripts: false, look: { colorScheme: "dark" } });
  await page.emulateMedia({ media: "print" });
  assert.equal(await page.$eval("body", (body) => getComputedStyle(body).backgroundColor), "rgb(255, 255, 255)");
  for (const part of ["#ranking tbody tr", ".matrix td.r3", "#spread svg.strip", "#scores rect", "#timeline rect"])
    assert.ok(await page.locator(part).count() > 0, part);
  await page.pdf({ path: `${screenshots}/failures.pdf`, format: "A4" });
  await page.screenshot({ path: `${screenshots}/failures-print.png`, fullPage: true });
});
