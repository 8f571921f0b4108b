import { scoreOf } from "./score.mjs";

// The page's data as the scripts use it: preferences, the finished runs in plan order, and `best`.
export function readData(text) {
  const result = JSON.parse(text);
  const finished = new Set(result.order);
  const runs = result.runs.flatMap((run, index) => (finished.has(index) ? [readRun(run, index)] : []));
  const weights = Float32Array.from(result.preferences, (preference) => preference.weight);
  const penalties = Float32Array.from(result.preferences, (preference) => preference.penalty);
  const byIndex = new Map(runs.map((run) => [run.index, run]));
  return { preferences: result.preferences, runs, order: result.order.map((i) => byIndex.get(i)), weights, penalties };
}

function readRun(run, index) {
  const { slack_ns: slacks, preference, actual, carried_over: carried } = run.columns;
  const slack = Float32Array.from(slacks === "" ? [] : slacks.split(" "), Number);
  return { index, name: run.name, score: run.score, timingScore: run.timing_score, slack, actual,
    preference: preference ?? Array.from(slack, (_, i) => i), carried: new Set(carried) };
}

// By run index, for weights and penalties that are tried.
export function scoresOf(data, weights, penalties) {
  const scores = [];
  for (const run of data.runs) scores[run.index] = scoreOf(run, weights, penalties);
  return scores;
}
